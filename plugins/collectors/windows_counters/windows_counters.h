#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/metadata/operation_metadata.h"
#include "common/model/entity_handle.h"
#include "common/plugin/collector_plugin.h"
#include "plugins/collectors/windows_counters/counter_source.h"

namespace windows_counters {

/// Collects the counters that Windows gives by calls instead of files.
/// Option: machine, before initialize(): anything but "/" is another machine than the running one, of
/// which this collector knows nothing and offers nothing.
class WindowsCounters : public CollectorPlugin {
public:
    static constexpr const char* COLLECTOR_TYPE = "WINDOWS-COUNTER";

    WindowsCounters();
    ~WindowsCounters() override;

    int initialize() override;
    int setOption(const std::string& key, const std::string& value) override;
    const char* getDescription() const override;
    std::vector<std::string> getCollectorTypes() const override;
    MessageAvailability probe(const pwr::MsgMetadata& message) override;
    MessageAvailability probeWrite(const pwr::MsgMetadata& message) override;
    int open(const pwr::MsgMetadata& message, MessageInstances& out) override;
    int read(const pwr::MsgMetadata& message, CollectionData& out) override;
    void close(const pwr::MsgMetadata& message) override;

private:
    /// One value of a message: a counter of an owner.
    struct Value {
        CounterSource* source;
        std::uint64_t key;
        std::size_t counter;
    };

    CounterSource* findSource_i(const std::string& path) const;
    CounterSource* findCounter_i(const pwr::OperationMetadata& operation, std::size_t& counter,
                                 std::string& reason) const;
    int addOperation_i(const pwr::OperationMetadata& operation, std::vector<Value>& values,
                       MessageInstances& out);
    const pwr::EntityHandle* entityOf_i(const std::string& path, const CounterSource::Owner& owner);

    bool m_isLive = true;
    std::map<std::string, std::unique_ptr<CounterSource>> m_sources;
    std::map<unsigned, std::vector<Value>> m_messages; // by the message's number
    std::map<std::uint64_t, const pwr::EntityHandle*> m_interfaces;
};

} // namespace windows_counters
