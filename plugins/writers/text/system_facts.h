#pragma once

#include "common/metadata/system_metadata.h"

#include <string>
#include <utility>
#include <vector>

namespace text_writer {

/// What a reader of the report wants to know of the collection, as (name, value); what is not known is left out.
std::vector<std::pair<std::string, std::string>> systemFacts(const pwr::SystemMetadata& system);

} // namespace text_writer
