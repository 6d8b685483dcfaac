#include "common/metadata/system_metadata.h"

namespace pwr {

void SystemMetadata::serialize_i(Serializer&) const {}

int SystemMetadata::deserialize_i(Serializer&, unsigned) {
    return -1;
}

} // namespace pwr
