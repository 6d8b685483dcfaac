#include "tarnwell/command_options.h"

#include "tarnwell/settings.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>

namespace tarnwell {
namespace {

// The saved interval has 16 bits; below a millisecond the reads would cost more than they show.
constexpr std::uint32_t kShortestIntervalMs = 1;
constexpr std::uint32_t kLongestIntervalMs = 60000;
constexpr double kShortestSeconds = 0.001;
constexpr double kLongestSeconds = 366.0 * 24 * 3600;

[[noreturn]] void refuse(const char* option, const std::string& value, const std::string& expected) {
    throw CLI::ValidationError(std::string(option) + " " + (value.empty() ? "\"\"" : value),
                               "give " + expected);
}

template <class Number> bool isWhole(const std::string& text, Number& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

} // namespace

void declareInterval(CLI::App& options, Settings& settings, const char* description) {
    const auto read = [&settings](const std::string& text) {
        std::uint32_t value = 0;
        if (!isWhole(text, value) || value < kShortestIntervalMs || value > kLongestIntervalMs) {
            refuse("--interval", text, "a whole number of milliseconds from 1 to 60000");
        }
        settings.intervalMs = value;
    };
    options.add_option_function<std::string>("--interval", read, description)->type_name("MS");
}

void declareTime(CLI::App& options, Settings& settings, const char* description) {
    const auto read = [&settings](const std::string& text) {
        double value = 0;
        if (!isWhole(text, value) || !std::isfinite(value) || value < kShortestSeconds ||
            value > kLongestSeconds) {
            refuse("--time", text, "a number of seconds from 0.001 to 31622400 (366 days)");
        }
        settings.seconds = value;
    };
    options.add_option_function<std::string>("--time", read, description)->type_name("S");
}

void declareMachine(CLI::App& options, Settings& settings, const char* description) {
    options.add_option("--machine", settings.machine, description)->type_name("PLACE");
}

void declareEndpoints(CLI::App& options, Settings& settings) {
    const auto read = [&settings](const std::string& text) {
        if (text.empty() || text.front() != '/') {
            refuse("--endpoints", text, "the table's path on the machine, from / on");
        }
        settings.endpointTable = text;
    };
    options
        .add_option_function<std::string>(
            "--endpoints", read, "the machine's table of telemetry endpoints, if not in its usual place")
        ->type_name("PATH");
}

void declareHardwareConfig(CLI::App& options, Settings& settings) {
    options
        .add_option("--hardware-config", settings.hardwareConfig,
                    "hardware description on top of the shipped files; repeat for more")
        ->type_name("FILE")
        ->allow_extra_args(false);
}

void declareSavedFile(CLI::App& options, Settings& settings) {
    options.add_option("FILE", settings.inputFile, "the saved collection")->required();
}

} // namespace tarnwell
