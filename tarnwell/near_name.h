#pragma once

#include <string>
#include <vector>

namespace tarnwell {

/// "; did you mean --interval?" with the name of @p names that @p word was probably meant to be; "" when none is near.
std::string suggestion(const std::string& word, const std::vector<std::string>& names);

} // namespace tarnwell
