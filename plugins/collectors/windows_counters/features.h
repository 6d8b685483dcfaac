#pragma once

#include <span>

#include "plugins/collectors/declared_feature.h"

namespace windows_counters {

/// What is asked from the system: the feature names, containers and columns are those of text_files, so
/// that one output configuration serves both. PATH names a source, FIELD one of its counters.
std::span<const pwr::FeatureRow> features();

} // namespace windows_counters
