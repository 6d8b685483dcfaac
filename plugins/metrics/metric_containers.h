#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/metadata/system_metadata.h"
#include "common/metrics/metric.h"
#include "plugins/metrics/declared_messages.h"

namespace pwr {

/// A container, and what its readers should know of the readings that it was made from.
struct MetricContainer {
    std::unique_ptr<Metric> metric;
    std::uint64_t missing = 0;      ///< values that a reading did not have
    std::uint64_t reset = 0;        ///< counters that fell back
    std::uint64_t wrapped = 0;      ///< counters that ran through their end
    std::uint64_t gaps = 0;         ///< readings that follow others which are not there
    std::uint64_t lossy = 0;        ///< times that events were lost
    std::uint64_t cut = 0;          ///< states that held more than their interval
    std::uint64_t back = 0;         ///< counters that went back a little
    std::vector<std::string> notes; ///< further notes, ready to print
};

/// What the states of a trace are called, as values of the metric.
using StateNames = std::map<std::uint64_t, Data>;

/// Of a trace of whole numbers whose metric names its states; else empty. Its values are the names.
StateNames stateNames(const MetricDeclaration& declaration);

/// The containers of one metric plug-in, one per feature and container tag.
class MetricContainers {
public:
    /// Finds or makes the container of a message. Null, after a warning, when it cannot be made.
    MetricContainer* containerOf(const DeclaredMessage& message, const SystemMetadata& system);

    /// Adds the notes and finalises all, in the order of making. 1 when one of them failed.
    int finalize();

private:
    std::map<std::pair<std::string, std::string>, MetricContainer*> m_byTag;
    std::vector<std::unique_ptr<MetricContainer>> m_containers;
};

} // namespace pwr
