#pragma once

#include "tarnwell/configuration_texts.h"

#include <set>
#include <string>

namespace pwr {
class InputMsg;
}

namespace tarnwell {

/// The place "FILE:LINE" of the statement that a complaint about a message is about: the one whose key and value the
/// complaint has, else the one whose key it has, else the message's first. "" when no text has any.
std::string placeOf(const ConfigurationTexts& texts, const pwr::InputMsg& message,
                    const std::string& complaint);

/// The statements of some capabilities (by their prefixes) and of some platforms' own lines, as texts to be saved: file by file, without
/// comments, under names that begin with kHardwareTextPrefix. Files without any are left out.
ConfigurationTexts usedStatements(const ConfigurationTexts& texts, const std::set<std::string>& platforms,
                                  const std::set<std::string>& prefixes);

/// All platforms that statements are about.
std::set<std::string> platformsIn(const ConfigurationTexts& texts);

} // namespace tarnwell
