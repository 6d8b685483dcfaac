#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/machine_files.h"
#include "plugins/collectors/pattern.h"

namespace collectors {

/// One path that a pattern matches, and what its variables stand for there.
struct ExpandedPath {
    std::string path;
    Binding binding;
};

/// Fills the variables of a path from the names in the machine's folders, one component after the other. Without
/// variables the path is the only result, whether it is there or not. 1 with what is wrong in `error`.
int expandPath(const pwr::MachineFiles& machine, std::string_view path, std::vector<ExpandedPath>& found,
               std::string& error);

/// The number that a variable stands for; -1 when it is not bound, or to no number that fits.
int numberOf(const Binding& binding, std::string_view variable);

} // namespace collectors
