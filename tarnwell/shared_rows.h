#pragma once

#include "tarnwell/command_option.h"
#include "tarnwell/option_values.h"

namespace tarnwell {

// Rows that several subcommands have.

inline constexpr CommandOption kSavedFileRow{
    .text = {.name = "FILE", .description = "The saved collection", .argType = "file"},
    .apply = [](Settings& s, const std::string& v) { s.inputFile = nameOf(v, "the saved collection"); },
    .isRequired = true};

inline constexpr pwr::usage::OptionRow kEndpointsText{
    .name = "--endpoints",
    .description = "Table of telemetry endpoints of the machine [default its usual place]",
    .arg = "<path>",
    .argType = "file",
    .notes = "From the root of the machine on, wherever that is."};

inline void setEndpoints(Settings& settings, const std::string& value) {
    settings.endpointTable = machinePathOf(value);
}

inline constexpr CommandOption kEndpointsRow{.text = kEndpointsText, .apply = setEndpoints};

inline constexpr CommandOption kHardwareConfigRow{
    .text = {.name = "--hardware-config",
             .description = "Hardware description on top of the shipped files; repeat for more",
             .arg = "<file>",
             .argType = "file"},
    .apply = [](Settings& s, const std::string& v) { s.hardwareConfig.push_back(v); },
    .mayRepeat = true};

} // namespace tarnwell
