#include "plugins/collectors/pattern.h"

#include <algorithm>
#include <array>

namespace collectors {

namespace {

struct VariableRow {
    std::string_view name;
    bool isNumber;
};

constexpr std::array VARIABLES{
    VariableRow{"cpu", true},      VariableRow{"core", true},   VariableRow{"package", true},
    VariableRow{"state", true},    VariableRow{"sensor", true}, VariableRow{"channel", true},
    VariableRow{"zone", true},     VariableRow{"net", false},   VariableRow{"block", false},
    VariableRow{"endpoint", true}, VariableRow{"number", true}, VariableRow{"name", false},
};

const VariableRow* findVariable(std::string_view name) {
    const auto row = std::find_if(VARIABLES.begin(), VARIABLES.end(),
                                  [name](const VariableRow& r) { return r.name == name; });
    return row == VARIABLES.end() ? nullptr : &*row;
}

} // namespace

const std::string* Binding::find(std::string_view variable) const {
    for (const auto& [name, value] : m_values) {
        if (name == variable) {
            return &value;
        }
    }
    return nullptr;
}

void Binding::bind(std::string_view variable, std::string_view value) {
    m_values.emplace_back(variable, value);
}

void Binding::merge(const Binding& other) {
    for (const auto& [name, value] : other.m_values) {
        if (find(name) == nullptr) {
            bind(name, value);
        }
    }
}

int Pattern::parse(std::string_view text, std::string& error) {
    m_parts.clear();
    while (!text.empty()) {
        const std::size_t open = std::min(text.find('{'), text.size());
        if (open > 0) {
            m_parts.push_back({std::string(text.substr(0, open)), false, false});
            text.remove_prefix(open);
            continue;
        }
        const std::size_t close = text.find('}');
        if (close == std::string_view::npos) {
            error = "\"{\" without \"}\"";
            return 1;
        }
        const std::string_view name = text.substr(1, close - 1);
        const VariableRow* row = findVariable(name);
        if (row == nullptr) {
            error = "unknown variable {" + std::string(name) + "}";
            return 1;
        }
        if (!m_parts.empty() && m_parts.back().isVariable) {
            error = "{" + m_parts.back().text + "} and {" + std::string(name) + "} need a text between them";
            return 1;
        }
        m_parts.push_back({std::string(name), true, row->isNumber});
        text.remove_prefix(close + 1);
    }
    return 0;
}

bool Pattern::takeValue_i(const Part& part, std::string_view stop, std::string_view& rest,
                          std::string_view& value) {
    std::size_t end = part.isNumber ? rest.find_first_not_of("0123456789") : std::string_view::npos;
    if (!part.isNumber && !stop.empty()) {
        end = rest.find(stop, 1);
    }
    end = std::min(end, rest.size());
    value = rest.substr(0, end);
    rest.remove_prefix(end);
    return !value.empty();
}

bool Pattern::match(std::string_view text, Binding& binding) const {
    Binding found;
    for (std::size_t i = 0; i < m_parts.size(); ++i) {
        const Part& part = m_parts[i];
        if (!part.isVariable) {
            if (!text.starts_with(part.text)) {
                return false;
            }
            text.remove_prefix(part.text.size());
            continue;
        }
        const std::string_view stop =
            i + 1 < m_parts.size() ? std::string_view(m_parts[i + 1].text) : std::string_view();
        std::string_view value;
        if (!takeValue_i(part, stop, text, value)) {
            return false;
        }
        const std::string* known = binding.find(part.text);
        known = known == nullptr ? found.find(part.text) : known;
        if (known != nullptr && *known != value) {
            return false;
        }
        found.bind(part.text, value);
    }
    if (text.empty()) {
        binding.merge(found);
    }
    return text.empty();
}

std::string Pattern::expand(const Binding& binding) const {
    std::string text;
    for (const Part& part : m_parts) {
        const std::string* value = part.isVariable ? binding.find(part.text) : nullptr;
        if (!part.isVariable) {
            text += part.text;
        } else {
            text += value == nullptr ? "{" + part.text + "}" : *value;
        }
    }
    return text;
}

std::string Pattern::wildcard() const {
    std::string text;
    for (const Part& part : m_parts) {
        text += part.isVariable ? "*" : part.text;
    }
    return text;
}

bool Pattern::hasVariables() const {
    return std::any_of(m_parts.begin(), m_parts.end(), [](const Part& part) { return part.isVariable; });
}

std::vector<std::string> Pattern::variables() const {
    std::vector<std::string> names;
    for (const Part& part : m_parts) {
        if (part.isVariable) {
            names.push_back(part.text);
        }
    }
    return names;
}

} // namespace collectors
