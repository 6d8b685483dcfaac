#pragma once

namespace tarnwell {

/// The product's version as users see it.
constexpr const char* kVersion = "0.1.0";

} // namespace tarnwell
