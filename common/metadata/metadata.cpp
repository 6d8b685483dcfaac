#include "common/metadata/metadata.h"

namespace pwr {

Metadata::~Metadata() = default;

pw_u32_t Metadata::getPluginID() const {
    return 0;
}

} // namespace pwr
