#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace collectors {

/// What the variables of a pattern stand for in one place: {cpu} = 3, {state} = 1.
class Binding {
public:
    /// The value of a variable; null when it is not bound.
    const std::string* find(std::string_view variable) const;
    void bind(std::string_view variable, std::string_view value);
    /// Adds all of another binding's variables.
    void merge(const Binding& other);

private:
    std::vector<std::pair<std::string, std::string>> m_values;
};

/// A text with variables in braces: "/sys/class/net/{net}/statistics/rx_bytes". Which variables there
/// are, and which of them stand for numbers only, is a table in the source.
class Pattern {
public:
    /// 1 with what is wrong in `error`: an unknown variable, an open brace.
    int parse(std::string_view text, std::string& error);

    /// True when the text fits; variables that are free in `binding` become bound, bound ones must agree.
    /// A variable stands for at least one byte, and for nothing beyond the text that follows it.
    bool match(std::string_view text, Binding& binding) const;
    /// The text with all bound variables filled in; free ones stay as they are.
    std::string expand(const Binding& binding) const;

    /// The text with `*` for each variable.
    std::string wildcard() const;

    bool hasVariables() const;
    /// The names of its variables, in their order.
    std::vector<std::string> variables() const;

private:
    struct Part {
        std::string text; // literal, or the variable's name
        bool isVariable;
        bool isNumber;
    };

    static bool takeValue_i(const Part& part, std::string_view stop, std::string_view& rest,
                            std::string_view& value);

    std::vector<Part> m_parts;
};

} // namespace collectors
