#include "common/config/config_text_reader.h"

#include <array>
#include <cstdio>
#include <exception>
#include <memory>

#include "common/plugin/logger.h"
#include "common/pw_utils.h"

namespace pwr {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

int handleStatement(const Statement& statement, const StatementHandler& handler, std::string& problem) {
    try {
        return handler(statement, problem);
    } catch (const std::exception& exception) {
        logError("EXCEPTION CAUGHT: %s\n", exception.what());
        return -1;
    }
}

void reportLine(const Statement& statement, const std::string& fileName, const std::string& problem) {
    logError("ERROR: ERROR parsing line %s (%s:%llu)%s%s\n", std::string(statement.text).c_str(),
             fileName.c_str(), static_cast<unsigned long long>(statement.lineNumber),
             problem.empty() ? "" : ": ", problem.c_str());
}

} // namespace

bool readConfigFileText(const std::string& path, std::string& text) {
    const std::unique_ptr<std::FILE, FileCloser> file(openFileHandle(path, "rb"));
    if (file == nullptr) {
        return false;
    }
    std::array<char, 65536> chunk;
    std::size_t size = 0;
    while ((size = std::fread(chunk.data(), 1, chunk.size(), file.get())) > 0) {
        text.append(chunk.data(), size);
    }
    return std::ferror(file.get()) == 0; // a folder, for example, opens but cannot be read
}

int readConfigFile(const std::string& path, const StatementHandler& handler) {
    std::string text;
    if (!readConfigFileText(path, text)) {
        logError("Error opening config file %s\n", path.c_str());
        return -1;
    }
    return readConfigText(path, text, handler);
}

int readConfigText(const std::string& name, std::string_view text, const StatementHandler& handler) {
    const std::string fileName = PathOps::getFilenameFromPath(name);
    StatementReader reader(text);
    Statement statement;
    std::string problem;
    int result = 0;
    for (auto read = reader.next(statement); read != StatementReader::Result::END;
         read = reader.next(statement)) {
        problem.clear();
        if (read == StatementReader::Result::MALFORMED) {
            problem = reader.getProblem();
        } else if (handleStatement(statement, handler, problem) == 0) {
            continue;
        }
        reportLine(statement, fileName, problem);
        result = -1;
    }
    if (result != 0) {
        logError("ERROR parsing config file %s\n", name.c_str());
    }
    return result;
}

} // namespace pwr
