#include "plugins/collectors/text_files/text_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <unordered_map>
#include <vector>

namespace text_files {

namespace {

/// Lets a map with text keys be asked with a piece of a file, without making a text of it.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};
using Index = std::unordered_map<std::string, std::size_t, TextHash, std::equal_to<>>;

struct Target {
    unsigned number;
    std::size_t slot;
    RawType type;
};

void addSorted(std::vector<Target>& targets, Target target) {
    const auto place =
        std::upper_bound(targets.begin(), targets.end(), target,
                         [](const Target& left, const Target& right) { return left.number < right.number; });
    targets.insert(place, target);
}

/// Reads the words that sorted targets want out of a text. Gives how many of them it found first.
std::size_t readWords(std::string_view text, const std::vector<Target>& targets, std::span<RawValue> values) {
    std::size_t found = 0;
    unsigned number = 0;
    std::string_view word;
    for (const Target& target : targets) {
        while (number < target.number) {
            word = takeWord(text);
            ++number;
        }
        if (word.empty()) {
            break;
        }
        if (values[target.slot].kind == RawValue::Kind::MISSING) { // the first line of a key counts
            parseValue(word, target.type, values[target.slot]);
            found += values[target.slot].kind == RawValue::Kind::MISSING ? 0 : 1;
        }
    }
    return found;
}

/// Finds what a key of the file belongs to. Files keep their order from read to read, so the key after
/// the last one is tried before the index.
class KeyTable {
public:
    static constexpr std::size_t NONE = static_cast<std::size_t>(-1);

    std::size_t addKey(const std::string& key) {
        const auto [place, isNew] = m_index.try_emplace(key, m_keys.size());
        if (isNew) {
            m_keys.push_back(key);
        }
        return place->second;
    }

    std::size_t find(std::string_view key) {
        if (m_next < m_keys.size() && m_keys[m_next] == key) {
            return m_next++;
        }
        const auto place = m_index.find(key);
        if (place == m_index.end()) {
            return NONE;
        }
        m_next = place->second + 1;
        return place->second;
    }

    void rewind() { m_next = 0; }
    std::size_t size() const { return m_keys.size(); }

private:
    Index m_index;
    std::vector<std::string> m_keys;
    std::size_t m_next = 0;
};

class WordReader : public TextReader {
public:
    void add(const Field& field, const Binding&, std::size_t slot, RawType type, unsigned) override {
        addSorted(m_targets, {field.number, slot, type});
    }

    void read(std::string_view text, std::span<RawValue> values) override {
        // A text is the whole line, which may hold blanks.
        if (m_targets.size() == 1 && m_targets.front().type == RawType::STRING &&
            m_targets.front().number == 1) {
            parseValue(trim(takeLine(text)), RawType::STRING, values[m_targets.front().slot]);
        } else {
            readWords(text, m_targets, values);
        }
    }

private:
    std::vector<Target> m_targets;
};

class LineReader : public TextReader {
public:
    void add(const Field& field, const Binding& binding, std::size_t slot, RawType type, unsigned) override {
        const std::size_t line = m_keys.addKey(field.key.expand(binding));
        m_lines.resize(m_keys.size());
        addSorted(m_lines[line], {field.number, slot, type});
        ++m_targetCount;
    }

    void read(std::string_view text, std::span<RawValue> values) override {
        m_keys.rewind();
        std::size_t missing = m_targetCount;
        while (!text.empty() && missing > 0) {
            std::string_view line = takeLine(text);
            const std::size_t index = m_keys.find(takeWord(line));
            if (index != KeyTable::NONE) {
                missing -= readWords(line, m_lines[index], values);
            }
        }
    }

private:
    KeyTable m_keys;
    std::vector<std::vector<Target>> m_lines;
    std::size_t m_targetCount = 0;
};

class SumReader : public TextReader {
public:
    void add(const Field& field, const Binding& binding, std::size_t slot, RawType, unsigned width) override {
        const std::size_t column = m_keys.addKey(field.key.expand(binding));
        m_targets.resize(m_keys.size());
        m_targets[column].push_back({slot, width});
    }

