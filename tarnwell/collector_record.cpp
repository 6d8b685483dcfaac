#include "tarnwell/collector_record.h"

#include "common/plugin/collector_plugin.h"
#include "common/tw_clock.h"
#include "tarnwell/hardware_description.h"
#include "tarnwell/message_set.h"
#include "tarnwell/plugin_set.h"

#include <array>
#include <utility>

namespace tarnwell {
namespace {

constexpr const char* kAvailable = "available";

using Values = pwr::CollectorMetadata::ValueList;

void add(Values& values, const char* key, const std::string& value) {
    if (!value.empty()) {
        values.emplace_back(key, value);
    }
}

void addFeature(Values& values, const Feature& feature, const OpenFailure* failure) {
    const bool isAvailable = feature.isAvailable && failure == nullptr;
    add(values, "FEATURE", feature.name);
    add(values, "DESCRIPTION", feature.description);
    add(values, "STATE", isAvailable ? kAvailable : "off");
    add(values, "REASON", failure == nullptr ? feature.reason : failure->reason);
    add(values, "FIX", failure == nullptr ? feature.fix : failure->fix);
    for (const std::string& group : feature.groups) {
        add(values, "GROUP", group);
    }
}

/// What a collector can do here: by the hardware description, and by itself.
std::vector<Feature> featuresOf(const HardwareDescription& description, const CollectorPlugin& collector) {
    std::vector<Feature> features = description.features(&collector);
    for (const PluginCapability* capability : collector.getCapabilities()) {
        features.push_back({capability->getName(), capability->getDescription(), capability->isAvailable(),
                            capability->getReason(), capability->getFix(), capability->isHidden(),
                            capability->getGroups()});
    }
    return features;
}

/// What a key behind FEATURE sets.
void setFact(Feature& feature, const std::string& key, const std::string& value) {
    static constexpr std::array<std::pair<const char*, std::string Feature::*>, 3> kTexts = {
        {{"DESCRIPTION", &Feature::description}, {"REASON", &Feature::reason}, {"FIX", &Feature::fix}}};
    for (const auto& [name, member] : kTexts) {
        if (key == name) {
            feature.*member = value;
        }
    }
    feature.isAvailable = feature.isAvailable || (key == "STATE" && value == kAvailable);
    if (key == "GROUP") {
        feature.groups.insert(value);
    }
}

} // namespace

std::vector<std::unique_ptr<pwr::CollectorMetadata>> collectorRecords(const PluginSet& plugins,
                                                                      const HardwareDescription& description,
                                                                      const MessageSet& messages,
                                                                      const std::string& defaultClockUUID) {
    std::vector<std::unique_ptr<pwr::CollectorMetadata>> records;
    for (const CollectorPlugin* collector : plugins.collectors()) {
        const pwr::TWClockSource* const clock = collector->getClockSource();
        Values values;
        add(values, "VERSION", plugins.versionOf(*collector));
        add(values, "CLOCK", clock == nullptr ? defaultClockUUID : clock->getUUID());
        for (const Feature& feature : featuresOf(description, *collector)) {
            if (!feature.isHidden) {
                addFeature(values, feature, messages.failureOf(feature.name));
            }
        }
        records.push_back(std::make_unique<pwr::CollectorMetadata>(collector->getName(), std::move(values)));
    }
    return records;
}

std::vector<Feature> recordedFeatures(const pwr::CollectorMetadata& record) {
    std::vector<Feature> features;
    for (const auto& [key, value] : record.getValues()) {
        if (key == "FEATURE") {
            features.emplace_back().name = value;
        } else if (!features.empty()) {
            setFact(features.back(), key, value);
        }
    }
    return features;
}

} // namespace tarnwell
