#include "common/saved/sample_block_encoder.h"

#include "common/saved/sample_reference.h"
#include "common/saved/sample_times.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace pwr::saved {

namespace {

// What a value and a reading take at most, their share of the block's head included.
constexpr std::size_t c_bytesOfValue = 24;
constexpr std::size_t c_bytesOfReading = 64;

/// Texts and the numbers that stand for them.
struct TextList {
    std::vector<std::string> texts;
    std::unordered_map<std::string, std::uint64_t> numbers;
    std::size_t bytes = 0;

    std::uint64_t numberOf(std::string_view text) {
        const auto [found, isNew] = numbers.try_emplace(std::string(text), texts.size());
        if (isNew) {
            texts.push_back(found->first);
            bytes += text.size() + c_bytesOfValue;
        }
        return found->second;
    }
    void clear() {
        texts.clear();
        numbers.clear();
        bytes = 0;
    }
};

struct Record {
    tw_driver_msg header;
    std::size_t start; // of its values
    std::uint32_t part;
};

/// A column whose values differ, while the rows are written.
struct ChangingColumn {
    std::uint32_t index;
    ColumnCoding coding;
    std::uint64_t previous;
    std::uint64_t step;
};

struct Part {
    PartKey key;
    const ReferencePart* reference; // null when there is none
    pw_u8_t flags;                  // of most readings
    PartTimes times;
    std::vector<std::uint32_t> records;
    std::vector<ReferenceColumn> columns; // how they are coded
    std::vector<ChangingColumn> changing; // in the order of their codes
};

PartKey keyOf(const tw_driver_msg& header) {
    return {header.id, header.first_instance, header.count};
}

} // namespace

struct SampleBlockEncoder::State {
    std::vector<Record> records;
    std::vector<std::uint64_t> bits; // a text's number in `texts`
    std::vector<ValueKind> kinds;
    std::uint64_t textBytes = 0; // of all values
    TextList texts;

    SampleReference reference; // what decoders know
    std::unordered_map<std::uint64_t, std::size_t> referenceParts;
    SampleReference latest; // what the next reference tells
    std::unordered_map<std::uint64_t, std::size_t> latestParts;
    TextList latestTexts;

    std::vector<Part> parts;
    ColumnChooser chooser;
    std::vector<std::uint64_t> column;
    std::vector<std::uint64_t> differing;
    std::vector<std::uint64_t> spanCodes; // of each record
    std::vector<std::uint64_t> tickCodes;

    void divide_i();
    void writeParts_i(BitWriter& out) const;
    void writeOrder_i(BitWriter& out) const;
    void writeExceptions_i(BitWriter& out) const;
    void writeTimes_i(BitWriter& out);
    void codeTimes_i(const TimePrecision& precision);
    void writeShift_i(BitWriter& out, const std::vector<std::uint64_t>& codes, Part& part, bool isSpan);
    void writeColumns_i(BitWriter& out, Part& part);
    void writeStill_i(BitWriter& out, std::uint64_t bits, ValueKind kind, const ReferenceColumn& base) const;
    void writeChanging_i(BitWriter& out, Part& part, std::uint32_t index, const ReferenceColumn& base);
    void writeRows_i(BitWriter& out);
    void writeValue_i(BitWriter& out, ChangingColumn& column, std::uint64_t bits, ValueKind kind,
                      bool isFirst) const;
    void remember_i();
    bool isSame_i(std::uint64_t bits, ValueKind kind, const ReferenceColumn& base) const;
};

/// Sorts the records by part, parts in the order in which they come first.
void SampleBlockEncoder::State::divide_i() {
    parts.clear();
    std::unordered_map<std::uint64_t, std::uint32_t> numbers;
    for (std::uint32_t i = 0; i < records.size(); ++i) {
        const PartKey key = keyOf(records[i].header);
        const auto [found, isNew] =
            numbers.try_emplace(key.packed(), static_cast<std::uint32_t>(parts.size()));
        if (isNew) {
            const auto known = referenceParts.find(key.packed());
            const ReferencePart* const base =
                known == referenceParts.end() ? nullptr : &reference.parts[known->second];
            parts.push_back({key,
                             base,
                             base == nullptr ? records[i].header.flags : base->flags,
                             base == nullptr ? PartTimes{} : base->times,
                             {},
                             {},
                             {}});
        }
        records[i].part = found->second;
        parts[found->second].records.push_back(i);
    }
}

