#pragma once

#include <string>
#include <vector>

namespace pwr {
class SystemMetadata;
}

namespace tarnwell {

class CollectionClock;
class MessageSet;
struct CollectionOutcome;
struct Settings;

/// Fills what the system record says of the run itself: clock, interval, command line, versions.
void describeRun(const Settings& settings, const CollectionClock& clock, pwr::SystemMetadata& system);

/// What a reader of the report must know about its quality: the interval that was achieved, missed ticks,
/// missing values, and features that are not in it.
std::vector<std::string> reportNotes(const CollectionOutcome& outcome, const MessageSet& messages,
                                     const std::vector<std::string>& absent,
                                     const std::vector<std::string>& missing);

/// Why nothing could be written under this prefix, or "" when it can: a missing or closed folder is better
/// found before the collection than after it.
std::string outputPrefixProblem(const std::string& prefix);

} // namespace tarnwell
