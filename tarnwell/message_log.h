#pragma once

#include "tarnwell/standard_streams.h"

#include <string>
#include <vector>

namespace tarnwell {

/// Has every message from here on go to @p file, too, which is replaced; @p arguments are its first line. 0; or 1 with
/// a sentence in @p reason.
int openMessageLog(const std::string& file, const std::vector<std::string>& arguments, std::string& reason);

/// Tells the user a line on standard error, and the file of messages when there is one.
void say(const std::string& line);

/// A logger for what the library has to say: to the same places.
class MessageLogger : public StreamLogger {
public:
    MessageLogger() : StreamLogger(stderr) {}
    void emit(const char* bytes, std::size_t size) override;
};

} // namespace tarnwell
