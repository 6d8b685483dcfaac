#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarnwell {

struct Subcommand;

/// What the user asked for on the command line.
struct Settings {
    const Subcommand* subcommand = nullptr; ///< null: collect, or report from `inputFile` when that is given

    std::vector<std::string> features; ///< empty: every feature that the machine or the file offers
    std::uint32_t intervalMs = 100;
    std::optional<double> seconds;         ///< none: until Ctrl-C or until the command ends
    std::string outputPrefix;              ///< empty: results go to standard output only
    std::vector<std::string> outputConfig; ///< empty: the files shipped beside the library, or those saved
    std::vector<std::string> moreOutputConfig; ///< behind those
    std::vector<std::string> hardwareConfig; ///< behind the hardware descriptions shipped beside the library
    bool maxDetail = false;                  ///< messages have their triggers of the highest detail
    std::string machine = "/";               ///< root folder or bundle of the machine to read
    std::string endpointTable;               ///< telemetry endpoints of that machine; empty: the usual place
    bool quiet = false;                      ///< neither a progress line nor a word about the saved file
    std::vector<std::string> command;        ///< what stands behind "--"
    std::vector<std::string> arguments;      ///< all of it as given, for the record

    bool saves = true;
    std::string saveFile; ///< empty: named after the prefix or the time
    bool overwrite = false;

    std::string inputFile;                 ///< the saved collection to work on; empty: collect
    std::string outputFile;                ///< what a subcommand writes; empty: standard output
    std::string captureFile;               ///< doctor: where to write a bundle of the machine
    std::vector<std::string> checkedFiles; ///< check-config: empty for the shipped files
    bool asJson = false;                   ///< info: as one JSON object; export: one JSON object a line
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
