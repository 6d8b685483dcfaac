#pragma once

#include <cstdint>
#include <string>

namespace tarnwell {

/// "1 poll", "2 polls"
std::string counted(std::uint64_t count, const std::string& thing);
/// "512 bytes", "12.3 kB", "1.4 GB"
std::string byteCount(std::uint64_t bytes);
/// "12.345 s"
std::string seconds(double value);
/// "12.3 ms"
std::string milliseconds(double value);

} // namespace tarnwell
