#pragma once

#include "common/pw_types.h"

#include <string>
#include <vector>

// Private to the library: how the texts of the system record show their values, the same in every
// locale and whatever the state of the stream that they end in.

namespace pwr {
struct PCIDevice;
}

namespace pwr::system_text {

/// "year.minor.patch" of a packed version.
std::string versionText(pw_u32_t version);
/// A frequency with as many digits as it takes to read the same one back, never with an exponent.
std::string megahertzText(float megahertz);
/// Lower-case digits without lead, at least as many as `width`.
std::string hexText(pw_u32_t value, int width = 1);
std::string joined(const std::vector<std::string>& parts, const char* separator);

/// What a bus device is called; one without a name is shown as vendor:device, as bus listings do.
std::string deviceName(const PCIDevice& device);

} // namespace pwr::system_text
