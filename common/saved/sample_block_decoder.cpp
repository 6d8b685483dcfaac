#include "common/saved/sample_block_decoder.h"

#include "common/saved/sample_block_encoder.h"
#include "common/saved/sample_reference.h"
#include "common/saved/sample_times.h"

#include <algorithm>
#include <array>
#include <deque>

namespace pwr::saved {

namespace {

// A reference's copy may come after the next reference was made; older ones are not needed any more.
constexpr std::size_t c_keptReferences = 4;
constexpr std::uint64_t c_mostText = std::uint64_t{64} << 20; // of a reading, whatever its block's size
constexpr std::uint64_t c_mostValues = SampleBlockEncoder::MAX_VALUES + CollectionData::MAX_VALUES;

struct ChangingColumn {
    std::uint32_t index;
    ColumnCoding coding;
    std::uint64_t step; // SECOND: the difference before; MIXED: the number before
};

struct Part {
    PartKey key;
    pw_u8_t flags = 0;
    PartTimes times;
    PartTimes timesAtBegin; // for the second pass
    std::vector<std::uint64_t> row;
    std::vector<ValueKind> kinds;
    std::vector<ChangingColumn> changing; // in the order of their codes
    std::array<std::size_t, c_columnCodes + 1> firstOfCode{};
    std::uint32_t readings = 0;  // given so far
    std::uint64_t textBytes = 0; // of texts that stay
    bool hasTexts = false;
    bool hasMissing = false;
};

struct Run {
    std::uint64_t right; // guesses that hold
    std::uint32_t then;  // part behind them, unless the block ends
};

struct Exception {
    std::uint64_t record;
    pw_u8_t flags;
    pw_u32_t reserved;
};

/// Where a pass over the readings stands.
struct Cursor {
    BitReader bits;
    PartGuess guess;
    TickGuess ticks;
    std::uint64_t record = 0;
    std::size_t run = 0;
    std::uint64_t rightLeft = 0;
    std::size_t exception = 0;
};

void sortByCode(Part& part) {
    const auto isBelow = [](const ChangingColumn& left, const ChangingColumn& right) {
        return left.coding.code < right.coding.code;
    };
    if (!std::is_sorted(part.changing.begin(), part.changing.end(), isBelow)) {
        std::stable_sort(part.changing.begin(), part.changing.end(), isBelow);
    }
    for (unsigned code = 0; code <= c_columnCodes; ++code) {
        const auto first = std::partition_point(part.changing.begin(), part.changing.end(),
                                                [code](const ChangingColumn& column) {
                                                    return static_cast<unsigned>(column.coding.code) < code;
                                                });
        part.firstOfCode[code] = static_cast<std::size_t>(first - part.changing.begin());
    }
}

/// Both take a copy of the reader, which stays in registers: rows could be anywhere, also where the reader stands.
void skipRow(BitReader& stream, const Part& part, bool isFirst) {
    BitReader in = stream;
    const auto code = [&part](ColumnCode wanted) {
        const auto at = static_cast<std::size_t>(wanted);
        return std::span(part.changing)
            .subspan(part.firstOfCode[at], part.firstOfCode[at + 1] - part.firstOfCode[at]);
    };
    if (isFirst) {
        return;
    }
    for (const ChangingColumn& column : code(ColumnCode::DELTA)) {
        in.skipRice(column.coding.shift);
    }
    if (part.readings > 1) { // the second row follows from the head
        for (const ChangingColumn& column : code(ColumnCode::SECOND)) {
            in.skipRice(column.coding.shift);
        }
    }
    for (const ChangingColumn& column : code(ColumnCode::SPARSE)) {
        if (in.bit()) {
            in.skipRice(column.coding.shift);
        }
    }
    for (const ChangingColumn& column : code(ColumnCode::XOR)) {
        if (in.bit()) {
            in.bits(column.coding.width);
        }
    }
    stream = in;
}

void readRow(BitReader& stream, Part& part, bool isFirst) {
    if (isFirst) {
        return;
    }
    BitReader in = stream;
    std::uint64_t* const row = part.row.data();
    const ChangingColumn* const columns = part.changing.data();
    std::size_t i = 0;
    for (; i < part.firstOfCode[1]; ++i) {
        row[columns[i].index] += unzigzag(in.rice(columns[i].coding.shift));
    }
    const bool stepsOnly = part.readings == 1;
    for (; i < part.firstOfCode[2]; ++i) {
        ChangingColumn& column = part.changing[i];
        column.step += stepsOnly ? 0 : unzigzag(in.rice(column.coding.shift));
        row[column.index] += column.step;
    }
    for (; i < part.firstOfCode[3]; ++i) {
        row[columns[i].index] += in.bit() ? unzigzag(in.rice(columns[i].coding.shift) + 1) : 0;
    }
    for (; i < part.firstOfCode[4]; ++i) {
        const ColumnCoding& coding = columns[i].coding;
        row[columns[i].index] ^= in.bit() ? in.bits(coding.width) << coding.shift : 0;
    }
    stream = in;
}

struct MixedValue {
    ValueKind kind;
    std::uint64_t bits; // BITS: the difference to the number before
};

MixedValue readMixedValue(BitReader& in, const ChangingColumn& column, unsigned textWidth) {
    if (!in.bit()) {
        return {ValueKind::BITS, unzigzag(in.rice(column.coding.shift))};
    }
    return in.bit() ? MixedValue{ValueKind::TEXT, in.bits(textWidth)} : MixedValue{ValueKind::MISSING, 0};
}

/// Columns in which the kinds differ have bits in every row.
std::span<ChangingColumn> mixedOf(Part& part) {
    return std::span(part.changing).subspan(part.firstOfCode[static_cast<std::size_t>(ColumnCode::MIXED)]);
}

/// False when a text is none. Adds the sizes of the texts.
bool skipMixed(BitReader& in, Part& part, std::span<const std::string_view> texts, std::uint64_t& textBytes) {
    const unsigned textWidth = widthOfTexts(texts.size());
    return std::ranges::all_of(mixedOf(part), [&](const ChangingColumn& column) {
        const MixedValue value = readMixedValue(in, column, textWidth);
        if (value.kind != ValueKind::TEXT) {
            return true;
        }
        textBytes += value.bits < texts.size() ? texts[static_cast<std::size_t>(value.bits)].size() : 0;
        return value.bits < texts.size();
    });
}

void readMixed(BitReader& in, Part& part, std::size_t texts) {
    const unsigned textWidth = widthOfTexts(texts);
    for (ChangingColumn& column : mixedOf(part)) {
        const MixedValue value = readMixedValue(in, column, textWidth);
        column.step += value.kind == ValueKind::BITS ? value.bits : 0;
        part.row[column.index] = value.kind == ValueKind::BITS ? column.step : value.bits;
        part.kinds[column.index] = value.kind;
    }
}

} // namespace

struct SampleBlockDecoder::State {
    std::deque<std::shared_ptr<const SampleReference>> references; // the latest last
    SamplePayload payload;
    std::shared_ptr<const SampleReference> reference; // of the open block: its texts are used
    std::vector<std::string_view> texts;              // those of the reference behind the block's own
    std::size_t ownTexts = 0;
    std::vector<Part> parts;
    std::vector<Run> runs;
    std::vector<Exception> exceptions;
    TimePrecision precision;
    std::uint64_t firstTick = 0;
    std::uint64_t records = 0;
    std::uint64_t values = 0;
    std::uint64_t lastTick = 0;
    Cursor cursor;

