#pragma once

#include "common/metadata/collector_metadata.h"
#include "tarnwell/feature_list.h"

#include <memory>
#include <string>
#include <vector>

class CollectorPlugin;

namespace tarnwell {

class HardwareDescription;
class MessageSet;
class PluginSet;

/// What a saved collection keeps of each collector, in the order of their numbers: VERSION (of the library that it was
/// built with) and CLOCK (the UUID of the clock that stamps its readings), then for each feature FEATURE, DESCRIPTION,
/// STATE ("available" or "off"), REASON, FIX and each GROUP. Keys without a value are left out.
std::vector<std::unique_ptr<pwr::CollectorMetadata>> collectorRecords(const PluginSet& plugins,
                                                                      const HardwareDescription& description,
                                                                      const MessageSet& messages,
                                                                      const std::string& defaultClockUUID);

/// The features that a record tells of.
std::vector<Feature> recordedFeatures(const pwr::CollectorMetadata& record);

} // namespace tarnwell
