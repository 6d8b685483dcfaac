#include "common/config/config_sanity.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>

#include "common/config/config_trace.h"
#include "common/config/offered_cap.h"
#include "common/config/parser.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

int checkParents(const Parser& parser) {
    std::string names;
    for (const std::string& name : parser.getUndefinedParents()) {
        names += (names.empty() ? " " : ", ") + name;
    }
    if (names.empty()) {
        return 0;
    }
    logError("the following \"parent\" platforms have not been defined:%s\n", names.c_str());
    return -1;
}

bool hasSpecifierOnItsWayUp(const Platform& platform) {
    for (const Platform* at = &platform; at != nullptr; at = at->getParent()) {
        if (!at->getSpecifiers().empty()) {
            return true;
        }
    }
    return false;
}

void warnOfSpecifiers(const Platform& platform) {
    if (platform.getName() != Parser::c_rootName && platform.getChildren().empty() &&
        !hasSpecifierOnItsWayUp(platform)) {
        logWarning("WARNING: platform %s has no model specifier: no machine is recognised as it\n",
                   platform.getName().c_str());
    }
    for (const auto& specifier : platform.getSpecifiers()) {
        const auto* const range = dynamic_cast<const RangeConfigSpecifier*>(specifier.get());
        if (range != nullptr && range->getLow() > range->getHigh()) {
            logWarning("WARNING: model specifier %s of platform %s matches nothing: its low end is above its "
                       "high end\n",
                       range->toString().c_str(), platform.getName().c_str());
        }
    }
}

void warnOfMessages(const DeclaredCap& declared) {
    for (const auto& message : declared.messages) {
        if (message->getOperations().empty()) {
            logWarning("WARNING: message %s has no operations\n", message->getFullName().c_str());
        }
    }
}

void reportMerge(const DeclaredCap& declared, const CapMergeReport& report) {
    for (const auto& [parents, childs] : report.clashes) {
        logWarning("WARNING: Parent message (%s) clashes with child message (%s)\n",
                   parents->getFullName().c_str(), childs->getFullName().c_str());
    }
    if (report.areCollectorsDifferent) {
        logWarning("Deleting platform %s because the collectors are different!\n",
                   declared.platform.getName().c_str());
    }
}

int checkCap(const DeclaredCap& declared) {
    OfferedCap offered;
    if (const Platform* const parent = declared.platform.getParent()) {
        findOfferedCap(*parent, declared.prefix, offered);
    }
    if (!offered.messages.empty() && declared.mode == InheritMode::OVERRIDE && declared.messages.empty()) {
        logWarning("WARNING: capability %s of platform %s has no messages and hides those of its parent: "
                   "INHERIT MODE EXTEND keeps them\n",
                   declared.prefix.c_str(), declared.platform.getName().c_str());
    }
    CapMergeReport report;
    mergeCap(offered, declared, report);
    reportMerge(declared, report);
    if (!offered.hasCommandLine) {
        logWarning("WARNING: capability %s of platform %s has no COMMAND-LINE: it is called as its prefix\n",
                   declared.prefix.c_str(), declared.platform.getName().c_str());
    }
    warnOfMessages(declared);
    if (declared.messages.empty()) {
        return 0; // an extension without messages leaves the list as its parent has it, which is checked there
    }
    std::unordered_set<std::string_view> names;
    for (const InputMsg* const message : offered.messages) {
        if (!names.insert(message->getName()).second) {
            logError("ERROR: Duplicate messages found\n");
            return -1;
        }
    }
    return 0;
}

} // namespace

void removeImplicitTriggers(const Parser& parser) {
    for (const auto& [name, platform] : parser.getPlatforms()) {
        for (const auto& declared : platform->getDeclaredCaps()) {
            for (const auto& message : declared->messages) {
                message->removeImplicitTrigger();
            }
        }
    }
}

void addImplicitTriggers(const Parser& parser) {
    for (const auto& [name, platform] : parser.getPlatforms()) {
        for (const auto& declared : platform->getDeclaredCaps()) {
            for (const auto& message : declared->messages) {
                const bool isTriggered = !message->getTriggers().empty() ||
                                         !message->getTriggerSet(InputMsg::Detail::MAX).triggers.empty();
                const bool canBeRead =
                    !message->getOperations().empty() &&
                    std::all_of(message->begin(), message->end(), [](const Operation* operation) {
                        return operation->isValidCommand(TWOpCommand::READ);
                    });
                if (isTriggered || message->isGroupMember() || !canBeRead) {
                    continue;
                }
                logTrace(c_configTraceTag, "DEBUG: found IMPLICIT INIT for message: %s\n",
                         message->getName().c_str());
                message->addImplicitTrigger();
            }
        }
    }
}

int checkSanity(const Parser& parser) {
    int result = checkParents(parser);
    for (const auto& [name, platform] : parser.getPlatforms()) {
        warnOfSpecifiers(*platform);
        for (const auto& declared : platform->getDeclaredCaps()) {
            if (checkCap(*declared) != 0) {
                result = -1;
            }
        }
    }
    if (result != 0) {
        logError("config file parser sanity checks did NOT pass -- config files are invalid!\n");
    }
    return result;
}

} // namespace pwr
