#include "plugins/collectors/text_files/field.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

namespace text_files {

namespace {

constexpr std::string_view BLANKS = " \t\r\n";

template <class Number> bool parseNumber(std::string_view word, Number& number) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size() && !word.empty();
}

template <class Number> void parseBits(std::string_view word, RawValue& value) {
    Number number{};
    if (parseNumber(word, number)) {
        value.kind = RawValue::Kind::BITS;
        value.bits = std::bit_cast<std::uint64_t>(number);
    }
}

bool hasWord(std::string_view text, unsigned number) {
    std::string_view word;
    for (unsigned i = 0; i < number; ++i) {
        word = takeWord(text);
    }
    return !word.empty();
}

} // namespace

/// The bindings found, each once: a file may say something twice, and the first time counts.
struct Field::Findings {
    explicit Findings(const Pattern& pattern) : key(pattern) {}

    void add(Binding binding) {
        if (seen.insert(key.expand(binding)).second) {
            bindings.push_back(std::move(binding));
        }
    }

    const Pattern& key;
    std::set<std::string> seen;
    std::vector<Binding> bindings;
};

void parseValue(std::string_view word, RawType type, RawValue& value) {
    value.kind = RawValue::Kind::MISSING;
    switch (type) {
    case RawType::UINT: parseBits<std::uint64_t>(word, value); break;
    case RawType::INT: parseBits<std::int64_t>(word, value); break;
    case RawType::REAL: parseBits<double>(word, value); break;
    case RawType::STRING:
        value.kind = RawValue::Kind::TEXT;
        value.text.assign(word);
        break;
    }
}

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

std::string_view takeWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
    const std::size_t end = std::min(text.find_first_of(BLANKS), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(end);
    return word;
}

std::string_view trim(std::string_view text) {
    const std::size_t begin = std::min(text.find_first_not_of(BLANKS), text.size());
    const std::size_t last = text.find_last_not_of(BLANKS);
    return begin == text.size() ? std::string_view() : text.substr(begin, last - begin + 1);
}

bool splitPair(std::string_view line, std::string_view& key, std::string_view& value) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) {
        return false;
    }
    key = trim(line.substr(0, colon));
    value = trim(line.substr(colon + 1));
    return true;
}

int Field::parse(std::string_view text, std::string& error) {
    text = trim(text);
    if (text.empty()) {
        return 0;
    }
    if (text.starts_with('[')) {
        const std::size_t close = std::min(text.find(']'), text.size());
        std::string_view head = text.substr(1, close == text.size() ? 0 : close - 1);
        kind = Kind::BLOCK;
        blockKey = takeWord(head);
        valueKey = trim(text.substr(std::min(close + 1, text.size())));
        if (blockKey.empty() || trim(head).empty() || valueKey.empty()) {
            error = "expected \"[KEY VALUE] KEY\"";
            return 1;
        }
        return key.parse(trim(head), error);
    }
    std::string_view rest = text;
    const std::string_view first = takeWord(rest);
    const std::string_view second = trim(rest);
    if (first == "sum" && !second.empty()) {
        kind = Kind::SUM;
        return key.parse(second, error);
    }
    kind = second.empty() ? Kind::WORD : Kind::KEYED;
    if (!parseNumber(second.empty() ? first : second, number) || number == 0) {
        error = "the number of a word, from 1, is missing";
        return 1;
    }
    return kind == Kind::KEYED ? key.parse(first, error) : 0;
}

void Field::findHeadings_i(std::string_view text, const Binding& known, Findings& found) const {
    std::string_view heading = takeLine(text);
    for (std::string_view word = takeWord(heading); !word.empty(); word = takeWord(heading)) {
        Binding binding = known;
        if (key.match(word, binding)) {
            found.add(std::move(binding));
        }
    }
}

void Field::findLines_i(std::string_view text, const Binding& known, Findings& found) const {
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        Binding binding = known;
        if (key.match(takeWord(line), binding) && hasWord(line, number)) {
            found.add(std::move(binding));
        }
    }
}

void Field::findBlocks_i(std::string_view text, const Binding& known, Findings& found) const {
    std::optional<Binding> block;
    while (!text.empty()) {
        std::string_view name;
        std::string_view value;
        if (!splitPair(takeLine(text), name, value)) {
            continue;
        }
        Binding binding = known;
        if (name == blockKey) {
            block = key.match(value, binding) ? std::optional(std::move(binding)) : std::nullopt;
        } else if (block && name == valueKey) {
            found.add(std::move(*block));
            block.reset();
        }
    }
}

std::vector<Binding> Field::findAll(std::string_view text, const Binding& known) const {
    if (kind == Kind::WORD) {
        return hasWord(text, number) ? std::vector<Binding>{known} : std::vector<Binding>();
    }
    Findings found(key);
    switch (kind) {
    case Kind::WORD: break;
    case Kind::KEYED: findLines_i(text, known, found); break;
    case Kind::SUM: findHeadings_i(text, known, found); break;
    case Kind::BLOCK: findBlocks_i(text, known, found); break;
    }
    return std::move(found.bindings);
}

} // namespace text_files
