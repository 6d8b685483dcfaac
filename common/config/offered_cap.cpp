#include "common/config/offered_cap.h"

#include <algorithm>
#include <unordered_map>

#include "common/config/platform.h"

namespace pwr {

namespace {

/// From the root down to the platform.
std::vector<const Platform*> lineOf(const Platform& platform) {
    std::vector<const Platform*> line;
    for (const Platform* at = &platform; at != nullptr; at = at->getParent()) {
        line.push_back(at);
    }
    std::reverse(line.begin(), line.end());
    return line;
}

/// One operation for each collector that the messages use.
std::vector<const Operation*> collectorsOf(const std::vector<InputMsg*>& messages) {
    std::vector<const Operation*> found;
    for (const InputMsg* message : messages) {
        for (const Operation* operation : *message) {
            if (!operation->getCollectorType().empty() &&
                std::none_of(found.begin(), found.end(),
                             [operation](const Operation* o) { return o->hasCollectorOf(*operation); })) {
                found.push_back(operation);
            }
        }
    }
    return found;
}

/// A capability may be extended by work of the collectors that it uses already, and of no other.
bool addsCollector(const std::vector<InputMsg*>& parents, const std::vector<InputMsg*>& children) {
    const std::vector<const Operation*> added = collectorsOf(children);
    const std::vector<const Operation*> known = collectorsOf(added.empty() ? children : parents);
    return !known.empty() && std::any_of(added.begin(), added.end(), [&known](const Operation* operation) {
        return std::none_of(known.begin(), known.end(),
                            [operation](const Operation* o) { return o->hasCollectorOf(*operation); });
    });
}

void extendMessages(std::vector<InputMsg*>& messages, const std::vector<InputMsg*>& children,
                    CapMergeReport& report) {
    if (children.empty()) {
        return;
    }
    std::unordered_map<std::string_view, std::size_t> places;
    for (std::size_t place = 0; place < messages.size(); ++place) {
        places.emplace(messages[place]->getName(), place);
    }
    for (InputMsg* const child : children) {
        const auto clash = places.find(child->getName());
        if (clash == places.end()) {
            messages.push_back(child);
            continue;
        }
        InputMsg*& parent = messages[clash->second];
        report.clashes.emplace_back(parent, child);
        parent = child;
    }
}

} // namespace

void mergeCap(OfferedCap& offered, const DeclaredCap& declared, CapMergeReport& report) {
    std::vector<InputMsg*> own;
    for (const auto& message : declared.messages) {
        own.push_back(message.get());
    }
    const bool extends = offered.definer != nullptr && declared.mode == InheritMode::EXTEND;
    if (extends && addsCollector(offered.messages, own)) {
        report.areCollectorsDifferent = true;
        return;
    }
    if (extends) {
        extendMessages(offered.messages, own, report);
    } else {
        offered.messages = std::move(own);
    }
    offered.definer = &declared.platform;
    offered.cap.setConfigfilePrefix(declared.prefix);
    offered.hasCommandLine = offered.hasCommandLine || declared.commandLine.has_value();
    if (!offered.hasCommandLine) {
        offered.cap.setName(declared.prefix);
    } else if (declared.commandLine) {
        offered.cap.setName(*declared.commandLine);
    }
    if (declared.description) {
        offered.cap.setDescription(*declared.description);
    }
    if (declared.isHidden) {
        offered.cap.setHidden(*declared.isHidden);
    }
    for (const std::string& group : declared.groups) {
        offered.cap.addGroup(group);
    }
}

bool findOfferedCap(const Platform& platform, std::string_view prefix, OfferedCap& offered) {
    CapMergeReport report;
    for (const Platform* const at : lineOf(platform)) {
        if (const DeclaredCap* const declared = at->getDeclaredCaps().find(prefix)) {
            mergeCap(offered, *declared, report);
        }
    }
    return offered.definer != nullptr;
}

std::vector<OfferedCap> listOfferedCaps(const Platform& platform) {
    std::vector<OfferedCap> all;
    std::unordered_map<std::string_view, std::size_t> places;
    CapMergeReport report;
    for (const Platform* const at : lineOf(platform)) {
        for (const auto& declared : at->getDeclaredCaps()) {
            const auto place = places.emplace(declared->prefix, all.size());
            if (place.second) {
                all.emplace_back();
            }
            mergeCap(all[place.first->second], *declared, report);
        }
    }
    return all;
}

} // namespace pwr
