#include "tarnwell/saved_clock.h"

#include "common/metadata/system_metadata.h"
#include "common/saved/collection_reader.h"

#include <cmath>

namespace tarnwell {

std::unique_ptr<ToldClock> savedClock(const pwr::saved::CollectionReader& reader,
                                      const pwr::SystemMetadata& system, std::string& reason) {
    if (!std::isfinite(system.twaClockFreq) || system.twaClockFreq <= 0.0F) {
        reason = "the clock of the collection has no frequency, so its readings have no time";
        return nullptr;
    }
    const auto& clocks = reader.clocks();
    const bool isNamed = !clocks.empty();
    return std::make_unique<ToldClock>(isNamed ? clocks.front().defaultClockUUID : std::string(),
                                       isNamed ? clocks.front().defaultClockName : std::string("SAVED"),
                                       "The clock of a saved collection", system.twaClockFreq);
}

double ticksPerSecondOf(const pwr::SystemMetadata& system) {
    constexpr double kHertzPerMegahertz = 1e6;
    return static_cast<double>(system.twaClockFreq) * kHertzPerMegahertz;
}

} // namespace tarnwell
