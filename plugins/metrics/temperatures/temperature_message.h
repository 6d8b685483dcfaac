#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/metadata/system_metadata.h"
#include "common/metrics/thermal_sample_handler.h"
#include "common/plugin/collection_data.h"
#include "plugins/metrics/declared_messages.h"

namespace pwr {

/// What the table of temperatures does not show.
struct TemperatureNotes {
    std::uint64_t missing = 0; ///< values that could not be read or are no temperature
    std::uint64_t frost = 0;   ///< temperatures below 0, which the handler cannot take
    std::uint64_t gaps = 0;    ///< readings that follow others which are not there
};

/// One message whose values are temperatures. Each of its instances is an entity of the handler's: the instance's
/// own when it has no descriptor, else one made for it and named after both. Temperatures are rounded to whole
/// degrees, halves upwards. Whatever is not a temperature from 0 to 65535 is missing.
class TemperatureMessage {
public:
    static constexpr const char* PLUGIN = "temperatures";
    /// Why a metric cannot be computed here; null when it can.
    static const char* unfit(const MetricDeclaration& metric);

    /// Keeps references to all of them.
    TemperatureMessage(const DeclaredMessage& message, ThermalSampleHandler& handler,
                       const SystemMetadata& system, TemperatureNotes& notes);

    [[nodiscard]] id_config_t id() const { return m_message.id; }
    /// Adds the entities of instances that were appended since.
    void update();
    /// Hands on one reading. Every entity takes its place in the handler's round.
    void process(const CollectionData& reading);
    /// Ends a poll: entities that had no reading in it take their places.
    void finishPoll();
    /// Appends the names of those that never gave a temperature.
    void addSilent(std::string& names) const;

private:
    struct Channel {
        const EntityHandle* entity = nullptr; // null: it is reported already
        std::uint64_t lastTick = 0;
        bool isDone = false;  // in this poll
        bool isSilent = true; // gave no temperature yet
    };

    void processChannel_i(Channel& channel, const CollectionData& reading, std::size_t at);
    /// Whether a value is a temperature that the handler takes.
    bool convert_i(const CollectionData& reading, std::size_t at, std::uint16_t& temperature);

    const DeclaredMessage& m_message;
    ThermalSampleHandler& m_handler;
    const SystemMetadata& m_system;
    TemperatureNotes& m_notes;
    std::vector<Channel> m_channels;
    std::uint64_t m_lastTick = 0;
};

} // namespace pwr
