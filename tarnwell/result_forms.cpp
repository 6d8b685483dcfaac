#include "tarnwell/result_forms.h"

#include "common/plugin/plugin_environment.h"
#include "common/usage/usage_text.h"
#include "common/writer/writer_plugin.h"
#include "tarnwell/complaints.h"
#include "tarnwell/plugin_set.h"
#include "tarnwell/settings.h"

#include <algorithm>
#include <set>
#include <string>

namespace tarnwell {
namespace {

/// The group of a writer's capability whose results are files and nothing else.
constexpr const char* kFilesGroup = "results:files";

bool writesFilesOnly(const WriterPlugin& writer) {
    const auto capabilities = writer.getCapabilities();
    return std::any_of(capabilities.begin(), capabilities.end(), [](const PluginCapability* capability) {
        return capability->getGroups().count(kFilesGroup) != 0;
    });
}

std::string joinedNames(const std::set<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

std::string defaultPrefix() {
    const pwr::usage::UsageText usage;
    for (const auto& option : usage.getOptions(pwr::usage::Section::POST_PROCESSING)) {
        if (option.getName() == "--output") {
            return option.getAttribute(pwr::usage::Option::Attribute::ARG_DEFAULT);
        }
    }
    return {};
}

} // namespace

int chooseResultForms(const Settings& settings, PluginSet& plugins) {
    if (settings.resultForms.empty() || !settings.reports) {
        return 0;
    }
    std::set<WriterPlugin*> chosen;
    for (const std::string& form : settings.resultForms) {
        bool isKnown = false;
        std::set<std::string> names{"none"};
        for (WriterPlugin* writer : plugins.writers()) {
            names.insert(writer->getName());
            if (writer->getName() == form) {
                chosen.insert(writer);
                isKnown = true;
            }
        }
        if (!isKnown) {
            return fail(ExitCode::USAGE,
                        "unknown form of results \"" + form + "\"; there are: " + joinedNames(names));
        }
    }
    plugins.writers() = chosen;
    const bool needsName =
        std::any_of(chosen.begin(), chosen.end(), [](const WriterPlugin* w) { return writesFilesOnly(*w); });
    if (needsName && settings.outputPrefix.empty()) {
        g_pluginEnvironment->setResultFilePrefix(defaultPrefix());
    }
    return 0;
}

} // namespace tarnwell