    std::shared_ptr<const SampleReference> find_i(std::uint32_t number) const;
    const char* readHead_i();
    const char* readParts_i(BitReader& in, std::vector<const ReferencePart*>& bases);
    const char* readOrder_i(BitReader& in);
    const char* readExceptions_i(BitReader& in);
    const char* readTimes_i(BitReader& in, std::uint64_t referenceTick);
    const char* readColumns_i(BitReader& in, Part& part, const ReferencePart* base);
    bool readStill_i(BitReader& in, Part& part, std::uint32_t index, const ReferenceColumn& base) const;
    bool readChanging_i(BitReader& in, Part& part, std::uint32_t index, const ReferenceColumn& base) const;
    const char* checkRows_i(std::size_t size);
    void rewind_i();

    std::uint32_t nextPart_i();
    bool readTimesOf_i(Part& part, tw_driver_msg& header);
    void giveFlags_i(const Part& part, tw_driver_msg& header);
    void give_i(const Part& part, const tw_driver_msg& header, CollectionData& reading) const;
};

std::shared_ptr<const SampleReference> SampleBlockDecoder::State::find_i(std::uint32_t number) const {
    const auto found = std::find_if(references.begin(), references.end(),
                                    [number](const auto& kept) { return kept->number == number; });
    return found == references.end() ? nullptr : *found;
}

/// All of these give null, or the reason why the payload cannot be what an encoder made.
const char* SampleBlockDecoder::State::readHead_i() {
    BitReader& in = payload.bits();
    const auto number = static_cast<std::uint32_t>(in.number());
    reference = number == 0 ? std::make_shared<const SampleReference>() : find_i(number);
    if (reference == nullptr) {
        return "the reference that its values count from is missing";
    }
    if (payload.cutTexts(texts) != 0) {
        return "its texts do not fit";
    }
    ownTexts = texts.size();
    texts.insert(texts.end(), reference->texts.begin(), reference->texts.end());
    std::vector<const ReferencePart*> bases;
    const char* fault = readParts_i(in, bases);
    fault = fault != nullptr ? fault : readOrder_i(in);
    fault = fault != nullptr ? fault : readExceptions_i(in);
    fault = fault != nullptr ? fault : readTimes_i(in, reference->tick);
    for (std::size_t i = 0; fault == nullptr && i < parts.size(); ++i) {
        fault = readColumns_i(in, parts[i], bases[i]);
    }
    return fault == nullptr && in.isOverrun() ? "it is shorter than it says" : fault;
}

const char* SampleBlockDecoder::State::readParts_i(BitReader& in, std::vector<const ReferencePart*>& bases) {
    const std::uint64_t count = in.number();
    if (!in.canHold(count, 1)) {
        return "it is shorter than it says";
    }
    std::vector<bool> isUsed(reference->parts.size());
    std::size_t expected = 0;
    for (std::uint64_t i = 0; i < count; ++i) {
        Part part;
        const ReferencePart* base = nullptr;
        const bool isExpected = in.bit();
        if (isExpected || in.bit()) {
            const std::uint64_t index = isExpected ? expected : in.number();
            if (index >= isUsed.size() || isUsed[static_cast<std::size_t>(index)]) {
                return "it counts from a message that the reference does not have";
            }
            base = &reference->parts[static_cast<std::size_t>(index)];
            isUsed[static_cast<std::size_t>(index)] = true;
            expected = static_cast<std::size_t>(index) + 1;
            part.key = base->key;
            part.flags = base->flags;
            part.times = base->times;
        } else {
            part.key = readPartKey(in);
            part.flags = static_cast<pw_u8_t>(in.bits(c_byteBits));
        }
        if (in.isOverrun()) {
            return "it is shorter than it says";
        }
        parts.push_back(std::move(part));
        bases.push_back(base);
    }
    return nullptr;
}

const char* SampleBlockDecoder::State::readOrder_i(BitReader& in) {
    records = in.number();
    // A reading takes at least two bits, for its span and its tick; the first one a bit and more in the head.
    if (!in.canHold(records, 2) || records > SampleBlockEncoder::MAX_VALUES ||
        (records > 0 && parts.empty())) {
        return "it cannot hold as many readings as it says";
    }
    for (std::uint64_t left = records; left > 0;) {
        Run run{in.number(), 0};
        if (run.right > left || in.isOverrun()) {
            return "the order of its readings is damaged";
        }
        left -= run.right;
        if (left > 0) {
            const std::uint64_t part = in.number();
            if (part >= parts.size()) {
                return "a reading is of no message";
            }
            run.then = static_cast<std::uint32_t>(part);
            --left;
        }
        runs.push_back(run);
    }
    return nullptr;
}

const char* SampleBlockDecoder::State::readExceptions_i(BitReader& in) {
    const std::uint64_t count = in.number();
    if (count > records || !in.canHold(count, c_byteBits)) {
        return "it is shorter than it says";
    }
    std::uint64_t next = 0;
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t skipped = in.number();
        if (skipped >= records - next) {
            return "flags belong to no reading";
        }
        next += skipped;
        const auto flags = static_cast<pw_u8_t>(in.bits(c_byteBits));
        exceptions.push_back({next, flags, static_cast<pw_u32_t>(in.wide())});
        ++next;
    }
    return nullptr;
}

