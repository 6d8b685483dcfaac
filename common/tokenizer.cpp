#include "common/tokenizer.h"

#include "common/pw_utils.h"

namespace pwr {

namespace {

/// The span of the next token from `position` on; begin == end when there is none.
struct Span {
    std::size_t begin;
    std::size_t end;
};

Span nextSpan(const std::string& text, std::size_t position, const char* delimiters) {
    const std::size_t size = text.size();
    if (delimiters == nullptr || *delimiters == '\0' || position >= size) {
        return {size, size};
    }
    const std::size_t begin = text.find_first_not_of(delimiters, position);
    if (begin == std::string::npos) {
        return {size, size};
    }
    const std::size_t end = text.find_first_of(delimiters, begin);
    return {begin, end == std::string::npos ? size : end};
}

} // namespace

std::string getNextToken(const std::string& text, std::size_t& position, const char* delimiters) {
    const Span span = nextSpan(text, position, delimiters);
    position = span.end;
    return text.substr(span.begin, span.end - span.begin);
}

Tokenizer::Tokenizer(const std::string& text, const char* delimiters)
    : m_text(text), m_delimiters(delimiters), m_tokens(get_all_tokens(delimiters)) {}

std::vector<std::string> Tokenizer::get_all_tokens() const {
    return m_tokens;
}

std::vector<std::string> Tokenizer::get_all_tokens(const char* delimiters) const {
    std::vector<std::string> tokens;
    for (Span span = nextSpan(m_text, 0, delimiters); span.begin < span.end;
         span = nextSpan(m_text, span.end, delimiters)) {
        tokens.push_back(m_text.substr(span.begin, span.end - span.begin));
    }
    return tokens;
}

unsigned Tokenizer::get_num_tokens() const {
    return static_cast<unsigned>(m_tokens.size());
}

const char* Tokenizer::get_next_token() {
    return get_next_token(m_delimiters);
}

const char* Tokenizer::get_next_token(const char* delimiters) {
    const Span span = nextSpan(m_text, m_position, delimiters);
    m_position = span.end;
    if (span.begin == span.end) {
        return nullptr;
    }
    m_current.assign(m_text, span.begin, span.end - span.begin);
    return m_current.c_str();
}

std::string Tokenizer::str_get_next_token() {
    return get_next_token() == nullptr ? std::string() : m_current;
}

} // namespace pwr
