#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/machine_bundle.h"

namespace pwr {

/// What one path held from a moment on.
struct MachineBundle::Version {
    enum class Kind : std::uint8_t { FILE, LINK, UNREADABLE, GONE };

    std::size_t moment;
    Kind kind;
    MachineStatus status;
    std::string content;
};

/// One name of the recorded tree: its own versions (none for a folder) and what lies below.
/// A link may have entries below it too: they were recorded through it.
struct MachineBundle::Node {
    std::map<std::string, std::unique_ptr<Node>, std::less<>> children;
    std::vector<Version> versions;

    /// The version that holds at a moment; null before the first one and after it went.
    const Version* at(std::size_t moment) const {
        const auto next =
            std::upper_bound(versions.begin(), versions.end(), moment,
                             [](std::size_t m, const Version& version) { return m < version.moment; });
        if (next == versions.begin() || std::prev(next)->kind == Version::Kind::GONE) {
            return nullptr;
        }
        return &*std::prev(next);
    }
};

} // namespace pwr
