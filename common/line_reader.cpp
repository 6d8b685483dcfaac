#include "common/line_reader.h"

#include "common/pw_utils.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

namespace pwr {

namespace {

constexpr std::size_t CHUNK_SIZE = 1024;
constexpr const char* TRIMMED = " \r\t\n";

/// Reads up to a line end or a full chunk. The C library does not tell how much it read, and a zero byte
/// may be data: so the chunk is filled with line feeds first, and the zero byte that ends what was read
/// stands behind the first line feed, or before it when the file ended without one.
bool appendChunk(std::FILE* file, std::string& line, bool& ended) {
    std::array<char, CHUNK_SIZE> chunk;
    chunk.fill('\n');
    if (std::fgets(chunk.data(), static_cast<int>(chunk.size()), file) == nullptr) {
        return false;
    }
    const auto* const feed = std::find(chunk.begin(), chunk.end(), '\n');
    const auto before = static_cast<std::size_t>(feed - chunk.begin());
    ended = before + 1 < chunk.size() && chunk[before + 1] == '\0';
    line.append(chunk.data(), ended ? before : before - 1);
    return true;
}

template <typename Lines> int appendLines(std::FILE* file, Lines& lines) {
    if (file == nullptr) {
        return -1;
    }
    std::string line;
    while (LineReader::getline(file, line)) {
        lines.push_back(line);
    }
    return std::ferror(file) == 0 ? 0 : -1;
}

template <typename Lines> int appendLines(const char* path, Lines& lines) {
    if (path == nullptr) {
        return -1;
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        openFileHandle(path, "rb"), [](std::FILE* open) { return std::fclose(open); });
    return appendLines(file.get(), lines);
}

} // namespace

bool LineReader::getline(std::FILE* file, std::string& line) {
    line.clear();
    bool ended = false;
    bool any = false;
    while (!ended && appendChunk(file, line, ended)) {
        any = true;
    }
    if (ended && !line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return any;
}

int LineReader::get_all_lines(const char* path, std::vector<std::string>& lines) {
    return appendLines(path, lines);
}

int LineReader::get_all_lines(const char* path, std::deque<std::string>& lines) {
    return appendLines(path, lines);
}

int LineReader::get_all_lines(std::FILE* file, std::vector<std::string>& lines) {
    return appendLines(file, lines);
}

int LineReader::get_all_lines(std::FILE* file, std::deque<std::string>& lines) {
    return appendLines(file, lines);
}

void LineReader::trim(std::string& text) {
    const std::size_t first = text.find_first_not_of(TRIMMED);
    if (first == std::string::npos) {
        return;
    }
    text.erase(text.find_last_not_of(TRIMMED) + 1);
    text.erase(0, first);
}

std::string LineReader::trim(const std::string& text) {
    std::string trimmed = text;
    trim(trimmed);
    return trimmed;
}

void LineReader::strip(std::string& text, char character) {
    text.erase(std::remove(text.begin(), text.end(), character), text.end());
}

} // namespace pwr
