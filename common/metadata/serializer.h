#pragma once

#include "common/export.h"
#include "common/metadata/stream_codec.h"
#include "common/pw_types.h"

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

namespace pwr {

/// The growable byte buffer through which records are written to a saved collection and read back.
/// Writing and reading have positions of their own in one buffer. Reading is limited by the size of
/// the buffer, not by what was written, so the zero-filled tail can be read: whoever reads back what
/// was just written makes a serializer from get_buffer().
/// Forms: numbers little-endian in 1, 2, 4 or 8 bytes, bool in one; texts and containers behind a
/// 16-bit count of bytes or elements; pairs first, then second. Counts beyond 65,535 are cut, not
/// refused, and make the stream unreadable. One call writes less than 2 GiB.
/// Threads: one at a time. Failure: short reads are told by the result only.
class KRCOMMON_API Serializer {
public:
    /// A buffer of zeros. Whoever knows the size of a record gives it and saves the growing.
    explicit Serializer(std::size_t size);

    /// A buffer with a copy of saved bytes, all of them readable. Writing overwrites from the front.
    explicit Serializer(const std::vector<char>& bytes);

    /// Appends raw bytes; a null source or no bytes do nothing.
    void write_to(const void* source, std::size_t size);

    /// Reads raw bytes: `size`, or 0 when fewer are there; nothing is read then.
    std::size_t read_from(void* target, std::size_t size);

    /// Appends numbers, texts, pairs, sequences or ordered maps, one behind the other. Enumerations are
    /// converted by the caller, who checks the number when it is read back. One call for several fields
    /// makes room once and is faster than one for each.
    template <stream::Storable T> void write(const T& value) { put_i(value); }
    template <stream::Storable First, stream::Storable Second, stream::Storable... Rest>
    void write(const First& first, const Second& second, const Rest&... rest) {
        put_i(first, second, rest...);
    }

    /// Reads a number, pair, sequence or ordered map: the bytes taken (2 for an empty container), or 0
    /// when it is not there as a whole; target and position are untouched then. Containers are replaced.
    /// Reads a text: its length, or 0 when it is missing, cut short or empty; the target is untouched
    /// then, but the two bytes of the length stay consumed once they were there. A container with an
    /// empty text among its elements counts as missing.
    template <stream::Storable T> std::size_t read(T& target) {
        const std::size_t left = data_avail_i();
        const char* const start = m_buffer.data() + (left == 0 ? 0 : m_read);
        const char* position = start;
        if constexpr (std::is_same_v<T, std::string>) {
            stream::Count length = 0;
            if (left < sizeof(length)) {
                return 0;
            }
            stream::take(position, length);
            m_read += sizeof(length);
            if (length == 0 || left - sizeof(length) < length) {
                return 0;
            }
            target.assign(position, length);
            m_read += length;
            return length;
        } else {
            if (!stream::probe<T>(position, start + left)) {
                return 0;
            }
            const auto taken = static_cast<std::size_t>(position - start);
            m_read += taken;
            position = start;
            stream::take(position, target);
            return taken;
        }
    }

    /// Reads a text that may rightly be empty: false only when it is missing or cut short; target and
    /// position are untouched then.
    bool read_text(std::string& target);

    /// Moves the read position back. More than was read: a warning, and the position stays.
    void rewind_read(std::size_t size);

    /// Whether nothing was written yet.
    bool empty() const { return m_written == 0; }

    /// Cuts the buffer to what was written and gives it out: the bytes to save.
    const std::vector<char>& get_buffer();

    /// A copy of the bytes with a zero behind, null for a null source. To be released with free().
    static char* read_string(const char* source, std::size_t size);

private:
    std::size_t space_avail_i() const { return m_buffer.size() - m_written; }
    std::size_t data_avail_i() const {
        // get_buffer() may have cut off bytes that were read already.
        return m_read < m_buffer.size() ? m_buffer.size() - m_read : 0;
    }
    template <class... T> void put_i(const T&... values) {
        const std::size_t size = (stream::encodedSize(values) + ...);
        if (space_avail_i() < size) [[unlikely]] {
            grow_i(size);
        }
        char* position = m_buffer.data() + m_written;
        m_written += size;
        (stream::put(position, values), ...);
    }
    /// Doubles the buffer (128 bytes from nothing) until the bytes fit behind what was written.
    void grow_i(std::size_t size);

    std::vector<char> m_buffer;
    std::size_t m_written = 0;
    std::size_t m_read = 0;
};

} // namespace pwr
