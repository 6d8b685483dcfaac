#include "tarnwell/completion_model.h"

#include <algorithm>
#include <array>

namespace tarnwell {
namespace {

using Attribute = pwr::usage::Option::Attribute;

struct TypeRow {
    const char* type;
    Proposal proposal;
};

constexpr std::array kTypes = {TypeRow{"file", Proposal::FILES}, TypeRow{"word", Proposal::WORDS},
                               TypeRow{"command", Proposal::COMMANDS}};

} // namespace

Proposal proposalOf(const KnownOption& option) {
    if (option.text.getName() == "--feature") {
        return Proposal::FEATURES;
    }
    const std::string type = option.text.getAttribute(Attribute::ARG_TYPE);
    const auto* const row =
        std::find_if(kTypes.begin(), kTypes.end(), [&](const TypeRow& r) { return type == r.type; });
    return row == kTypes.end() ? Proposal::NOTHING : row->proposal;
}

std::vector<std::string> namesOf(const KnownOption& option) {
    std::vector<std::string> names{option.text.getName()};
    if (std::string other = option.text.getAttribute(Attribute::ABBREVIATION); !other.empty()) {
        names.push_back(std::move(other));
    }
    return names;
}

std::string shortText(const std::string& description) {
    std::size_t end = description.size();
    for (const char* mark : {" [", "; ", ". ", ": "}) {
        end = std::min(end, description.find(mark));
    }
    return description.substr(0, end);
}

std::string joined(const std::vector<std::string>& texts, const char* separator) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : separator) + text;
    }
    return all;
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

} // namespace tarnwell