void SampleBlockEncoder::State::writeParts_i(BitWriter& out) const {
    out.number(parts.size());
    std::size_t expected = 0; // the reference's parts mostly come in its order
    for (const Part& part : parts) {
        const auto index = part.reference == nullptr
                               ? reference.parts.size()
                               : static_cast<std::size_t>(part.reference - reference.parts.data());
        out.bit(part.reference != nullptr && index == expected);
        if (part.reference == nullptr) {
            out.bit(false);
            write(out, part.key);
            out.bits(part.flags, c_byteBits);
        } else {
            if (index != expected) {
                out.bit(true);
                out.number(index);
            }
            expected = index + 1;
        }
    }
}

/// How many guesses of the next part are right, then the part that comes instead, and so on.
void SampleBlockEncoder::State::writeOrder_i(BitWriter& out) const {
    out.number(records.size());
    PartGuess guess(parts.size());
    std::uint64_t right = 0;
    for (const Record& record : records) {
        if (guess.next() == record.part) {
            ++right;
        } else {
            out.number(right);
            out.number(record.part);
            right = 0;
        }
        guess.learn(record.part);
    }
    if (right > 0) {
        out.number(right);
    }
}

void SampleBlockEncoder::State::writeExceptions_i(BitWriter& out) const {
    const auto isException = [this](const Record& record) {
        return record.header.flags != parts[record.part].flags || record.header.reserved != 0;
    };
    out.number(static_cast<std::uint64_t>(std::count_if(records.begin(), records.end(), isException)));
    std::size_t next = 0;
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (isException(records[i])) {
            out.number(i - next);
            out.bits(records[i].header.flags, c_byteBits);
            out.wide(records[i].header.reserved);
            next = i + 1;
        }
    }
}

void SampleBlockEncoder::State::writeTimes_i(BitWriter& out) {
    TimePrecision precision;
    for (const Record& record : records) {
        const auto length = static_cast<unsigned>(std::bit_width(record.header.read_span));
        const auto spanZeros = static_cast<unsigned>(std::countr_zero(record.header.read_span));
        const auto tickZeros = static_cast<unsigned>(std::countr_zero(record.header.timestamp));
        precision.spanBits = std::max(precision.spanBits, length - std::min(length, spanZeros));
        precision.tickBits = std::max(precision.tickBits, length - std::min(length, tickZeros));
    }
    codeTimes_i(precision);
    out.bits(precision.spanBits - 1, c_shiftOfSpanBits);
    out.bits(precision.tickBits, c_shiftOfGapBits);
    out.wide(zigzag(records.front().header.timestamp - reference.tick));
    for (Part& part : parts) {
        writeShift_i(out, spanCodes, part, true);
        writeShift_i(out, tickCodes, part, false);
    }
}

void SampleBlockEncoder::State::codeTimes_i(const TimePrecision& precision) {
    spanCodes.clear();
    tickCodes.clear();
    TickGuess guess;
    for (const Record& record : records) {
        PartTimes& times = parts[record.part].times;
        const tw_driver_msg& header = record.header;
        spanCodes.push_back(zigzag(precision.indexOf(header.read_span) - precision.indexOf(times.span)));
        times.span = header.read_span;
        if (tickCodes.empty()) {
            tickCodes.push_back(0); // told in full
        } else {
            const std::uint64_t base = guess.withoutGap(header.read_span);
            const unsigned shift = precision.tickShift(header.read_span);
            tickCodes.push_back(
                zigzag((header.timestamp >> shift) - TickGuess::rounded(base + times.gap, shift)));
            times.gap = header.timestamp - base;
        }
        guess.begin(header.timestamp, header.read_span);
    }
}

void SampleBlockEncoder::State::writeShift_i(BitWriter& out, const std::vector<std::uint64_t>& codes,
                                             Part& part, bool isSpan) {
    column.clear();
    for (const std::uint32_t record : part.records) {
        column.push_back(codes[record]);
    }
    const unsigned description = isSpan ? c_shiftOfSpanBits : c_shiftOfGapBits;
    pw_u8_t& shift = isSpan ? part.times.spanShift : part.times.gapShift;
    const unsigned best = std::min(bestShift(column), static_cast<unsigned>(lowBits(description)));
    const bool isUsual = lengthOfAll(column, shift) <= lengthOfAll(column, best) + description;
    out.bit(isUsual);
    if (!isUsual) {
        shift = static_cast<pw_u8_t>(best);
        out.bits(best, description);
    }
}

bool SampleBlockEncoder::State::isSame_i(std::uint64_t value, ValueKind kind,
                                         const ReferenceColumn& base) const {
    if (kind != base.kind) {
        return false;
    }
    return kind == ValueKind::TEXT ? texts.texts[static_cast<std::size_t>(value)] ==
                                         reference.texts[static_cast<std::size_t>(base.bits)]
                                   : value == base.bits;
}

