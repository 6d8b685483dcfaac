#pragma once

#include "common/usage/option_row.h"

#include <span>

namespace pwr::usage {

/// The options of one feature, or of one section of the usage text.
struct OptionGroup {
    const char* name;
    std::span<const OptionRow> rows;
};

// The command line of the tool, as constant data: to add an option means to add a row.
std::span<const OptionRow> generalRows();
std::span<const OptionRow> collectionRows();
std::span<const OptionRow> postProcessingRows();
std::span<const OptionGroup> featureGroups();

} // namespace pwr::usage
