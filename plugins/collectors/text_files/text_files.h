#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <set>
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
    MessageAvailability probeWrite(const pwr::MsgMetadata& message) override;
    std::vector<std::string> getFiles(const pwr::MsgMetadata& message) const override;
    int open(const pwr::MsgMetadata& message, MessageInstances& out) override;
    int read(const pwr::MsgMetadata& message, CollectionData& out) override;
    void close(const pwr::MsgMetadata& message) override;

    using CollectorPlugin::doImmediateRead;
    /// Writes the argument, or without one what the operation's VALUE says, to all files of its PATH. 0, or -1 after
    /// an error for each file that did not take it.
    int doImmediateWrite(pwr::Operation* operation, const std::string& argument) override;
    /// The same for all operations of a message. An error is told once, however often the message is written.
    int doImmediateWrite(const pwr::InputMsg* message) override;

private:
    bool isMachineOfFiles_i() const;
    int write_i(const pwr::MsgMetadata& message, std::set<std::string>& told);
    int expand_i(const pwr::MsgMetadata& message, std::vector<Place>& places, MessageInstances& out);
    void leaveOutUnused_i(const std::string& patterns, std::vector<Place>& places) const;

    std::string m_where = "/";
    std::unique_ptr<pwr::MachineFiles> m_machine;
    collectors::EntityNames m_names;
    std::size_t m_handles = 0;
    std::map<unsigned, std::unique_ptr<ReadPlan>> m_plans; // by the message's number
    std::set<std::string> m_told;                          // what was said of failed writing
};

} // namespace text_files
