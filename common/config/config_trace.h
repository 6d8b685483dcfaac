#pragma once

namespace pwr {

/// The tag of debug logging that shows what the hardware description's parser does.
inline constexpr const char* c_configTraceTag = "config-parser";

} // namespace pwr
