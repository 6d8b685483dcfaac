#pragma once

#include <cstdint>

// The fixed-width names that the driver interface and the plug-ins share.
using pw_u8_t = std::uint8_t;
using pw_u16_t = std::uint16_t;
using pw_u32_t = std::uint32_t;
using pw_u64_t = std::uint64_t;
using pw_s32_t = std::int32_t;

#if defined(_WIN32)
// Declared here instead of including the system header, which drags in macros such as ERROR.
struct _PROCESSOR_NUMBER;
using PROCESSOR_NUMBER = struct _PROCESSOR_NUMBER;
#else
/// A logical processor: its processor group and its number within the group.
struct PROCESSOR_NUMBER {
    pw_u16_t Group;
    pw_u8_t Number;
    pw_u8_t Reserved;
};
#endif
