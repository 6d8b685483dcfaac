#pragma once

#include "common/plugin/plugin_environment.h"

#include <mutex>
#include <string>
#include <utility>

namespace pwr {

/// Catches what is logged while it lives: both loggers of the environment lead here and the verbosity
/// is WARNING. Puts back what was there before.
class LogCapture {
public:
    LogCapture()
        : m_oldError(g_pluginEnvironment->getErrorLogger()),
          m_oldDebug(g_pluginEnvironment->getDebugLogger()),
          m_oldVerbosity(g_pluginEnvironment->getVerbosity()) {
        g_pluginEnvironment->setErrorLogger(&m_logger);
        g_pluginEnvironment->setDebugLogger(&m_logger);
        g_pluginEnvironment->setVerbosity(PWLogLevel::WARNING);
    }
    ~LogCapture() {
        g_pluginEnvironment->setErrorLogger(m_oldError);
        g_pluginEnvironment->setDebugLogger(m_oldDebug);
        g_pluginEnvironment->setVerbosity(m_oldVerbosity);
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// All text since the beginning or the last take().
    std::string text() const { return m_logger.content(false); }
    std::string take() { return m_logger.content(true); }

private:
    class CapturingLogger : public Logger {
    public:
        void emit(const char* bytes, std::size_t size) override {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_text.append(bytes, size);
        }
        std::string content(bool take) {
            const std::lock_guard<std::mutex> lock(m_mutex);
            return take ? std::exchange(m_text, std::string()) : m_text;
        }

    private:
        std::mutex m_mutex;
        std::string m_text;
    };

    mutable CapturingLogger m_logger;
    Logger* m_oldError;
    Logger* m_oldDebug;
    PWLogLevel m_oldVerbosity;
};

} // namespace pwr
