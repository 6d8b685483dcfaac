#pragma once

#include <string>

namespace tarnwell {

struct Settings;

/// Takes a feature as it is given on the command line: its name, and behind colons options of its own, as in
/// "cxh:cxh-int=5000". Throws BadValue.
void addFeature(Settings& settings, const std::string& text);

/// Why a feature cannot be collected that the table of options knows, but nothing on this system collects; "" for a
/// name that the table does not have.
std::string unservedText(const std::string& feature);

} // namespace tarnwell
