#include "tarnwell/message_log.h"

#include "tarnwell/version.h"

#include <memory>

namespace tarnwell {
namespace {

/// Messages come from all parts of the program, before and after its environment is there.
std::unique_ptr<pwr::FileLogger>& openLog() {
    static std::unique_ptr<pwr::FileLogger> log;
    return log;
}

} // namespace

int openMessageLog(const std::string& file, const std::vector<std::string>& arguments, std::string& reason) {
    auto log = std::make_unique<pwr::FileLogger>(file.c_str());
    std::string first = std::string("tarnwell ") + kVersion + ":";
    for (const std::string& argument : arguments) {
        first += " " + argument;
    }
    first += "\n";
    // Only writing tells whether there is room.
    if (!log->fail()) {
        log->log(first.c_str());
    }
    if (log->fail()) {
        reason = "--log " + file + ": the file cannot be written";
        return 1;
    }
    openLog() = std::move(log);
    return 0;
}

void say(const std::string& line) {
    const std::string text = line + "\n";
    std::fputs(text.c_str(), stderr);
    if (openLog() != nullptr) {
        openLog()->log(text.c_str());
    }
}

void MessageLogger::emit(const char* bytes, std::size_t size) {
    StreamLogger::emit(bytes, size);
    if (openLog() != nullptr) {
        openLog()->log(std::string(bytes, size).c_str());
    }
}

} // namespace tarnwell
