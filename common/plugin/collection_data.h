#pragma once

#include "common/driver_interface.h"
#include "common/export.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pwr {
class DataDescriptor;
class EntityHandle;
} // namespace pwr

/// Whom the values of a message belong to: value i of a record belongs to instances[i]. When a message
/// cannot be collected here, why not and what would mend it. The handles live for the whole process.
struct MessageInstances {
    struct Instance {
        const pwr::EntityHandle* entity;
        const pwr::DataDescriptor* descriptor;
    };
    std::vector<Instance> instances;
    std::string reason;
    std::string fix;
    /// The values that there can be on this machine with their names, as the key STATES of a metric has them; "" when
    /// the collector does not know. They take the place of what the description says.
    std::string states;
};

/// One reading of a message: the header, and a value (or none) for each instance.
/// A value is 64 bits, read as unsigned, signed or floating as the message declares, or a text.
/// Meant for reuse: clear() keeps the buffers, so that a reading costs no allocation once they are
/// large enough. Threads: one owner at a time; moving hands the whole record over.
class KRCOMMON_API CollectionData {
public:
    /// The header counts in 16 bits: larger messages come as several records.
    static constexpr std::size_t MAX_VALUES = 0xFFFF;

    tw_driver_msg& header() { return m_header; }
    const tw_driver_msg& header() const { return m_header; }
    std::size_t size() const { return m_bits.size(); }
    /// False also beyond the end.
    bool isPresent(std::size_t index) const {
        return index < m_kinds.size() && m_kinds[index] != Kind::MISSING;
    }
    bool isText(std::size_t index) const { return index < m_kinds.size() && m_kinds[index] == Kind::TEXT; }
    /// 0 for what is missing, a text, or beyond the end.
    std::uint64_t getBits(std::size_t index) const {
        return index < m_kinds.size() && m_kinds[index] == Kind::BITS ? m_bits[index] : 0;
    }
    /// Empty for what is no text; valid until the record changes.
    std::string_view getText(std::size_t index) const;

    /// Empties the record, its header included.
    void clear();

    /// Append one value each and count it in the header. A record that is full takes no more: 1 and
    /// a warning.
    int add(std::uint64_t bits) { return append_i(bits, Kind::BITS); }
    int addText(std::string_view text);
    /// The instance gave no value this time; what was not there is told from what was zero.
    int addMissing() { return append_i(0, Kind::MISSING); }
    /// All of them, or on 1 none.
    int addAll(std::span<const std::uint64_t> bits);

private:
    enum class Kind : std::uint8_t { MISSING = 0, BITS = 1, TEXT = 2 };

    int append_i(std::uint64_t bits, Kind kind) {
        if (m_bits.size() >= MAX_VALUES) {
            return refuse_i();
        }
        m_bits.push_back(bits);
        m_kinds.push_back(kind);
        m_header.count = static_cast<pw_u16_t>(m_bits.size());
        return 0;
    }
    static int refuse_i();

    tw_driver_msg m_header{};
    /// A text has its place in m_text here: the offset in the high half, the length in the low one.
    std::vector<std::uint64_t> m_bits;
    std::vector<Kind> m_kinds;
    std::string m_text;
};
