#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace tarnwell {

/// A text as a JSON string, with its quotes. Bytes that are no UTF-8 are replaced by U+FFFD.
inline std::string quotedForJson(std::string_view text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace tarnwell
