#include "tarnwell/feature_words.h"

#include "common/usage/usage_text.h"
#include "tarnwell/command_option.h"
#include "tarnwell/settings.h"

#include <algorithm>
#include <charconv>

namespace tarnwell {
namespace {

using pwr::usage::Option;

/// "cxh-int, pcd-ip-active": what may stand behind the feature's name.
std::string namesOf(const std::vector<Option>& options) {
    std::string names;
    for (const Option& option : options) {
        names += (names.empty() ? "" : ", ") + option.getName();
    }
    return names;
}

void checkValue(const Option& option, bool hasValue, const std::string& value) {
    const std::string arg = option.getAttribute(Option::Attribute::ARG);
    if (arg.empty()) {
        if (hasValue) {
            throw BadValue{option.getName() + " without a value"};
        }
        return;
    }
    unsigned number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    const bool isInteger = error == std::errc() && end == value.data() + value.size() && number > 0;
    const bool mustBeInteger = option.getAttribute(Option::Attribute::ARG_TYPE) == "integer";
    if (value.empty() || (mustBeInteger && !isInteger)) {
        throw BadValue{option.getName() + "=" + arg};
    }
}

/// One option of the feature: "cxh-int=5000".
void takeOption(Settings& settings, const std::string& feature, const std::vector<Option>& options,
                const std::string& text) {
    const std::size_t equals = text.find('=');
    const std::string name = text.substr(0, equals);
    const auto known = std::find_if(options.begin(), options.end(),
                                    [&](const Option& option) { return option.getName() == name; });
    if (known == options.end()) {
        throw BadValue{"one of the options of " + feature + ": " + namesOf(options)};
    }
    checkValue(*known, equals != std::string::npos,
               equals == std::string::npos ? std::string() : text.substr(equals + 1));
    settings.remarks.push_back(name + " has no effect: no collector on this system reads what it is about");
}

} // namespace

void addFeature(Settings& settings, const std::string& text) {
    const pwr::usage::UsageText usage;
    const auto& all = usage.getIndividualFeatureOptions();
    // Names that the table does not know may contain colons.
    std::size_t colon = text.find(':');
    const auto known = all.find(text.substr(0, colon));
    const std::string feature = known == all.end() ? text : known->first;
    if (feature.empty()) {
        throw BadValue{"the name of a feature; --feature without one lists them"};
    }
    if (std::find(settings.features.begin(), settings.features.end(), feature) == settings.features.end()) {
        settings.features.push_back(feature);
    }
    while (known != all.end() && colon != std::string::npos) {
        const std::size_t next = text.find(':', colon + 1);
        takeOption(settings, feature, known->second, text.substr(colon + 1, next - colon - 1));
        colon = next;
    }
}

std::string unservedText(const std::string& feature) {
    const pwr::usage::UsageText usage;
    return usage.getIndividualFeatureOptions().count(feature) == 0
               ? std::string()
               : feature + " is not available: no collector on this system reads its blocks";
}

} // namespace tarnwell
