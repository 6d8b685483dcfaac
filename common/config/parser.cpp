#include "common/config/parser.h"

#include <algorithm>

#include "common/config/config_trace.h"
#include "common/config/statement.h"
#include "common/plugin/logger.h"

namespace pwr {

Parser::Parser() {
    getOrCreatePlatform(c_rootName, "");
}

Parser::~Parser() = default;

std::string Parser::getParentName(std::string_view name) {
    const std::size_t hyphen = name.rfind('-');
    if (hyphen != std::string_view::npos) {
        return std::string(name.substr(0, hyphen));
    }
    return name == c_rootName ? "" : c_rootName;
}

const Platform* Parser::findPlatform(std::string_view name) const {
    const auto found = m_platforms.find(name);
    return found == m_platforms.end() ? nullptr : found->second.get();
}

Platform* Parser::findPlatform(std::string_view name) {
    const auto found = m_platforms.find(name);
    return found == m_platforms.end() ? nullptr : found->second.get();
}

Platform& Parser::getOrCreatePlatform(const std::string& name, const std::string& parentName) {
    if (Platform* const known = findPlatform(name)) {
        return *known;
    }
    auto made = std::make_unique<Platform>(name);
    if (Platform* const parent = parentName.empty() ? nullptr : findPlatform(parentName)) {
        parent->addChild(*made);
    } else if (!parentName.empty()) {
        logTrace(c_configTraceTag, "found orphaned platform \"%s\" with parent \"%s\"\n", name.c_str(),
                 parentName.c_str());
        m_orphans[parentName].push_back(made.get());
    }
    Platform& platform = *m_platforms.emplace(name, std::move(made)).first->second;

    const auto orphans = m_orphans.find(name);
    if (orphans != m_orphans.end()) {
        logTrace(c_configTraceTag, "platform \"%s\" has orphaned children!\n", name.c_str());
        for (Platform* const child : orphans->second) {
            logTrace(c_configTraceTag, "assigning previously orphaned child \"%s\" as a child of \"%s\"\n",
                     child->getName().c_str(), name.c_str());
            platform.addChild(*child);
        }
        m_orphans.erase(orphans);
    }
    return platform;
}

std::vector<std::string> Parser::getUndefinedParents() const {
    std::vector<std::string> names;
    for (const auto& [name, children] : m_orphans) {
        names.push_back(name);
    }
    return names;
}

const Platform* Parser::choosePlatform(const std::pair<std::string, std::string>& specifier) const {
    const auto& [type, value] = specifier;
    const Platform* partial = nullptr;
    for (const auto& [name, platform] : m_platforms) {
        for (const auto& candidate : platform->getSpecifiers()) {
            const int level = candidate->match(type, value);
            if (level == ConfigSpecifier::EXACT_MATCH) {
                logTrace(c_configTraceTag,
                         "Found exact match for specifier: %s=%s in Platform specifier %s\n", type.c_str(),
                         value.c_str(), candidate->toString().c_str());
                return platform.get();
            }
            if (level == ConfigSpecifier::PARTIAL_MATCH) {
                logTrace(c_configTraceTag,
                         "Found partial match for specifier: %s=%s in Platform specifier %s\n", type.c_str(),
                         value.c_str(), candidate->toString().c_str());
                partial = partial == nullptr ? platform.get() : partial;
            }
        }
    }
    return partial;
}

int Parser::getAllPlatforms_i(const std::string& platformNames,
                              std::vector<const Platform*>& platforms) const {
    ListItems entries(platformNames);
    for (std::string_view entry; entries.next(entry);) {
        const std::size_t equals = entry.find('=');
        const std::string name(equals == std::string_view::npos ? "" : trimBlanks(entry.substr(equals + 1)));
        if (name.empty() || trimBlanks(entry.substr(0, equals)).empty()) {
            logWarning("WARNING: invalid platform name entry %s: MUST be of form <TYPE>=<NAME>!\n",
                       std::string(entry).c_str());
            continue;
        }
        logTrace(c_configTraceTag, "pwr::Parser::getAllPlatforms_i looking at token %s\n",
                 std::string(entry).c_str());
        const Platform* const platform = findPlatform(name);
        if (platform == nullptr) {
            logError("ERROR: ERROR: no platform \"%s\" defined in config file!\n", name.c_str());
            return -1;
        }
        if (std::find(platforms.begin(), platforms.end(), platform) == platforms.end()) {
            platforms.push_back(platform);
        }
    }
    return platforms.empty() ? -1 : 0;
}

} // namespace pwr
