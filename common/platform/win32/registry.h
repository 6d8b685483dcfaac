#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pwr::platform {

/// Values of the registry below the machine's root key; "", 0 or nothing when there is no such value of that type.
std::string registryText(const wchar_t* key, const wchar_t* name);
std::uint32_t registryNumber(const wchar_t* key, const wchar_t* name);
std::vector<unsigned char> registryBytes(const wchar_t* key, const wchar_t* name);

} // namespace pwr::platform
