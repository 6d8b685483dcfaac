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

/// Completes the operations by one of each collector that a message uses besides.
void addCollectorsOf(const InputMsg& message, std::vector<const Operation*>& found) {
    for (const Operation* operation : message) {
        if (!operation->getCollectorType().empty() &&
            std::none_of(found.begin(), found.end(),
                         [operation](const Operation* o) { return o->hasCollectorOf(*operation); })) {
            found.push_back(operation);
        }
    }
}

/// A capability may be extended by work of the collectors that it uses already, and of no other.
bool addsCollector(const OfferedCap& offered, const DeclaredCap& declared) {
    std::vector<const Operation*> all = offered.collectors;
    for (const auto& message : declared.messages) {
        addCollectorsOf(*message, all);
    }
    return !offered.collectors.empty() && all.size() > offered.collectors.size();
}

void extendMessages(OfferedCap& offered, const DeclaredCap& declared, CapMergeReport& report) {
    const std::size_t clashesBefore = report.clashes.size();
    for (const auto& child : declared.messages) {
        const auto place = offered.places.emplace(child->getName(), offered.messages.size());
        if (place.second) {
            offered.messages.push_back(child.get());
            addCollectorsOf(*child, offered.collectors);
            continue;
        }
        InputMsg*& parent = offered.messages[place.first->second];
        report.clashes.emplace_back(parent, child.get());
        parent = child.get();
    }
    if (report.clashes.size() == clashesBefore) {
        return;
    }
    offered.collectors.clear(); // what was replaced may have been the only work of its collector
    for (const InputMsg* const message : offered.messages) {
        addCollectorsOf(*message, offered.collectors);
    }
}

} // namespace

void mergeCap(OfferedCap& offered, const DeclaredCap& declared, CapMergeReport& report) {
    if (declared.mode == InheritMode::OVERRIDE) {
        offered.messages.clear();
        offered.places.clear();
        offered.collectors.clear();
    }
    if (addsCollector(offered, declared)) {
        report.areCollectorsDifferent = true;
        return;
    }
    extendMessages(offered, declared, report);
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
