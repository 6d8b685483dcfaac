#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/machine_files.h"
#include "common/plugin/collector_plugin.h"
#include "plugins/collectors/entity_names.h"
#include "plugins/collectors/registers/register_values.h"

namespace registers {

/// Collects the bits of processor registers, which the system offers as one file for each processor whose offset is
/// the register's number. Only reads. Which registers, stands in the hardware description.
/// Option: machine, the machine's place (openMachine), before initialize(); "/" without it.
class Registers : public CollectorPlugin {
public:
    static constexpr const char* COLLECTOR_TYPE = "REGISTER";

    Registers();
    ~Registers() override;

    int setOption(const std::string& key, const std::string& value) override;
    const char* getDescription() const override;
    std::vector<std::string> getCollectorTypes() const override;
    MessageAvailability probe(const pwr::MsgMetadata& message) override;
    MessageAvailability probeWrite(const pwr::MsgMetadata& message) override;
    int open(const pwr::MsgMetadata& message, MessageInstances& out) override;
    int read(const pwr::MsgMetadata& message, CollectionData& out) override;
    void close(const pwr::MsgMetadata& message) override;

private:
    int openMachine_i(std::string& reason);
    int find_i(const pwr::MsgMetadata& message, std::vector<RegisterValue>& values, MessageInstances& out);

    std::string m_where = "/";
    std::unique_ptr<pwr::MachineFiles> m_machine; ///< null until a message needs it
    collectors::EntityNames m_names;
    std::map<unsigned, std::unique_ptr<RegisterPlan>> m_plans; // by the message's number
};

} // namespace registers
