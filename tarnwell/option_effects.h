#pragma once

#include "common/usage/usage_text.h"
#include "tarnwell/command_option.h"

#include <span>

namespace tarnwell {

/// An option that only this program has, and the section of the usage text that it stands in.
struct OwnOption {
    pwr::usage::Section section;
    pwr::usage::OptionRow text;
};
std::span<const OwnOption> ownOptions();

/// What an option of the program does, by its name.
struct OptionEffect {
    const char* name;
    Apply apply;
    bool mayRepeat = false;
};
std::span<const OptionEffect> optionEffects();

} // namespace tarnwell
