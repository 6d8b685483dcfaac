#pragma once

#include "common/export.h"

#include <cstddef>
#include <string>
#include <vector>

namespace pwr {

/// Splits a text at single characters of a set. Runs of delimiters give no empty tokens, and leading
/// and trailing ones are ignored. The text is copied; the delimiters are not and must outlive the
/// tokenizer. A null or empty set, and an empty text, give no tokens.
class KRCOMMON_API Tokenizer {
public:
    Tokenizer(const std::string& text, const char* delimiters);

    /// All tokens in order; these do not use up what get_next_token() gives.
    std::vector<std::string> get_all_tokens() const;
    std::vector<std::string> get_all_tokens(const char* delimiters) const;
    unsigned get_num_tokens() const;

    /// The next token, owned by the tokenizer and valid until the next call; null at the end.
    const char* get_next_token();
    /// The next token at another set of delimiters, behind the end of the token given last.
    const char* get_next_token(const char* delimiters);
    /// As get_next_token(), empty at the end.
    std::string str_get_next_token();

private:
    std::string m_text;
    const char* m_delimiters;
    std::vector<std::string> m_tokens;
    std::string m_current;
    std::size_t m_position = 0;
};

} // namespace pwr
