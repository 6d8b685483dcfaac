#pragma once

#include "tarnwell/settings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwell {

// Readers of option values. What is out of range throws BadValue.

std::uint32_t intervalOf(const std::string& text);
/// At least a millisecond.
double collectionSecondsOf(const std::string& text);
/// Zero or more.
double delaySecondsOf(const std::string& text);
/// A path on the machine that is read.
const std::string& machinePathOf(const std::string& text);
/// A name of something: an empty text is a variable that was not set, and results would silently go nowhere.
const std::string& nameOf(const std::string& text, const char* what);
/// "1000-5000", "1000-" or "-5000".
ResultSlice sliceOf(const std::string& text);
/// "3", counted through all groups, or "GROUP:NUMBER".
pwr::platform::ProcessorPlace processorOf(const std::string& text);
/// The words of a command line: separated by blanks, kept together by quotes of either kind.
std::vector<std::string> wordsOf(const std::string& text);

} // namespace tarnwell
