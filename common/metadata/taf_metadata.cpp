#include "common/metadata/taf_metadata.h"

namespace pwr {

TAFMetadata::TAFMetadata() : PlatformMetadata("TAF") {}

} // namespace pwr
