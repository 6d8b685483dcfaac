#pragma once

#include "common/platform/thread.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarnwell {

struct Subcommand;

/// The part of a collection that is reported, in milliseconds from its begin.
struct ResultSlice {
    double beginMs = 0;
    std::optional<double> endMs; ///< none: up to the end of the collection
};

/// What the user asked for on the command line.
struct Settings {
    const Subcommand* subcommand = nullptr; ///< null: collect, or report from `inputFile` when that is given

    std::vector<std::string> features; ///< empty: every feature that the machine or the file offers
    std::uint32_t intervalMs = 100;
    std::optional<double> seconds; ///< none: until Ctrl-C or until the command ends
    std::optional<pwr::platform::ProcessorPlace> pollProcessor; ///< that the counters are read on; none: any
    std::string outputPrefix;                                   ///< empty: results go to standard output only
    std::vector<std::string> outputConfig; ///< empty: the files shipped beside the library, or those saved
    std::vector<std::string> moreOutputConfig; ///< behind those
    std::vector<std::string> hardwareConfig; ///< behind the hardware descriptions shipped beside the library
    bool maxDetail = false;                  ///< messages have their triggers of the highest detail
    std::string machine = "/";               ///< root folder or bundle of the machine to read
    std::string endpointTable;               ///< telemetry endpoints of that machine; empty: the usual place
    bool quiet = false;                      ///< neither a progress line nor a word about the saved file
    std::string logFile;                     ///< where messages go, too; empty: nowhere
    bool printsFms = false;                  ///< only that
    std::vector<std::string> remarks;        ///< what was asked for and has no effect here, as sentences
    std::vector<std::string> command;        ///< what stands behind "--"
    std::vector<std::string> arguments;      ///< all of it as given, for the record

    double startDelaySeconds = 0;   ///< before the collection begins
    double commandDelaySeconds = 0; ///< from its begin to the command's start

    bool reports = true;                  ///< false: collect and save only
    std::vector<std::string> resultForms; ///< empty: those of all writers
    std::optional<ResultSlice> slice;

    bool saves = true;
    std::string saveFile; ///< empty: named after the prefix or the time
    bool overwrite = false;

    std::string inputFile;                 ///< the saved collection to work on; empty: collect
    std::string outputFile;                ///< what a subcommand writes; empty: standard output
    std::string captureFile;               ///< doctor: where to write a bundle of the machine
    std::vector<std::string> checkedFiles; ///< check-config: empty for the shipped files
    bool asJson = false;                   ///< info: as one JSON object; export: one JSON object a line
    bool asCsv = false;                    ///< export: as comma-separated values
    std::string shell;                     ///< completions: for which one
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
