#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "plugins/collectors/message_keys.h"
#include "plugins/collectors/pattern.h"

namespace text_files {

using collectors::Binding;
using collectors::Pattern;
using collectors::RawType;

/// One value of a reading.
struct RawValue {
    enum class Kind : std::uint8_t { MISSING, BITS, TEXT };

    Kind kind = Kind::MISSING;
    std::uint64_t bits = 0;
    std::string text;
};

/// Turns one word into a value; anything but a whole number of the type leaves it missing.
void parseValue(std::string_view word, RawType type, RawValue& value);

/// Which value of a text file is meant (the key FIELD of an operation):
///     (nothing)              the file is one value
///     3                      the third word of the file
///     ctxt 1                 the first word behind the word "ctxt" at the start of a line
///     sum CPU{cpu}           the sum of a column under its heading, over the lines that have all columns
///     [processor {cpu}] MHz  in the block that starts with "processor : N", the value of "MHz : ..."
struct Field {
    enum class Kind : std::uint8_t { WORD, KEYED, SUM, BLOCK };

    Kind kind = Kind::WORD;
    unsigned number = 1;  // of the word, from 1
    std::string blockKey; // BLOCK: the key that starts a block
    Pattern key;          // KEYED: first word; SUM: heading; BLOCK: the starting key's value
    std::string valueKey; // BLOCK: the key whose value is meant

    /// 1 with what is wrong in `error`.
    int parse(std::string_view text, std::string& error);

    /// The different bindings of the key's free variables in the text of a file; one empty binding for
    /// a field without a key. Nothing when the text does not have the field.
    std::vector<Binding> findAll(std::string_view text, const Binding& known) const;

private:
    struct Findings;

    void findHeadings_i(std::string_view text, const Binding& known, Findings& found) const;
    void findLines_i(std::string_view text, const Binding& known, Findings& found) const;
    void findBlocks_i(std::string_view text, const Binding& known, Findings& found) const;
};

/// Text walking without copies. The words of a line are separated by blanks and tabs.
std::string_view takeLine(std::string_view& text);
std::string_view takeWord(std::string_view& text);
std::string_view trim(std::string_view text);
/// Splits "key : value"; false when there is no colon.
bool splitPair(std::string_view line, std::string_view& key, std::string_view& value);

} // namespace text_files
