#pragma once

#include <cstdint>
#include <string_view>

#include "common/export.h"
#include "common/pw_types.h"

namespace pwr {

// The texts by which machines and the hardware description name what a platform is recognised by. Both sides
// are read by the same functions. A reader answers false, and leaves its output alone, unless the whole text is
// of its form and each number fits: nothing is cut off.

/// Family, model and stepping of a processor; stepping 0 stands for any.
struct FMSValue {
    pw_u8_t family = 0;
    pw_u8_t model = 0;
    pw_u8_t stepping = 0;
};

struct PCIValue {
    pw_u32_t vendor = 0;
    pw_u32_t device = 0;
};

/// "family.model" or "family.model.stepping", decimal or, behind "0x", hexadecimal.
KRCOMMON_API bool readFMSValue(std::string_view text, FMSValue& value);

/// "VENDOR=0x1,DEVICE=0x2"; blanks around the comma do not count.
KRCOMMON_API bool readPCIValue(std::string_view text, PCIValue& value);
/// The same with both halves given apart.
KRCOMMON_API bool readPCIValue(std::string_view vendor, std::string_view device, PCIValue& value);

/// "GUID=0x1".
KRCOMMON_API bool readGUIDValue(std::string_view text, pw_u32_t& guid);

/// A whole number of 32 bits, signed or unsigned, decimal or hexadecimal.
KRCOMMON_API bool readInteger32(std::string_view text, std::int64_t& value);

} // namespace pwr
