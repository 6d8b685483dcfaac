#pragma once

#include <string>

#include "common/export.h"
#include "common/model/data_handle.h"
#include "common/model/description.h"

namespace pwr {

/// Describes an event.
class KRCOMMON_API EventDescription : public Description {
public:
    explicit EventDescription(const std::string& name, const std::string& shortName = "");
};

/// Identifies something that happens at an instant.
class KRCOMMON_API Event : public DataHandle {
public:
    /// Registers a new event, which lives for the process.
    static const Event* create(const Description& description);

private:
    explicit Event(const Description& description);
};

} // namespace pwr
