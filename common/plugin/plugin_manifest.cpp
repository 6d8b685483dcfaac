#include "common/plugin/plugin_manifest.h"

#include "common/config/statement.h"
#include "common/platform/module.h"
#include "common/plugin/plugin_loader.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pwr {

namespace {

constexpr std::array<std::pair<std::string_view, std::uint32_t>, 3> KINDS{{
    {"collector", KR_PLUGIN_COLLECTOR},
    {"metric", KR_PLUGIN_METRIC},
    {"writer", KR_PLUGIN_WRITER},
}};

std::set<std::string> itemsOf(std::string_view list) {
    std::set<std::string> items;
    ListItems reader(list);
    for (std::string_view item; reader.next(item);) {
        items.emplace(item);
    }
    return items;
}

/// Takes one key; what was expected instead, or null.
const char* takeKey(PluginManifest& manifest, std::string_view key, std::string_view value) {
    if (key == "kind") {
        const auto kind =
            std::find_if(KINDS.begin(), KINDS.end(), [value](const auto& row) { return row.first == value; });
        manifest.kind = kind == KINDS.end() ? 0 : kind->second;
        return kind == KINDS.end() ? "collector, metric or writer" : nullptr;
    }
    if (key == "library") {
        manifest.libraryVersion = value;
        return nullptr;
    }
    if (key == "systems") {
        manifest.systems = itemsOf(value);
        return nullptr;
    }
    if (key != "type") {
        return "the key kind, library, systems or type";
    }
    const std::size_t colon = std::min(value.find(':'), value.size());
    const std::string_view type = trimBlanks(value.substr(0, colon));
    if (type.empty() || type.find_first_of("_=") != std::string_view::npos) {
        return "a word without \"_\" and \"=\"";
    }
    const std::set<std::string> categories = itemsOf(value.substr(std::min(colon + 1, value.size())));
    manifest.types[std::string(type)].insert(categories.begin(), categories.end());
    return nullptr;
}

} // namespace

int PluginManifest::parse(const std::string& manifestName, std::string_view text, std::string& error) {
    *this = PluginManifest();
    name = manifestName;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        line = trimBlanks(line.substr(0, line.find('#')));
        if (line.empty()) {
            continue;
        }
        const std::size_t equals = std::min(line.find('='), line.size());
        const char* const expected = takeKey(*this, trimBlanks(line.substr(0, equals)),
                                             trimBlanks(line.substr(std::min(equals + 1, line.size()))));
        if (expected != nullptr) {
            error = name + ".manifest:" + std::to_string(number) + ": \"" + std::string(line) +
                    "\": expected " + expected;
            return 1;
        }
    }
    if (kind == 0) {
        error = name + ".manifest: the key kind is missing";
        return 1;
    }
    return 0;
}

bool PluginManifest::isForThisSystem() const {
    return systems.empty() || systems.count(platform::systemWord()) != 0;
}

} // namespace pwr
