#pragma once

#include <set>
#include <string>
#include <vector>

class CollectorPlugin;

namespace pwr {
class CollectorMetadata;
}

namespace tarnwell {

class HardwareDescription;

/// One feature that some collector knows, and whether this machine has it.
struct Feature {
    std::string name;
    std::string description;
    bool isAvailable = false;
    std::string reason;    ///< why not
    std::string fix;       ///< what would mend it; may be empty
    bool isHidden = false; ///< not listed, and collected only when it is asked for
    std::set<std::string> groups;
    bool isOnRequest = false; ///< listed, and collected only when it is asked for: it records every event
};

/// The features of the hardware description, and those that collectors bring along themselves, in order of first
/// mention. A feature that comes several times is available when it is so once.
class FeatureList {
public:
    FeatureList(const HardwareDescription& description, const std::vector<CollectorPlugin*>& collectors);
    /// As it was on the machine of a saved collection.
    explicit FeatureList(const std::vector<const pwr::CollectorMetadata*>& records);

    const std::vector<Feature>& all() const { return m_features; }
    const Feature* find(const std::string& name) const;
    /// What a name asks for: the feature of that name and all features of the group of that name.
    std::vector<const Feature*> select(const std::string& name) const;

    /// Names of the available (or of all the other) features that are not hidden, joined by ", ".
    std::string names(bool available) const;

private:
    void add_i(Feature feature);

    std::vector<Feature> m_features;
};

/// "idle is not available: no such folder (load the driver)": the reason why a report lacks a feature.
std::string unavailableText(const Feature& feature);

} // namespace tarnwell