const char* SampleBlockDecoder::State::readTimes_i(BitReader& in, std::uint64_t referenceTick) {
    precision.spanBits = static_cast<unsigned>(in.bits(c_shiftOfSpanBits)) + 1;
    precision.tickBits = static_cast<unsigned>(in.bits(c_shiftOfGapBits));
    firstTick = referenceTick + unzigzag(in.wide());
    for (Part& part : parts) {
        if (!in.bit()) {
            part.times.spanShift = static_cast<pw_u8_t>(in.bits(c_shiftOfSpanBits));
        }
        if (!in.bit()) {
            part.times.gapShift = static_cast<pw_u8_t>(in.bits(c_shiftOfGapBits));
        }
        if (part.times.gapShift > bit_code::c_maxShift) {
            return "the code of its ticks is not known";
        }
        part.timesAtBegin = part.times;
    }
    return nullptr;
}

const char* SampleBlockDecoder::State::readColumns_i(BitReader& in, Part& part, const ReferencePart* base) {
    if (!in.canHold(part.key.count, 1)) {
        return "it is shorter than it says";
    }
    part.row.assign(part.key.count, 0);
    part.kinds.assign(part.key.count, ValueKind::BITS);
    for (std::uint32_t i = 0; i < part.key.count; ++i) {
        const ReferenceColumn from = base == nullptr ? ReferenceColumn{} : base->columns[i];
        part.row[i] = from.kind == ValueKind::TEXT ? ownTexts + from.bits : from.bits;
        part.kinds[i] = from.kind;
        if (in.bit() && !(in.bit() ? readChanging_i(in, part, i, from) : readStill_i(in, part, i, from))) {
            return "the code of its values is not known";
        }
        if (part.kinds[i] == ValueKind::TEXT) {
            part.hasTexts = true;
            part.textBytes += texts[static_cast<std::size_t>(part.row[i])].size();
        }
        part.hasMissing = part.hasMissing || part.kinds[i] == ValueKind::MISSING;
    }
    sortByCode(part);
    const bool hasMixed = part.firstOfCode[c_columnCodes] != part.firstOfCode[c_columnCodes - 1];
    part.hasMissing = part.hasMissing || hasMixed;
    part.hasTexts = part.hasTexts || (hasMixed && ownTexts > 0);
    return nullptr;
}

