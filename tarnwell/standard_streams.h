#pragma once

#include "common/plugin/logger.h"

#include <cstdio>

namespace tarnwell {

/// A logger that writes to one of the program's standard streams, byte for byte.
class StreamLogger : public pwr::Logger {
public:
    explicit StreamLogger(std::FILE* stream) : m_stream(stream) {}

    void emit(const char* bytes, size_t size) override {
        if (std::fwrite(bytes, 1, size, m_stream) != size || std::fflush(m_stream) != 0) {
            m_failed = true;
        }
    }

    /// True once something could not be written: a closed pipe, a full disk behind a redirection.
    bool hasFailed() const { return m_failed; }

private:
    std::FILE* m_stream;
    bool m_failed = false;
};

} // namespace tarnwell
