#pragma once

namespace pwr::usage {

/// What is said of one option, as data: a table of rows can be constexpr, so that nothing runs when the library is
/// loaded. Texts live for the whole process and are ASCII; "" is an attribute that the option does not have.
/// The library's own table is made of these, and a host describes the options that it adds in the same way.
struct OptionRow {
    const char* name; ///< as typed: "--interval", or "gbe-int" for an option of a feature
    const char* description = "";
    const char* arg = ""; ///< what stands for its argument, "<milliseconds>"; "" when it takes none
    const char* abbreviation = "";
    const char* argDefault = "";
    const char* argUnits = "";
    const char* argType =
        ""; ///< "integer", "number", "text", "file", "place", "command", "word" (of the valid ones)
    const char* notes = "";
    const char* validArgs = ""; ///< separated by commas
    bool isHidden = false;      ///< known to the parser and to the JSON description, but not to the text
};

} // namespace pwr::usage
