#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "common/machine_files.h"
#include "common/plugin/collector_plugin.h"
#include "common/telemetry/aggr_telem_operation.h"
#include "common/telemetry/endpoint_table.h"
#include "plugins/collectors/aggregator/sample_plan.h"
#include "plugins/collectors/entity_names.h"

namespace aggregator {

/// Collects the counters of telemetry aggregators from the files that a machine's table of endpoints names: those of
/// the running system, of a copied root folder or of a recorded bundle. What a counter is stands in its GUID's
/// description, what of it is read in the hardware description; the code knows no counter.
/// Options, before initialize(): machine, the machine's place (openMachine), "/" without it; endpoints, the table's
/// path on the machine, TELEMETRY_ENDPOINT_TABLE without it.
class Aggregator : public CollectorPlugin {
public:
    Aggregator();
    ~Aggregator() override;

    /// Reads the table of endpoints, and enters them into the environment. A machine without one is no error.
    int initialize() override;
    int setOption(const std::string& key, const std::string& value) override;
    const char* getDescription() const override;
    std::vector<std::string> getCollectorTypes() const override;
    MessageAvailability probe(const pwr::MsgMetadata& message) override;
    MessageAvailability probeWrite(const pwr::MsgMetadata& message) override;
    int open(const pwr::MsgMetadata& message, MessageInstances& out) override;
    int read(const pwr::MsgMetadata& message, CollectionData& out) override;
    void close(const pwr::MsgMetadata& message) override;

    using CollectorPlugin::doImmediateWrite;
    /// Leaves the whole sample in the operation, which must be an AggrTelemOperation; found by its keys unless it
    /// is resolved. 0, or -1 after a message.
    int doImmediateRead(pwr::Operation* operation, const std::string& argument) override;
    /// The same for all operations of a message. "{NAME}" in a key's value stands for the value of that name.
    int doImmediateRead(const pwr::InputMsg* message,
                        const std::vector<std::pair<std::string, std::string>>& values) override;

private:
    void loadTable_i();
    void loadDescriptions_i(const pwr::MsgMetadata& message);
    int check_i(const std::vector<Counter>& counters, MessageInstances& out) const;
    int readSample_i(pwr::AggrTelemOperation& operation) const;

    std::string m_where = "/";
    std::string m_table = pwr::TELEMETRY_ENDPOINT_TABLE;
    std::unique_ptr<pwr::MachineFiles> m_machine;
    std::vector<pwr::TelemetryEndpoint> m_endpoints;
    std::set<pw_u32_t> m_described; ///< GUIDs whose descriptions were loaded, or could not be
    std::string m_reason, m_fix;    ///< why there are no endpoints
    collectors::EntityNames m_names;
    std::map<unsigned, std::unique_ptr<SamplePlan>> m_plans; // by the message's number
};

} // namespace aggregator
