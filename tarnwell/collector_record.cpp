#include "tarnwell/collector_record.h"

#include "common/plugin/collector_plugin.h"
#include "common/tw_clock.h"
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

void addFeature(Values& values, const PluginCapability& capability, const OpenFailure* failure) {
    const bool isAvailable = capability.isAvailable() && failure == nullptr;
    add(values, "FEATURE", capability.getName());
    add(values, "DESCRIPTION", capability.getDescription());
    add(values, "STATE", isAvailable ? kAvailable : "off");
    add(values, "REASON", failure == nullptr ? capability.getReason() : failure->reason);
    add(values, "FIX", failure == nullptr ? capability.getFix() : failure->fix);
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
}

} // namespace

std::vector<std::unique_ptr<pwr::CollectorMetadata>> collectorRecords(const PluginSet& plugins,
                                                                      const MessageSet& messages,
                                                                      const std::string& defaultClockUUID) {
    std::vector<std::unique_ptr<pwr::CollectorMetadata>> records;
    for (const CollectorPlugin* collector : plugins.collectors()) {
        const pwr::TWClockSource* const clock = collector->getClockSource();
        Values values;
        add(values, "VERSION", plugins.versionOf(*collector));
        add(values, "CLOCK", clock == nullptr ? defaultClockUUID : clock->getUUID());
        for (const PluginCapability* capability : collector->getCapabilities()) {
            if (!capability->isHidden()) {
                addFeature(values, *capability, messages.failureOf(capability->getName()));
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
            features.push_back({value, {}, false, {}, {}});
        } else if (!features.empty()) {
            setFact(features.back(), key, value);
        }
    }
    return features;
}

} // namespace tarnwell
