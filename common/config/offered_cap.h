#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/config/config_cap.h"
#include "common/config/declared_cap.h"
#include "common/export.h"

namespace pwr {

class Platform;

/// A capability as one platform offers it: what the platform declares, on top of what its parent offers.
/// Made anew for each question from the declarations, which it never alters. Messages that went into a group
/// are among them.
struct OfferedCap {
    ConfigCap cap;
    bool hasCommandLine = false;       ///< otherwise the prefix stands in for the name
    const Platform* definer = nullptr; ///< the last platform on the way down that has a say
    std::vector<InputMsg*>
        messages; ///< the parent's in its order, replaced in place or followed by the child's

    // Kept along, so that a long line of descent costs no more than its declarations.
    std::unordered_map<std::string_view, std::size_t> places; ///< of the messages, by their names
    std::vector<const Operation*> collectors; ///< one operation for each that the messages use
};

/// What was noteworthy when a declaration went on top of what the parent offers.
struct CapMergeReport {
    std::vector<std::pair<const InputMsg*, const InputMsg*>> clashes; ///< (parent's, child's) of one name
    bool areCollectorsDifferent = false; ///< the child's declaration was left out for it
};

/// Puts a declaration on top of what the parent offers.
void mergeCap(OfferedCap& offered, const DeclaredCap& declared, CapMergeReport& report);

/// False when neither the platform nor one that it descends from declares the prefix.
bool findOfferedCap(const Platform& platform, std::string_view prefix, OfferedCap& offered);

/// All that a platform offers: the root's capabilities first, each platform's in the order of declaration.
std::vector<OfferedCap> listOfferedCaps(const Platform& platform);

} // namespace pwr