bool SampleBlockDecoder::State::readStill_i(BitReader& in, Part& part, std::uint32_t index,
                                            const ReferenceColumn& base) const {
    if (!in.bit()) {
        part.kinds[index] = ValueKind::BITS;
        part.row[index] = (base.kind == ValueKind::BITS ? base.bits : 0) + unzigzag(in.wide());
        return true;
    }
    const bool isText = in.bit();
    part.kinds[index] = isText ? ValueKind::TEXT : ValueKind::MISSING;
    part.row[index] = isText ? in.number() : 0;
    return !isText || part.row[index] < ownTexts;
}

bool SampleBlockDecoder::State::readChanging_i(BitReader& in, Part& part, std::uint32_t index,
                                               const ReferenceColumn& base) const {
    ChangingColumn column{index, base.coding, 0};
    const bool isUsual = in.bit();
    if (isUsual ? !base.hasCoding : !read(in, column.coding)) {
        return false;
    }
    const std::uint64_t begin = base.kind == ValueKind::BITS ? base.bits : 0;
    part.kinds[index] = ValueKind::BITS;
    if (column.coding.code == ColumnCode::MIXED) {
        column.step = begin;
    } else {
        part.row[index] = begin + unzigzag(in.wide());
    }
    if (column.coding.code == ColumnCode::SECOND) {
        column.step = unzigzag(in.wide());
    }
    part.changing.push_back(column);
    return true;
}

