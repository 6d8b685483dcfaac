#include "tarnwell/feature_list.h"

#include "common/plugin/collector_plugin.h"
#include "tarnwell/collector_record.h"
#include "tarnwell/hardware_description.h"

#include <algorithm>

namespace tarnwell {

FeatureList::FeatureList(const HardwareDescription& description,
                         const std::vector<CollectorPlugin*>& collectors) {
    for (Feature& feature : description.features()) {
        add_i(std::move(feature));
    }
    for (const CollectorPlugin* collector : collectors) {
        for (const PluginCapability* capability : collector->getCapabilities()) {
            add_i({capability->getName(), capability->getDescription(), capability->isAvailable(),
                   capability->getReason(), capability->getFix(), capability->isHidden(),
                   capability->getGroups()});
        }
    }
}

FeatureList::FeatureList(const std::vector<const pwr::CollectorMetadata*>& records) {
    for (const pwr::CollectorMetadata* record : records) {
        for (Feature& feature : recordedFeatures(*record)) {
            add_i(std::move(feature));
        }
    }
}

void FeatureList::add_i(Feature feature) {
    const auto known = std::find_if(m_features.begin(), m_features.end(),
                                    [&](const Feature& other) { return other.name == feature.name; });
    if (known == m_features.end()) {
        m_features.push_back(std::move(feature));
    } else {
        feature.groups.insert(known->groups.begin(), known->groups.end());
        known->groups = feature.groups;
        if (!known->isAvailable && feature.isAvailable) {
            *known = std::move(feature);
        }
    }
}

const Feature* FeatureList::find(const std::string& name) const {
    const auto at = std::find_if(m_features.begin(), m_features.end(),
                                 [&](const Feature& feature) { return feature.name == name; });
    return at == m_features.end() ? nullptr : &*at;
}

std::vector<const Feature*> FeatureList::select(const std::string& name) const {
    std::vector<const Feature*> selected;
    for (const Feature& feature : m_features) {
        if (feature.name == name || feature.groups.count(name) != 0) {
            selected.push_back(&feature);
        }
    }
    return selected;
}

std::string FeatureList::names(bool available) const {
    std::string text;
    for (const Feature& feature : m_features) {
        if (feature.isAvailable == available && !feature.isHidden) {
            text += (text.empty() ? "" : ", ") + feature.name;
        }
    }
    return text;
}

std::string unavailableText(const Feature& feature) {
    return feature.name + " is not available: " + feature.reason +
           (feature.fix.empty() ? "" : " (" + feature.fix + ")");
}

} // namespace tarnwell
