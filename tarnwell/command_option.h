#pragma once

#include "common/usage/option.h"

#include <string>

namespace tarnwell {

struct Settings;

/// Thrown where a value is not what an option takes: what to give instead.
struct BadValue {
    std::string expected;
};

/// What an option does with the settings; null when the reader of the command line answers it itself. @p value is
/// "" for an option without one. Throws BadValue.
using Apply = void (*)(Settings& settings, const std::string& value);

/// A row for an option or an argument of a subcommand. An argument's name has no dashes: "FILE".
struct CommandOption {
    pwr::usage::OptionRow text;
    Apply apply = nullptr;
    bool mayRepeat = false;
    bool isRequired = false;
};

/// An option as the command line knows it.
struct KnownOption {
    pwr::usage::Option text;
    Apply apply = nullptr;
    bool mayRepeat = false;
    bool isRequired = false;

    bool takesValue() const { return !text.getAttribute(pwr::usage::Option::Attribute::ARG).empty(); }
    bool isArgument() const { return text.getName().front() != '-'; }
    bool isCalled(const std::string& name) const {
        return text.getName() == name ||
               (text.getAttribute(pwr::usage::Option::Attribute::ABBREVIATION) == name && !name.empty());
    }
};

} // namespace tarnwell
