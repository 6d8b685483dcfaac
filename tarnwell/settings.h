#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarnwell {

/// What the user asked for on the command line.
struct Settings {
    enum class Action : std::uint8_t { COLLECT, DOCTOR, INFO };

    Action action = Action::COLLECT;
    std::vector<std::string> features; ///< empty: every feature that the machine offers
    std::uint32_t intervalMs = 100;
    std::optional<double> seconds;         ///< none: until Ctrl-C or until the command ends
    std::string outputPrefix;              ///< empty: results go to standard output only
    std::vector<std::string> outputConfig; ///< empty: the files shipped beside the library
    std::string machine = "/";             ///< root folder or bundle of the machine to read
    std::string captureFile;               ///< doctor: where to write a bundle of the machine
    std::string inputFile;                 ///< info: the saved collection
    bool asJson = false;                   ///< info: for programs, not for people
    bool quiet = false;                    ///< no progress line
    std::vector<std::string> command;      ///< what stands behind "--"
    std::vector<std::string> arguments;    ///< all of it as given, for the record
};

/// What came of reading the command line: settings, or text to print and the code to end with.
struct ParsedCommandLine {
    std::optional<Settings> settings;
    int exitCode = 0;
    std::string output; ///< for standard output (help, version)
    std::string error;  ///< for standard error
};

/// Reads the program's arguments (without the program's name).
ParsedCommandLine parseCommandLine(const std::vector<std::string>& arguments);

} // namespace tarnwell
