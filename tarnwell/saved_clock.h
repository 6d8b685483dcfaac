#pragma once

#include "tarnwell/told_clock.h"

#include <memory>
#include <string>

namespace pwr {
class SystemMetadata;
namespace saved {
class CollectionReader;
}
} // namespace pwr

namespace tarnwell {

/// The default clock of a saved collection, for the environment: it has the original's name, UUID and frequency, and
/// stands still. Null with the reason for a record whose frequency is no frequency.
std::unique_ptr<ToldClock> savedClock(const pwr::saved::CollectionReader& reader,
                                      const pwr::SystemMetadata& system, std::string& reason);

double ticksPerSecondOf(const pwr::SystemMetadata& system);

} // namespace tarnwell
