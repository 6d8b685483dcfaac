#pragma once

#include "common/export.h"
#include "common/pw_types.h"

namespace pwr {

/// Version of the collection that is being read or written, packed as packSavedVersion() does. Records
/// without a version of their own are read by it, so the system record, which carries it, comes first
/// in a file. Before any system record: the version that this library writes.
/// One for the whole process, and so only one collection is handled at a time.
KRCOMMON_API pw_u32_t getHandledVersion();

/// For the system record, as soon as its version is read or written, and for readers that begin anew.
KRCOMMON_API void setHandledVersion(pw_u32_t version);

} // namespace pwr
