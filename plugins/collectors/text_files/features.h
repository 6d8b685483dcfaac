#pragma once

#include <span>

#include "plugins/collectors/declared_feature.h"

namespace text_files {

/// What is read out of the text files of a machine: one row per feature, each naming its messages.
std::span<const pwr::FeatureRow> features();

} // namespace text_files
