#pragma once

#include <array>

namespace tarnwell {

// What help and manual page both say, beside the options.

struct TextPair {
    const char* first;
    const char* second;
};

inline constexpr const char* kSummary = "measure power, performance and heat of a machine";

inline constexpr const char* kDescription =
    "Collects power, performance and thermal counters of this machine, prints summary tables and saves the "
    "collection. Collects for --time seconds, until Ctrl-C, or while a command runs.";

inline constexpr std::array kForms{
    TextPair{"[options]", "Collect from this machine"},
    TextPair{"[options] -- COMMAND", "Collect while COMMAND runs"},
    TextPair{"--input FILE", "Report from a saved collection"},
    TextPair{"--feature", "List what this machine offers, as doctor does"},
    TextPair{"SUBCOMMAND --help", "The options of a subcommand (see below)"},
};

inline constexpr std::array kExamples{
    TextPair{"tarnwell --time 10", "Collect everything for ten seconds"},
    TextPair{"tarnwell -f idle -i 50", "One feature, every 50 ms, until Ctrl-C"},
    TextPair{"tarnwell -o run1 -- make -j4",
             "While a command runs; writes run1.txt, run1_*.csv and run1.twc"},
    TextPair{"tarnwell --input run1.twc --result-slice-range 5000-",
             "The same report again, without the first five seconds"},
};

inline constexpr std::array kExitCodes{
    TextPair{"0", "Done"},
    TextPair{"1", "Failed"},
    TextPair{"2", "Wrong usage"},
    TextPair{"3", "Partial: something that was asked for is missing"},
    TextPair{"4", "The saved collection is damaged or was not closed; the report says what is missing"},
    TextPair{"127", "The command could not be started"},
};

inline constexpr const char* kExitCodeNote = "A command's own code wins when it is not zero.";

} // namespace tarnwell
