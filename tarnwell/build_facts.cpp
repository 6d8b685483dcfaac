#include "tarnwell/build_facts.h"

#include "common/metadata/system_metadata.h"
#include "tarnwell/version.h"

namespace tarnwell {

void describeBuild(pwr::SystemMetadata& system) {
    system.nonNumericVersion = kVersion;
    system.buildRef = TARNWELL_BUILD_REF;
    system.appBuildDate = TARNWELL_BUILD_DATE;
}

} // namespace tarnwell
