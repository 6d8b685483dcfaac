#pragma once

#include <string>
#include <vector>

class CollectorPlugin;

namespace pwr {
class CollectorMetadata;
}

namespace tarnwell {

/// One feature that some collector knows, and whether this machine has it.
struct Feature {
    std::string name;
    std::string description;
    bool isAvailable = false;
    std::string reason; ///< why not
    std::string fix;    ///< what would mend it; may be empty
};

/// The features of all collectors in order of first mention. A feature that several collectors know is
/// available when one of them has it.
class FeatureList {
public:
    explicit FeatureList(const std::vector<CollectorPlugin*>& collectors);
    /// As it was on the machine of a saved collection.
    explicit FeatureList(const std::vector<const pwr::CollectorMetadata*>& records);

    const std::vector<Feature>& all() const { return m_features; }
    const Feature* find(const std::string& name) const;

    /// Names of the available (or of all the other) features joined by ", ".
    std::string names(bool available) const;

private:
    void add_i(Feature feature);

    std::vector<Feature> m_features;
};

/// "idle is not available: no such folder (load the driver)": the reason why a report lacks a feature.
std::string unavailableText(const Feature& feature);

} // namespace tarnwell
