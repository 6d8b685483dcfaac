#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/machine_files.h"
#include "common/plugin/collector_plugin.h"
#include "plugins/collectors/entity_names.h"
#include "plugins/collectors/tracefs/trace_session.h"

namespace tracefs {

/// Collects what the kernel's tracepoints tell, in the order in which it happened: of the running kernel, or of a
/// recorded machine whose bundle has pages of a trace, and that on every system. Which tracepoints and fields stands in
/// data; the code knows none by name.
/// Option: machine, the machine's place (openMachine), before initialize(); "/" without it.
class TracefsCollector : public CollectorPlugin {
public:
    static constexpr const char* COLLECTOR_TYPE = "TRACEFS";

    TracefsCollector();
    ~TracefsCollector() override;

    int initialize() override;
    int setOption(const std::string& key, const std::string& value) override;
    const char* getDescription() const override;
    std::vector<std::string> getCollectorTypes() const override;
    bool recordsByItself() const override { return true; }
    MessageAvailability probe(const pwr::MsgMetadata& message) override;
    MessageAvailability probeWrite(const pwr::MsgMetadata& message) override;
    int open(const pwr::MsgMetadata& message, MessageInstances& out) override;
    /// Nothing is to be read at any moment.
    int read(const pwr::MsgMetadata& message, CollectionData& out) override;
    int drain(const pwr::MsgMetadata& message, std::uint64_t untilTick,
              std::vector<CollectionData>& out) override;
    void close(const pwr::MsgMetadata& message) override;
    std::vector<std::string> takeNotes() override;

private:
    bool isLive_i() const { return m_where == "/"; }
    int openSession_i(Refusal& refusal);
    int openMessage_i(const pwr::MsgMetadata& message, MessageInstances& out, Refusal& refusal);

    std::string m_where = "/";
    std::unique_ptr<pwr::MachineFiles> m_machine;
    collectors::EntityNames m_names;
    std::unique_ptr<TraceSession> m_session;
    std::map<unsigned, std::unique_ptr<MessageTrace>> m_messages; // by the message's number
    std::vector<std::string> m_notes;
    std::uint64_t m_drainedUntil = 0;
};

} // namespace tracefs
