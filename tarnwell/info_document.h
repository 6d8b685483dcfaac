#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace pwr {
class SystemMetadata;
struct TWClockSync;
namespace saved {
class CollectionReader;
}
} // namespace pwr

namespace tarnwell {

/// All that a saved collection says of itself. The keys are an interface (docs/saved-collections.md): scripts read
/// them, so they get more, never others. Frequencies are in MHz, ticks those of the default clock; a time stands as
/// microseconds since 1970 UTC and, beside it, as ISO 8601 text, which is null when the time is unknown.
nlohmann::ordered_json infoDocument(const std::string& path, pwr::saved::CollectionReader& reader);

/// The part of it that the system record gives.
nlohmann::ordered_json systemDocument(const pwr::SystemMetadata& system);

/// One clock at one moment.
nlohmann::ordered_json clockDocument(const pwr::TWClockSync& sync);

/// The same for people. Only what is known is shown; control characters of the file never reach the terminal.
std::string infoText(const nlohmann::ordered_json& document);

} // namespace tarnwell
