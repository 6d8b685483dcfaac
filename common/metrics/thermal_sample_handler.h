#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "common/export.h"
#include "common/metrics/data_element.h"
#include "common/metrics/metric.h"

class MetricPlugin;

namespace pwr {

class EntityHandle;
class SystemMetadata;

/// The one collector of temperatures of the process: metric plug-ins register, add the entities whose temperature
/// they know and hand it readings, and all of them stand in one set of tables, "Temperature Metrics". These are
/// configured under the feature "temp" and the container "ALL-THERMAL-DATA".
/// Readings form rounds: the readings of all entities get the timestamp of the round's first one and so are one
/// sampling point; the first entity that comes again starts the next round. A collection in immediate mode has no
/// rounds.
/// Units:    degrees Celsius, whole ones; timestamps are ticks of the collection clock.
/// Life:     made by the first getInstance; the last release ends the container; freeInstance deletes the handler,
///           which must happen before the system record goes.
/// Threads:  no locks; one thread at a time.
/// Failure:  1 after a warning.
class KRCOMMON_API ThermalSampleHandler {
public:
    /// Registers the plug-in and returns the handler. The first call makes it, with this metadata, and throws what
    /// Metric's constructor throws.
    static ThermalSampleHandler* getInstance(const SystemMetadata& metadata, const MetricPlugin* plugin);
    /// Unregisters the plug-in. With the last one the container is finalised, if it has samples; the result is that
    /// of finalize() then.
    static int release(const MetricPlugin* plugin);
    /// Deletes the handler, whoever is registered still.
    static void freeInstance();

    ThermalSampleHandler(const ThermalSampleHandler&) = delete;
    ThermalSampleHandler& operator=(const ThermalSampleHandler&) = delete;
    ~ThermalSampleHandler();

    /// Every entity is added once, whichever plug-in reports it.
    int addEntity(const EntityHandle* entity);

    /// One reading, which stands for the time since the entity's previous one, or, with noDuration, for none.
    /// 1 also when the container rejects it; it keeps its place in the round then.
    int setTemperature(const EntityHandle* entity, std::uint64_t timestamp, std::uint16_t temperature,
                       bool noDuration);

    /// The entity was asked and gave nothing: takes its place in the round without a sample. Whoever leaves out both
    /// calls gets the warning that the round is not complete, and the entity's next reading may end up in an old
    /// round. The round takes its timestamp from the first reading that there is.
    int skipTemperature(const EntityHandle* entity, std::uint64_t timestamp);

    /// Gives all of them one temperature at one moment, outside of rounds and without a duration. Ends at the first
    /// that fails.
    int resetTemperatures(const std::vector<const EntityHandle*>& entities, std::uint64_t timestamp,
                          std::uint16_t temperature);

    /// The container, for titles and notes.
    Metric& getMetric() { return m_metric; }

private:
    struct Source {
        DataElement element;
        std::uint64_t round = 0; // the last one that it has a place in; they count from 1
    };
    struct Round {
        std::uint64_t number = 0;
        std::uint64_t count = 0; // of places taken, this round's and those of the complete ones before
        std::uint64_t timestamp = 0;
        bool hasReading = false;
    };

    explicit ThermalSampleHandler(const SystemMetadata& metadata);

    Source* find_i(const EntityHandle* entity);
    std::uint64_t enterRound_i(Source& source, std::uint64_t timestamp, bool isReading);
    int unregister_i(const MetricPlugin* plugin);

    static std::unique_ptr<ThermalSampleHandler> s_instance;

    std::set<const MetricPlugin*> m_plugins;
    bool m_isImmediate;
    Metric m_metric;
    std::map<std::uint64_t, Source> m_sources; // by the entity's id
    Round m_round;
};

} // namespace pwr