    void read(std::string_view text, std::span<RawValue> values) override {
        std::string_view heading = takeLine(text);
        m_keys.rewind();
        m_columns.clear();
        m_sums.clear();
        for (std::string_view word = takeWord(heading); !word.empty(); word = takeWord(heading)) {
            m_columns.push_back(m_keys.find(word));
            m_sums.push_back(0);
        }
        while (!text.empty()) {
            addLine_i(takeLine(text));
        }
        for (std::size_t column = 0; column < m_columns.size(); ++column) {
            if (m_columns[column] == KeyTable::NONE) {
                continue;
            }
            for (const SumTarget& target : m_targets[m_columns[column]]) {
                store_i(target, m_sums[column], values[target.slot]);
            }
        }
    }

private:
    struct SumTarget {
        std::size_t slot;
        unsigned width;
    };

    /// Lines with fewer numbers than there are columns count something else than their columns say.
    void addLine_i(std::string_view line) {
        takeWord(line);
        m_line.clear();
        while (m_line.size() < m_columns.size()) {
            const std::string_view word = takeWord(line);
            std::uint64_t number = 0;
            const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
            if (word.empty() || error != std::errc() || end != word.data() + word.size()) {
                return;
            }
            m_line.push_back(number);
        }
        std::transform(m_sums.begin(), m_sums.end(), m_line.begin(), m_sums.begin(), std::plus<>());
    }

    static void store_i(const SumTarget& target, std::uint64_t sum, RawValue& value) {
        const bool isNarrow = target.width > 0 && target.width < 64;
        value.kind = RawValue::Kind::BITS;
        value.bits = isNarrow ? sum & ((std::uint64_t{1} << target.width) - 1) : sum;
    }

    KeyTable m_keys;
    std::vector<std::vector<SumTarget>> m_targets;
    std::vector<std::size_t> m_columns; // of each column, the key it is headed by
    std::vector<std::uint64_t> m_sums;
    std::vector<std::uint64_t> m_line;
};

class BlockReader : public TextReader {
public:
    void add(const Field& field, const Binding& binding, std::size_t slot, RawType type, unsigned) override {
        const std::size_t block = m_keys.addKey(field.key.expand(binding));
        m_blocks.resize(m_keys.size());
        m_blocks[block].push_back({field.blockKey, field.valueKey, slot, type});
    }

    void read(std::string_view text, std::span<RawValue> values) override {
        m_keys.rewind();
        std::size_t block = KeyTable::NONE;
        while (!text.empty()) {
            std::string_view key;
            std::string_view value;
            if (!splitPair(takeLine(text), key, value)) {
                continue;
            }
            if (key == m_blocks.front().front().blockKey) {
                block = m_keys.find(value);
                continue;
            }
            if (block == KeyTable::NONE) {
                continue;
            }
            for (const BlockTarget& target : m_blocks[block]) {
                if (target.valueKey == key && values[target.slot].kind == RawValue::Kind::MISSING) {
                    parseValue(value, target.type, values[target.slot]);
                }
            }
        }
    }

private:
    struct BlockTarget {
        std::string blockKey;
        std::string valueKey;
        std::size_t slot;
        RawType type;
    };

    KeyTable m_keys;
    std::vector<std::vector<BlockTarget>> m_blocks;
};

template <class Reader> std::unique_ptr<TextReader> make() {
    return std::make_unique<Reader>();
}

} // namespace

std::unique_ptr<TextReader> TextReader::create(Field::Kind kind) {
    constexpr std::array MAKERS{&make<WordReader>, &make<LineReader>, &make<SumReader>, &make<BlockReader>};
    return MAKERS.at(static_cast<std::size_t>(kind))();
}

} // namespace text_files