void SampleBlockDecoder::State::rewind_i() {
    cursor = Cursor{payload.bits(), PartGuess(parts.size()), {}, 0, 0, 0, 0};
    cursor.rightLeft = runs.empty() ? 0 : runs.front().right;
    for (Part& part : parts) {
        part.times = part.timesAtBegin;
        part.readings = 0;
    }
}

/// Goes over all readings once, so that none is given of a payload that turns out wrong later.
const char* SampleBlockDecoder::State::checkRows_i(std::size_t size) {
    const std::uint64_t affordable =
        (static_cast<std::uint64_t>(size) + 1) * SampleBlockEncoder::VALUES_PER_BYTE;
    std::uint64_t textBytes = 0;
    rewind_i();
    while (cursor.record < records) {
        Part& part = parts[nextPart_i()];
        tw_driver_msg header{};
        if (!readTimesOf_i(part, header)) {
            return "the span of a reading is damaged";
        }
        lastTick = std::max(lastTick, header.timestamp);
        skipRow(cursor.bits, part, part.readings == 0);
        std::uint64_t textsOfReading = part.textBytes;
        if (!skipMixed(cursor.bits, part, std::span(texts).first(ownTexts), textsOfReading)) {
            return "a text of its values is missing";
        }
        ++part.readings;
        values += part.key.count;
        textBytes += textsOfReading;
        if (values + cursor.record + textBytes / sizeof(std::uint64_t) > affordable ||
            values > c_mostValues || textsOfReading > c_mostText) {
            return "it holds too many values for its size";
        }
        if (cursor.bits.isOverrun()) {
            return "it is shorter than it says";
        }
    }
    while (cursor.bits.bitsLeft() > 0) {
        const auto now = static_cast<unsigned>(std::min<std::size_t>(cursor.bits.bitsLeft(), 32));
        if (cursor.bits.bits(now) != 0) {
            return "something stands behind its readings";
        }
    }
    rewind_i();
    return nullptr;
}

std::uint32_t SampleBlockDecoder::State::nextPart_i() {
    std::uint32_t part = cursor.guess.next();
    if (cursor.rightLeft > 0) {
        --cursor.rightLeft;
    } else {
        part = runs[cursor.run].then;
        ++cursor.run;
        cursor.rightLeft = cursor.run < runs.size() ? runs[cursor.run].right : 0;
    }
    cursor.guess.learn(part);
    ++cursor.record;
    return part;
}

bool SampleBlockDecoder::State::readTimesOf_i(Part& part, tw_driver_msg& header) {
    const std::uint64_t index =
        precision.indexOf(part.times.span) + unzigzag(cursor.bits.rice(part.times.spanShift));
    if (!precision.spanOf(index, header.read_span)) {
        return false;
    }
    part.times.span = header.read_span;
    if (cursor.record == 1) {
        header.timestamp = firstTick;
    } else {
        const std::uint64_t base = cursor.ticks.withoutGap(header.read_span);
        const unsigned shift = precision.tickShift(header.read_span);
        const std::uint64_t guessed = TickGuess::rounded(base + part.times.gap, shift);
        header.timestamp = (guessed + unzigzag(cursor.bits.rice(part.times.gapShift))) << shift;
        part.times.gap = header.timestamp - base;
    }
    cursor.ticks.begin(header.timestamp, header.read_span);
    return true;
}

