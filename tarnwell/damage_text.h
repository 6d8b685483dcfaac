#pragma once

#include "common/saved/collection_reader.h"

#include <string>
#include <vector>

namespace tarnwell {

/// "samples at byte 4096, 812 bytes: checksum differs"
std::string damageLine(const pwr::saved::Damage& damage);

/// What a damaged collection lacks, as sentences: lost blocks with their time and readings, and the end that is
/// missing. Empty for a whole file. @p promised are the readings that the file said it holds, before they were read.
std::vector<std::string> lossLines(const pwr::saved::CollectionReader& reader, std::uint64_t promised,
                                   double ticksPerSecond);

} // namespace tarnwell
