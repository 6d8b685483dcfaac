#pragma once

#include "common/metadata/stream_codec.h"
#include "common/pw_types.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pwr::saved {

/// Appends numbers and texts to a block's payload. Unlike those of records, the lengths of texts have 32 bits: a
/// configuration may be longer than 64 KiB.
class PayloadWriter {
public:
    explicit PayloadWriter(std::vector<char>& bytes) : m_bytes(bytes) {}

    template <stream::Scalar... T> void put(const T&... values) { (putOne_i(values), ...); }
    void putText(std::string_view text) {
        put(static_cast<pw_u32_t>(text.size()));
        m_bytes.insert(m_bytes.end(), text.begin(), text.end());
    }

private:
    template <stream::Scalar T> void putOne_i(T value) {
        const std::size_t size = m_bytes.size();
        m_bytes.resize(size + sizeof(T));
        stream::storeScalar(m_bytes.data() + size, value);
    }

    std::vector<char>& m_bytes;
};

/// Reads them back from foreign bytes. What is not there as a whole is a failure, and so is everything after it.
class PayloadReader {
public:
    explicit PayloadReader(std::span<const char> bytes) : m_left(bytes) {}

    template <stream::Scalar... T> bool take(T&... values) { return (takeOne_i(values) && ...); }
    bool takeText(std::string& text) {
        pw_u32_t size = 0;
        if (!take(size) || size > m_left.size()) {
            return fail_i();
        }
        text.assign(m_left.data(), size);
        m_left = m_left.subspan(size);
        return true;
    }
    /// Whether all was read and nothing failed.
    bool isDone() const { return m_isSound && m_left.empty(); }
    std::span<const char> left() const { return m_left; }

private:
    template <stream::Scalar T> bool takeOne_i(T& value) {
        if (!m_isSound || m_left.size() < sizeof(T)) {
            return fail_i();
        }
        value = stream::loadScalar<T>(m_left.data());
        m_left = m_left.subspan(sizeof(T));
        return true;
    }
    bool fail_i() {
        m_isSound = false;
        return false;
    }

    std::span<const char> m_left;
    bool m_isSound = true;
};

} // namespace pwr::saved
