#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "common/plugin/metric_plugin.h"
#include "plugins/metrics/declared_messages.h"
#include "plugins/metrics/temperatures/temperature_message.h"

namespace pwr {

/// Reports temperatures through the process's one handler of them, so that sensors, zones and whatever other
/// plug-ins report stand in one table. What the readings of its messages lack is told in notes below it.
///
/// The handler tells its rounds by the entities that come again. So this plug-in sees to it that all of its
/// entities have their place in every poll, whether their readings are there or not: else the readings of one poll
/// would take their timestamp from the poll before.
class TemperatureMetrics : public MetricPlugin {
public:
    TemperatureMetrics();

    const char* getDescription() const override { return "Temperatures, all in one table"; }
    int processMetadata(const Metadata& declaration) override;
    int processInstances(const MsgMetadata& message, const MessageInstances& instances) override;
    int initializeCollection(const SystemMetadata& system) override;
    int processMessage(const CollectionData& reading) override;
    int finalizeCollection(std::uint64_t stopTick) override;

private:
    /// Where a reading stands in a poll: by its message, then by its first value.
    struct Place {
        std::size_t message = 0;
        unsigned firstValue = 0;
        bool isAfterGap = false;
    };

    int make_i(const DeclaredMessage& message);
    int connect_i();
    void enterPoll_i(const Place& place);
    void addNotes_i();

    DeclaredMessages m_declared;
    const SystemMetadata* m_system = nullptr;
    ThermalSampleHandler* m_handler = nullptr;
    std::vector<std::unique_ptr<TemperatureMessage>> m_messages; // in the order in which a poll reads them
    std::optional<Place> m_last;                                 // reading
    TemperatureNotes m_notes;
};

} // namespace pwr