void SampleBlockEncoder::State::writeColumns_i(BitWriter& out, Part& part) {
    const std::size_t first = records[part.records.front()].start;
    differing.assign(part.key.count, 0);
    for (const std::uint32_t record : part.records) {
        const std::size_t start = records[record].start;
        for (std::size_t i = 0; i < part.key.count; ++i) {
            differing[i] |= (bits[start + i] ^ bits[first + i]) |
                            static_cast<std::uint64_t>(kinds[start + i] != kinds[first + i] ? 1 : 0);
        }
    }
    part.columns.resize(part.key.count);
    for (std::uint32_t i = 0; i < part.key.count; ++i) {
        const ReferenceColumn base =
            part.reference == nullptr ? ReferenceColumn{} : part.reference->columns[i];
        part.columns[i] = base;
        if (differing[i] == 0) {
            writeStill_i(out, bits[first + i], kinds[first + i], base);
        } else {
            writeChanging_i(out, part, i, base);
        }
    }
    std::stable_sort(part.changing.begin(), part.changing.end(),
                     [](const ChangingColumn& left, const ChangingColumn& right) {
                         return left.coding.code < right.coding.code;
                     });
}

void SampleBlockEncoder::State::writeStill_i(BitWriter& out, std::uint64_t value, ValueKind kind,
                                             const ReferenceColumn& base) const {
    const bool isSame = isSame_i(value, kind, base);
    out.bit(!isSame);
    if (isSame) {
        return;
    }
    out.bit(false); // not changing
    out.bit(kind != ValueKind::BITS);
    if (kind == ValueKind::BITS) {
        out.wide(zigzag(value - (base.kind == ValueKind::BITS ? base.bits : 0)));
        return;
    }
    out.bit(kind == ValueKind::TEXT);
    if (kind == ValueKind::TEXT) {
        out.number(value);
    }
}

void SampleBlockEncoder::State::writeChanging_i(BitWriter& out, Part& part, std::uint32_t index,
                                                const ReferenceColumn& base) {
    column.clear();
    for (const std::uint32_t record : part.records) {
        const std::size_t at = records[record].start + index;
        if (kinds[at] == ValueKind::BITS) {
            column.push_back(bits[at]);
        }
    }
    const bool isMixed = column.size() != part.records.size();
    const std::uint64_t begin = base.kind == ValueKind::BITS ? base.bits : 0;
    const ColumnCoding coding = isMixed ? chooser.chooseMixed(column, begin)
                                        : chooser.choose(column, base.hasCoding ? &base.coding : nullptr);
    out.bits(lowBits(2), 2); // other than the reference's, and changing
    const bool isUsual = base.hasCoding && coding == base.coding;
    out.bit(isUsual);
    if (!isUsual) {
        write(out, coding);
    }
    ChangingColumn changing{index, coding, begin, 0};
    if (!isMixed) {
        out.wide(zigzag(column.front() - begin));
        changing.previous = column.front();
    }
    if (coding.code == ColumnCode::SECOND) {
        changing.step = column[1] - column[0];
        out.wide(zigzag(changing.step));
    }
    part.changing.push_back(changing);
    part.columns[index].hasCoding = true;
    part.columns[index].coding = coding;
}

void SampleBlockEncoder::State::writeRows_i(BitWriter& out) {
    std::vector<std::uint32_t> written(parts.size(), 0);
    for (std::size_t i = 0; i < records.size(); ++i) {
        const Record& record = records[i];
        Part& part = parts[record.part];
        out.rice(spanCodes[i], part.times.spanShift);
        if (i > 0) {
            out.rice(tickCodes[i], part.times.gapShift);
        }
        const std::uint32_t row = written[record.part]++;
        for (ChangingColumn& changing : part.changing) {
            const std::size_t at = record.start + changing.index;
            // The second row of an even counter follows from the head alone.
            if (changing.coding.code == ColumnCode::SECOND && row == 1) {
                changing.previous = bits[at];
            } else {
                writeValue_i(out, changing, bits[at], kinds[at], row == 0);
            }
        }
    }
}

