#include "common/plugin/collection_data.h"

#include "common/plugin/logger.h"

#include <limits>

// Users of the shared library on Windows may take its address.
constexpr std::size_t CollectionData::MAX_VALUES; // NOLINT(readability-redundant-declaration)

std::string_view CollectionData::getText(std::size_t index) const {
    if (!isText(index)) {
        return {};
    }
    const std::uint64_t place = m_bits[index];
    return std::string_view(m_text).substr(static_cast<std::size_t>(place >> 32),
                                           static_cast<std::size_t>(place & 0xFFFFFFFF));
}

void CollectionData::clear() {
    m_header = {};
    m_bits.clear();
    m_kinds.clear();
    m_text.clear();
}

int CollectionData::addText(std::string_view text) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max() - m_text.size()) {
        return refuse_i();
    }
    const std::uint64_t place = (static_cast<std::uint64_t>(m_text.size()) << 32) | text.size();
    if (append_i(place, Kind::TEXT) != 0) {
        return 1;
    }
    m_text.append(text);
    m_header.flags = static_cast<pw_u8_t>(m_header.flags | tw_driver_msg_flag::TEXT);
    return 0;
}

int CollectionData::addAll(std::span<const std::uint64_t> bits) {
    if (bits.size() > MAX_VALUES - m_bits.size()) {
        return refuse_i();
    }
    m_bits.insert(m_bits.end(), bits.begin(), bits.end());
    m_kinds.resize(m_bits.size(), Kind::BITS);
    m_header.count = static_cast<pw_u16_t>(m_bits.size());
    return 0;
}

int CollectionData::refuse_i() {
    pwr::logWarning("WARNING: a reading of a message holds at most %zu values and 4 GB of text!\n",
                    MAX_VALUES);
    return 1;
}
