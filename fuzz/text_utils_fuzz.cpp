#include "common/line_reader.h"
#include "common/pw_utils.h"
#include "common/tokenizer.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

// The text helpers on any bytes. The input is "delimiters, zero byte, text"; what must hold for every
// input is checked, not only that nothing crashes.

namespace {

void require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n", what);
        std::abort();
    }
}

void checkTokens(const std::string& text, const std::string& delimiters) {
    pwr::Tokenizer tokenizer(text, delimiters.c_str());
    const std::vector<std::string> tokens = tokenizer.get_all_tokens();
    std::size_t position = 0;
    std::size_t characters = 0;
    for (const std::string& token : tokens) {
        require(!token.empty(), "a token has characters");
        require(token.find_first_of(delimiters) == std::string::npos, "a token has no delimiter");
        require(tokenizer.str_get_next_token() == token, "tokens come in order");
        require(pwr::getNextToken(text, position, delimiters.c_str()) == token, "both splitters agree");
        characters += token.size();
    }
    require(tokenizer.get_next_token() == nullptr, "the tokens end");
    std::size_t others = 0;
    for (const char character : text) {
        others += delimiters.find(character) == std::string::npos ? 1U : 0U;
    }
    require(delimiters.empty() || characters == others, "no character is lost");
}

void checkTrimming(const std::string& text) {
    const std::string set = " \r\t\n";
    const std::string trimmed = pwr::LineReader::trim(text);
    require(text.find(trimmed) != std::string::npos, "trimming only cuts");
    if (text.find_first_not_of(set) == std::string::npos) {
        require(trimmed == text, "a blank text stays");
    } else {
        require(set.find(trimmed.front()) == std::string::npos &&
                    set.find(trimmed.back()) == std::string::npos,
                "both ends are clean");
    }
    if (!text.empty()) {
        std::string stripped = text;
        pwr::LineReader::strip(stripped, text.front());
        require(stripped.find(text.front()) == std::string::npos, "a stripped character is gone");
    }
}

void checkNumbers(const std::string& text) {
    std::int64_t value = 0;
    if (pwr::extract_number_i(text, value) == 0) {
        require(pwr::isNumber(text), "what can be read looks like a number");
        std::int64_t again = 0;
        require(pwr::extract_number_i(std::to_string(value), again) == 0 && again == value, "it reads back");
    }
    std::uint8_t small = 0;
    if (pwr::extract_number_i(text, small) == 0) {
        require(pwr::extract_number_i(text, value) == 0 && value == small,
                "the width does not change a value");
    }
}

void checkLines(const std::string& text) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        std::tmpfile(), [](std::FILE* open) { return std::fclose(open); });
    require(file != nullptr, "there is a temporary file");
    require(std::fwrite(text.data(), 1, text.size(), file.get()) == text.size(), "it is written");
    std::rewind(file.get());
    std::vector<std::string> lines;
    require(pwr::LineReader::get_all_lines(file.get(), lines) == 0, "it is read");

    // The slow and plain way.
    std::vector<std::string> expected;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t feed = text.find('\n', begin);
        const bool ended = feed != std::string::npos;
        std::string line = text.substr(begin, ended ? feed - begin : std::string::npos);
        if (ended && !line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        expected.push_back(std::move(line));
        begin = ended ? feed + 1 : text.size();
    }
    require(lines == expected, "the lines are those of the plain way");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t zero = input.find('\0');
    const std::string delimiters = zero == std::string::npos ? "," : input.substr(0, zero);
    const std::string text = zero == std::string::npos ? input : input.substr(zero + 1);
    checkTokens(text, delimiters);
    checkTrimming(text);
    checkNumbers(text);
    checkLines(text);
    return 0;
}