void SampleBlockEncoder::State::writeValue_i(BitWriter& out, ChangingColumn& changing, std::uint64_t value,
                                             ValueKind kind, bool isFirst) const {
    const ColumnCoding& coding = changing.coding;
    if (coding.code == ColumnCode::MIXED) {
        out.bit(kind != ValueKind::BITS);
        if (kind != ValueKind::BITS) {
            out.bit(kind == ValueKind::TEXT);
            out.bits(value, kind == ValueKind::TEXT ? widthOfTexts(texts.texts.size()) : 0);
            return;
        }
    } else if (isFirst) {
        return; // told by the head
    }
    const std::uint64_t delta = value - changing.previous;
    switch (coding.code) {
    case ColumnCode::SECOND:
        out.rice(zigzag(delta - changing.step), coding.shift);
        changing.step = delta;
        break;
    case ColumnCode::SPARSE:
        out.bit(delta != 0);
        if (delta != 0) {
            out.rice(zigzag(delta) - 1, coding.shift);
        }
        break;
    case ColumnCode::XOR:
        out.bit(delta != 0);
        out.bits((value ^ changing.previous) >> coding.shift, delta != 0 ? coding.width : 0);
        break;
    default: out.rice(zigzag(delta), coding.shift);
    }
    changing.previous = value;
}

/// The last values of the block, for the next reference.
void SampleBlockEncoder::State::remember_i() {
    for (Part& part : parts) {
        const auto [found, isNew] = latestParts.try_emplace(part.key.packed(), latest.parts.size());
        if (isNew) {
            latest.parts.emplace_back();
        }
        const std::size_t start = records[part.records.back()].start;
        for (std::size_t i = 0; i < part.columns.size(); ++i) {
            ReferenceColumn& last = part.columns[i];
            last.kind = kinds[start + i];
            last.bits = last.kind == ValueKind::TEXT
                            ? latestTexts.numberOf(texts.texts[static_cast<std::size_t>(bits[start + i])])
                            : bits[start + i];
        }
        latest.parts[found->second] = {part.key, part.flags, part.times, std::move(part.columns)};
    }
    latest.tick = records.back().header.timestamp;
}

SampleBlockEncoder::SampleBlockEncoder() : m_state(std::make_unique<State>()) {}
SampleBlockEncoder::~SampleBlockEncoder() = default;

void SampleBlockEncoder::add(const CollectionData& reading) {
    State& state = *m_state;
    state.records.push_back({reading.header(), state.bits.size(), 0});
    // The header's own count is the collector's to write; what is there counts.
    state.records.back().header.count = static_cast<pw_u16_t>(reading.size());
    for (std::size_t i = 0; i < reading.size(); ++i) {
        const bool isText = reading.isText(i);
        state.textBytes += isText ? reading.getText(i).size() : 0;
        state.bits.push_back(isText ? state.texts.numberOf(reading.getText(i)) : reading.getBits(i));
        state.kinds.push_back(isText                 ? ValueKind::TEXT
                              : reading.isPresent(i) ? ValueKind::BITS
                                                     : ValueKind::MISSING);
    }
}

std::size_t SampleBlockEncoder::heldBytes() const {
    return m_state->bits.size() * c_bytesOfValue + (m_state->records.size() + 1) * c_bytesOfReading +
           m_state->texts.bytes;
}

std::uint64_t SampleBlockEncoder::firstTick() const {
    return m_state->records.empty() ? 0 : m_state->records.front().header.timestamp;
}

std::uint64_t SampleBlockEncoder::readings() const {
    return m_state->records.size();
}

std::uint64_t SampleBlockEncoder::values() const {
    return m_state->bits.size();
}

void SampleBlockEncoder::finish(std::vector<char>& payload) {
    State& state = *m_state;
    if (state.records.empty()) {
        return;
    }
    const std::size_t begin = payload.size();
    state.divide_i();
    writeTexts(payload, state.texts.texts);
    BitWriter out(payload);
    out.number(state.reference.number);
    writeTextLengths(out, state.texts.texts);
    state.writeParts_i(out);
    state.writeOrder_i(out);
    state.writeExceptions_i(out);
    state.writeTimes_i(out);
    for (Part& part : state.parts) {
        state.writeColumns_i(out, part);
    }
    state.writeRows_i(out);
    out.finish();
    const std::uint64_t least =
        (state.bits.size() + state.records.size()) / SampleBlockEncoder::VALUES_PER_BYTE;
    payload.resize(std::max(payload.size(), begin + static_cast<std::size_t>(least)), 0);
    state.remember_i();
    state.records.clear();
    state.bits.clear();
    state.kinds.clear();
    state.texts.clear();
    state.textBytes = 0;
}

void SampleBlockEncoder::makeReference(std::vector<char>& payload) {
    State& state = *m_state;
    ++state.latest.number;
    state.latest.texts = state.latestTexts.texts;
    state.latest.write(payload);
    state.reference = std::move(state.latest);
    state.referenceParts = std::move(state.latestParts);
    // Parts that come no more are in this reference for the last time.
    state.latest = {};
    state.latest.number = state.reference.number;
    state.latest.tick = state.reference.tick;
    state.latestParts.clear();
    state.latestTexts.clear();
}

} // namespace pwr::saved
