#include "common/plugin/logger.h"

#include "common/platform/file.h"
#include "common/plugin/plugin_environment.h"

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace pwr {

Logger::Buffer::int_type Logger::Buffer::overflow(int_type character) {
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        const char byte = traits_type::to_char_type(character);
        m_owner.append_i(&byte, 1);
    }
    return traits_type::not_eof(character);
}

std::streamsize Logger::Buffer::xsputn(const char* bytes, std::streamsize count) {
    m_owner.append_i(bytes, static_cast<std::size_t>(count));
    return count;
}

int Logger::Buffer::sync() {
    return m_owner.flushBuffer() == 0 ? 0 : -1;
}

Logger::Logger() : std::ostream(nullptr), m_buffer(*this) {
    rdbuf(&m_buffer);
}

Logger::~Logger() = default;

void Logger::append_i(const char* bytes, std::size_t size) {
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    m_text.append(bytes, size);
    m_pending = true;
}

int Logger::log(PWLogLevel /*level*/, const char* text) {
    return log(text);
}

int Logger::log(const char* text) {
    if (text == nullptr) {
        return 1;
    }
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    m_text.append(text);
    m_pending = true;
    return Logger::flushBuffer();
}

int Logger::flushBuffer() {
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    if (!m_pending) {
        return 0;
    }
    m_pending = false;
    // Taken out before it is emitted: emit() may log again, which must not emit the same text twice.
    std::string text = std::exchange(m_text, std::string());
    emit(text.data(), text.size());
    if (m_text.empty()) {
        text.clear();
        m_text.swap(text); // keeps the capacity for the next message
    }
    return 0;
}

void Logger::emit(const char* /*bytes*/, std::size_t /*size*/) {}

int Logger::close() {
    return 0;
}

FileLogger::FileLogger(const char* name) {
    if (name != nullptr) {
        m_file.open(platform::nativePath(name), std::ios::out | std::ios::trunc | std::ios::binary);
    }
    if (!m_file.is_open()) {
        setstate(std::ios::failbit);
    }
}

FileLogger::~FileLogger() {
    // Here and not in the base class, whose destructor no longer reaches this class's emit().
    FileLogger::flushBuffer();
}

void FileLogger::emit(const char* bytes, std::size_t size) {
    if (m_file.is_open()) {
        m_file.write(bytes, static_cast<std::streamsize>(size));
        m_file.flush();
    }
}

int FileLogger::close() {
    flushBuffer();
    m_file.close();
    if (m_file.fail()) {
        setstate(std::ios::failbit);
        return 1;
    }
    return 0;
}

namespace {

/// `prefix` followed by the formatted text. The size comes from a first pass: texts have any length.
std::string formatText(std::string prefix, const char* format, va_list arguments) {
    va_list firstPass;
    va_copy(firstPass, arguments);
    const int measured = std::vsnprintf(nullptr, 0, format, firstPass);
    va_end(firstPass);
    const auto size = static_cast<std::size_t>(std::max(measured, 0));
    const std::size_t before = prefix.size();
    prefix.resize(before + size + 1); // the second pass ends its text with a zero byte
    if (measured > 0) {
        std::vsnprintf(prefix.data() + before, size + 1, format, arguments);
    }
    prefix.resize(before + size);
    return prefix;
}

} // namespace

bool isLogEnabled(PWLogLevel level) {
    return static_cast<int>(g_pluginEnvironment->getVerbosity()) >= static_cast<int>(level) &&
           g_pluginEnvironment->getLogger(level) != nullptr;
}

void logMessageArguments(PWLogLevel level, const char* format, va_list arguments) {
    if (isLogEnabled(level)) {
        g_pluginEnvironment->getLogger(level)->log(level, formatText("", format, arguments).c_str());
    }
}

void logMessage(PWLogLevel level, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    logMessageArguments(level, format, arguments);
    va_end(arguments);
}

void logError(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    logMessageArguments(PWLogLevel::ERROR, format, arguments);
    va_end(arguments);
}

void logWarning(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    logMessageArguments(PWLogLevel::WARNING, format, arguments);
    va_end(arguments);
}

void logDebug(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    logMessageArguments(PWLogLevel::DEBUG, format, arguments);
    va_end(arguments);
}

namespace {

void logTraceArguments(const char* tag, PWLogLevel level, const char* format, va_list arguments) {
    Logger* const logger = g_pluginEnvironment->getLogger(level);
    if (logger != nullptr && g_pluginEnvironment->isDebugLoggingEnabledFor(tag)) {
        logger->log(level, formatText("", format, arguments).c_str());
    }
}

} // namespace

void logTrace(const char* tag, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    logTraceArguments(tag, PWLogLevel::DEBUG, format, arguments);
    va_end(arguments);
}

void logTaggedWarning(const char* tag, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    if (isLogEnabled(PWLogLevel::WARNING)) {
        logMessageArguments(PWLogLevel::WARNING, format, arguments);
    } else {
        logTraceArguments(tag, PWLogLevel::WARNING, format, arguments);
    }
    va_end(arguments);
}

void logPrefixed(PWLogLevel level, const char* format, ...) {
    if (!isLogEnabled(level)) {
        return;
    }
    std::string prefix = PluginEnvironment::getLoggerPrefix(level);
    prefix += ": ";
    va_list arguments;
    va_start(arguments, format);
    g_pluginEnvironment->getLogger(level)->log(level,
                                               formatText(std::move(prefix), format, arguments).c_str());
    va_end(arguments);
}

} // namespace pwr
