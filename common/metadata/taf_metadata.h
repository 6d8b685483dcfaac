#pragma once

#include "common/export.h"
#include "common/metadata/platform_metadata.h"

namespace pwr {

/// The telemetry endpoints of the machine that a collection ran on, whose GUIDs are the specifier
/// values. Has no platform type and no part of its own in a saved collection: the endpoints stand in
/// the system record.
class KRCOMMON_API TAFMetadata : public PlatformMetadata {
public:
    TAFMetadata();
};

} // namespace pwr
