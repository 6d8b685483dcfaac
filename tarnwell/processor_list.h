#pragma once

#include <string>
#include <vector>

namespace tarnwell {

/// The numbers in a list such as "0-3,8,10-11" as the system's files write it, ascending and each once.
/// Empty text gives an empty list; text that is no such list gives false and leaves @p out alone.
bool parseProcessorList(const std::string& text, std::vector<int>& out);

} // namespace tarnwell
