#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/machine_files.h"
#include "common/plugin/collector_plugin.h"
#include "plugins/collectors/entity_names.h"
#include "plugins/collectors/text_files/expansion.h"
#include "plugins/collectors/text_files/read_plan.h"

namespace text_files {

/// Collects counters from the text files of a machine: of the running system, of a copied root folder or
/// of a recorded bundle, and so on every system. What is read stands in data (operations of messages);
/// the code knows no counter by name.
/// Option: machine, the machine's place (openMachine), before initialize(); "/" without it.
class TextFiles : public CollectorPlugin {
public:
    static constexpr const char* COLLECTOR_TYPE = "TEXT-FILE";

    TextFiles();
    ~TextFiles() override;

    int initialize() override;
    int setOption(const std::string& key, const std::string& value) override;
    const char* getDescription() const override;
    std::vector<std::string> getCollectorTypes() const override;
    MessageAvailability probe(const pwr::MsgMetadata& message) override;
    int open(const pwr::MsgMetadata& message, MessageInstances& out) override;
    int read(const pwr::MsgMetadata& message, CollectionData& out) override;
    void close(const pwr::MsgMetadata& message) override;

private:
    int expand_i(const pwr::MsgMetadata& message, std::vector<Place>& places, MessageInstances& out);
    void leaveOutUnused_i(const std::string& patterns, std::vector<Place>& places) const;

    std::string m_where = "/";
    std::unique_ptr<pwr::MachineFiles> m_machine;
    collectors::EntityNames m_names;
    std::size_t m_handles = 0;
    std::map<unsigned, std::unique_ptr<ReadPlan>> m_plans; // by the message's number
};

} // namespace text_files
