#pragma once

#include "common/export.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>

// The compiler checks the arguments of the logging calls against their format. The GNU flavour is
// asked for by name, because the plain one means another runtime's formats on some platforms.
#if defined(__clang__)
#define KRCOMMON_PRINTF(text, first) __attribute__((format(printf, text, first)))
#elif defined(__GNUC__)
#define KRCOMMON_PRINTF(text, first) __attribute__((format(gnu_printf, text, first)))
#else
#define KRCOMMON_PRINTF(text, first)
#endif

// Some system headers define these two words as macros; the enumerators must survive them.
#pragma push_macro("ERROR")
#pragma push_macro("DEBUG")
#undef ERROR
#undef DEBUG

namespace pwr {

/// How severe a message is: the smaller, the more severe. Any number above DEBUG, and any below
/// FATAL, counts as INFO. A message is written only when the verbosity is at least its level.
enum class PWLogLevel : std::int32_t { FATAL = 0, ERROR = 1, WARNING = 2, DEBUG = 3, INFO = 4 };

} // namespace pwr

#pragma pop_macro("DEBUG")
#pragma pop_macro("ERROR")

namespace pwr {

/// An output stream whose text is collected in a growable buffer and handed to emit() in one piece.
/// Writing to the stream only collects, however long the text is; flushing and log() emit.
/// Threads:  log(), flush() and stream writes lock the logger, so log() may come from any thread;
///           a message goes out whole. emit() is called with the lock held, and may log again.
/// The base class discards its text: derive and override emit().
class KRCOMMON_API Logger : public std::ostream {
public:
    Logger();
    ~Logger() override;
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    /// Writes a message of a level; the base class forwards to log(text), whatever the level.
    /// The text is final and never taken as a format. 0, or 1 for a null text.
    virtual int log(PWLogLevel level, const char* text);

    /// Appends the text to what the stream has collected, and emits all of it in one piece.
    virtual int log(const char* text);

    /// Emits what has been collected; without any there is nothing to do. This is what the stream's
    /// flush() ends in.
    virtual int flushBuffer();

    /// Takes the collected bytes to where they belong; the base class does nothing.
    virtual void emit(const char* bytes, std::size_t size);

    /// Ends the output; the base class has nothing to end. 0 for success.
    virtual int close();

private:
    /// A member and not a base class: with a stream buffer as base, printing the address of a
    /// logger would copy the content of the buffer instead.
    class Buffer : public std::streambuf {
    public:
        explicit Buffer(Logger& owner) : m_owner(owner) {}

    protected:
        int_type overflow(int_type character) override;
        std::streamsize xsputn(const char* bytes, std::streamsize count) override;
        int sync() override;

    private:
        Logger& m_owner;
    };

    void append_i(const char* bytes, std::size_t size);

    std::recursive_mutex m_mutex;
    std::string m_text;
    bool m_pending = false;
    Buffer m_buffer;
};

/// A logger that writes to a file, which it opens for output and truncates. Bytes go out as they are
/// (no conversion of line ends) and the file is flushed after each emit. When the file cannot be
/// opened the stream is in its failure state and the text is discarded; nothing is thrown.
/// The name is UTF-8 on every platform. Text that was not flushed is written at the end.
class KRCOMMON_API FileLogger : public Logger {
public:
    explicit FileLogger(const char* name);
    ~FileLogger() override;

    using Logger::log;
    void emit(const char* bytes, std::size_t size) override;

    /// Closes the file; 1 and the stream's failure state when that fails or no file is open.
    int close() override;

private:
    std::ofstream m_file;
};

/// Whether a message of this level would be written: for callers whose arguments cost something.
KRCOMMON_API bool isLogEnabled(PWLogLevel level);

/// The one way to warn: formats the text when the environment's verbosity admits the level and a
/// logger is set for it, and hands both to that logger. The whole text, lead ("WARNING: ") and line
/// end included, stands in the call. May be called on any thread.
KRCOMMON_API void logMessage(PWLogLevel level, const char* format, ...) KRCOMMON_PRINTF(2, 3);
KRCOMMON_API void logMessageArguments(PWLogLevel level, const char* format, va_list arguments)
    KRCOMMON_PRINTF(2, 0);

/// logMessage() of one level, for callers that see the macros ERROR or DEBUG of a system header.
KRCOMMON_API void logError(const char* format, ...) KRCOMMON_PRINTF(1, 2);
KRCOMMON_API void logWarning(const char* format, ...) KRCOMMON_PRINTF(1, 2);
KRCOMMON_API void logDebug(const char* format, ...) KRCOMMON_PRINTF(1, 2);

/// Writes as a trace of one subject: only when debug logging is switched on for the tag, and then
/// whatever the verbosity is, to the debug logger. Debug output is chosen by subject, because the
/// verbosity itself never reaches DEBUG. The set of tags is not locked: it is filled before threads start.
KRCOMMON_API void logTrace(const char* tag, const char* format, ...) KRCOMMON_PRINTF(2, 3);

/// A warning of a subject that can be traced: like logWarning(), and with a verbosity that holds warnings back it is
/// written, as a warning, when debug logging is switched on for the tag. May be called on any thread.
KRCOMMON_API void logTaggedWarning(const char* tag, const char* format, ...) KRCOMMON_PRINTF(2, 3);

/// Like logMessage(), with the level's own prefix and ": " before the text ("ERROR: text").
KRCOMMON_API void logPrefixed(PWLogLevel level, const char* format, ...) KRCOMMON_PRINTF(2, 3);

} // namespace pwr