void SampleBlockDecoder::State::giveFlags_i(const Part& part, tw_driver_msg& header) {
    header.flags = part.flags;
    if (cursor.exception < exceptions.size() && exceptions[cursor.exception].record + 1 == cursor.record) {
        header.flags = exceptions[cursor.exception].flags;
        header.reserved = exceptions[cursor.exception].reserved;
        ++cursor.exception;
    }
}

void SampleBlockDecoder::State::give_i(const Part& part, const tw_driver_msg& header,
                                       CollectionData& reading) const {
    reading.clear();
    if (!part.hasTexts && !part.hasMissing) {
        reading.addAll(part.row);
    } else {
        for (std::size_t i = 0; i < part.row.size(); ++i) {
            switch (part.kinds[i]) {
            case ValueKind::BITS: reading.add(part.row[i]); break;
            case ValueKind::TEXT: reading.addText(texts[static_cast<std::size_t>(part.row[i])]); break;
            case ValueKind::MISSING: reading.addMissing(); break;
            }
        }
    }
    reading.header() = header;
}

SampleBlockDecoder::SampleBlockDecoder() : m_state(std::make_unique<State>()) {}
SampleBlockDecoder::~SampleBlockDecoder() = default;

std::uint32_t SampleBlockDecoder::referenceOf(std::span<const char> payload) {
    SamplePayload opened;
    std::string error;
    return opened.open(payload, error) == 0 ? static_cast<std::uint32_t>(opened.bits().number()) : 0;
}

int SampleBlockDecoder::addReference(std::span<const char> payload, std::string& error) {
    auto made = std::make_shared<SampleReference>();
    if (made->read(payload, error) != 0) {
        return 1;
    }
    auto& kept = m_state->references;
    std::erase_if(kept, [&made](const auto& known) { return known->number == made->number; });
    kept.push_back(std::move(made));
    if (kept.size() > c_keptReferences) {
        kept.pop_front();
    }
    return 0;
}

bool SampleBlockDecoder::hasReference(std::uint32_t number) const {
    return m_state->find_i(number) != nullptr;
}

int SampleBlockDecoder::open(std::span<const char> payload, std::string& error) {
    auto next = std::make_unique<State>();
    next->references = std::move(m_state->references);
    m_state = std::move(next);
    State& state = *m_state;
    if (state.payload.open(payload, error) != 0) {
        return 1;
    }
    const char* fault = state.readHead_i();
    fault = fault != nullptr ? fault : state.checkRows_i(payload.size());
    if (fault != nullptr) {
        error = std::string("a block of samples cannot be read: ") + fault;
        state.records = 0;
        state.values = 0;
        state.lastTick = 0;
        state.cursor.record = 0;
        return 1;
    }
    return 0;
}

bool SampleBlockDecoder::next(CollectionData& reading) {
    State& state = *m_state;
    if (state.cursor.record >= state.records) {
        return false;
    }
    Part& part = state.parts[state.nextPart_i()];
    tw_driver_msg header{};
    header.id = part.key.id;
    header.first_instance = part.key.first;
    header.count = part.key.count;
    state.readTimesOf_i(part, header);
    state.giveFlags_i(part, header);
    readRow(state.cursor.bits, part, part.readings == 0);
    readMixed(state.cursor.bits, part, state.ownTexts);
    ++part.readings;
    state.give_i(part, header, reading);
    return true;
}

std::uint64_t SampleBlockDecoder::readings() const {
    return m_state->records;
}

std::uint64_t SampleBlockDecoder::values() const {
    return m_state->values;
}

std::uint64_t SampleBlockDecoder::lastTick() const {
    return m_state->lastTick;
}

} // namespace pwr::saved
