#include "common/saved/sample_reference.h"

namespace pwr::saved {

namespace {

constexpr unsigned c_kindBits = 2;
constexpr unsigned c_sizeBits = 7; // of a size's byte, without the bit that says "more"
constexpr unsigned c_sizeBytes = 5;

int refuse(std::string& error, const char* reason) {
    error = reason;
    return 1;
}

void writeColumn(BitWriter& out, const ReferenceColumn& column) {
    out.bits(static_cast<std::uint64_t>(column.kind), c_kindBits);
    if (column.kind != ValueKind::MISSING) {
        out.wide(column.bits);
    }
    out.bit(column.hasCoding);
    if (column.hasCoding) {
        write(out, column.coding);
    }
}

int readColumn(BitReader& in, std::size_t texts, ReferenceColumn& column) {
    const std::uint64_t kind = in.bits(c_kindBits);
    column.kind = static_cast<ValueKind>(kind);
    column.bits = column.kind == ValueKind::MISSING ? 0 : in.wide();
    column.hasCoding = in.bit();
    const bool isText = column.kind == ValueKind::TEXT;
    return kind > static_cast<std::uint64_t>(ValueKind::TEXT) || (isText && column.bits >= texts) ||
           (column.hasCoding && !read(in, column.coding));
}

} // namespace

void writeTexts(std::vector<char>& payload, std::span<const std::string> texts) {
    std::uint64_t size = 0;
    for (const std::string& text : texts) {
        size += text.size();
    }
    payload.push_back(c_sampleCoding);
    for (; size >> c_sizeBits != 0; size >>= c_sizeBits) {
        payload.push_back(static_cast<char>((size & lowBits(c_sizeBits)) | 1U << c_sizeBits));
    }
    payload.push_back(static_cast<char>(size));
    for (const std::string& text : texts) {
        payload.insert(payload.end(), text.begin(), text.end());
    }
}

void writeTextLengths(BitWriter& out, std::span<const std::string> texts) {
    out.number(texts.size());
    for (const std::string& text : texts) {
        out.number(text.size());
    }
}

int SamplePayload::open(std::span<const char> payload, std::string& error) {
    if (payload.empty() || payload.front() != c_sampleCoding) {
        return refuse(error, "the values are coded in a way that is not known");
    }
    std::uint64_t size = 0;
    std::size_t at = 1;
    for (unsigned i = 0; i < c_sizeBytes && at < payload.size(); ++i) {
        const auto byte = static_cast<unsigned char>(payload[at++]);
        size |= (byte & lowBits(c_sizeBits)) << (c_sizeBits * i);
        if (byte >> c_sizeBits == 0) {
            break;
        }
    }
    if (size > payload.size() - at) {
        return refuse(error, "the texts are longer than the block");
    }
    m_bytes.assign(payload.begin(), payload.end());
    m_bytes.insert(m_bytes.end(), BitReader::PADDING, 0);
    m_texts = std::string_view(m_bytes.data() + at, static_cast<std::size_t>(size));
    at += static_cast<std::size_t>(size);
    m_bits = BitReader(m_bytes.data() + at, payload.size() - at);
    return 0;
}

int SamplePayload::cutTexts(std::vector<std::string_view>& out) {
    out.clear();
    const std::uint64_t count = m_bits.number();
    if (!m_bits.canHold(count, bit_code::c_groupBits + 1)) {
        return 1;
    }
    std::string_view left = m_texts;
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t size = m_bits.number();
        if (size > left.size()) {
            return 1;
        }
        out.push_back(left.substr(0, static_cast<std::size_t>(size)));
        left.remove_prefix(static_cast<std::size_t>(size));
    }
    return left.empty() ? 0 : 1;
}

void write(BitWriter& out, const PartKey& key) {
    out.bits(key.id.plugin, c_byteBits);
    out.bits(key.id.metric, c_byteBits);
    out.bits(key.id.message, c_byteBits);
    out.number(key.first);
    out.number(key.count);
}

PartKey readPartKey(BitReader& in) {
    PartKey key;
    key.id.plugin = static_cast<pw_u8_t>(in.bits(c_byteBits));
    key.id.metric = static_cast<pw_u8_t>(in.bits(c_byteBits));
    key.id.message = static_cast<pw_u8_t>(in.bits(c_byteBits));
    key.first = static_cast<pw_u16_t>(in.number());
    key.count = static_cast<pw_u16_t>(in.number());
    return key;
}

void SampleReference::write(std::vector<char>& payload) const {
    writeTexts(payload, texts);
    BitWriter out(payload);
    out.number(number);
    out.wide(tick);
    writeTextLengths(out, texts);
    out.number(parts.size());
    for (const ReferencePart& part : parts) {
        saved::write(out, part.key);
        out.bits(part.flags, c_byteBits);
        out.wide(part.times.span);
        out.wide(zigzag(part.times.gap));
        out.bits(part.times.spanShift, c_shiftOfSpanBits);
        out.bits(part.times.gapShift, c_shiftOfGapBits);
        for (const ReferenceColumn& column : part.columns) {
            writeColumn(out, column);
        }
    }
    out.finish();
}

int SampleReference::read(std::span<const char> payload, std::string& error) {
    SamplePayload opened;
    if (opened.open(payload, error) != 0) {
        return 1;
    }
    BitReader& in = opened.bits();
    number = static_cast<std::uint32_t>(in.number());
    tick = in.wide();
    std::vector<std::string_view> cut;
    if (opened.cutTexts(cut) != 0 || number == 0) {
        return refuse(error, "the texts of the reference do not fit");
    }
    texts.assign(cut.begin(), cut.end());
    const std::uint64_t count = in.number();
    if (!in.canHold(count, 3 * c_byteBits)) {
        return refuse(error, "the reference is shorter than it says");
    }
    parts.clear();
    for (std::uint64_t i = 0; i < count; ++i) {
        ReferencePart part;
        part.key = readPartKey(in);
        part.flags = static_cast<pw_u8_t>(in.bits(c_byteBits));
        part.times.span = static_cast<pw_u32_t>(in.wide());
        part.times.gap = unzigzag(in.wide());
        part.times.spanShift = static_cast<pw_u8_t>(in.bits(c_shiftOfSpanBits));
        part.times.gapShift = static_cast<pw_u8_t>(in.bits(c_shiftOfGapBits));
        if (!in.canHold(part.key.count, c_kindBits + 1) || part.times.gapShift > bit_code::c_maxShift) {
            return refuse(error, "the reference is shorter than it says");
        }
        part.columns.resize(part.key.count);
        for (ReferenceColumn& column : part.columns) {
            if (readColumn(in, texts.size(), column) != 0) {
                return refuse(error, "a value of the reference cannot be read");
            }
        }
        parts.push_back(std::move(part));
    }
    return in.isOverrun() ? refuse(error, "the reference is shorter than it says") : 0;
}

} // namespace pwr::saved
