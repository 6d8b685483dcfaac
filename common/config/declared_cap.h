#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "common/config/input_msg.h"
#include "common/config/named_list.h"
#include "common/config/pw_set.h"
#include "common/export.h"

namespace pwr {

class Platform;

/// How a capability of a platform combines with the one of its parent: in its place, or on top of it.
enum class InheritMode { OVERRIDE, EXTEND };

/// What the statements of one platform say about one capability; what they leave unset is inherited.
struct KRCOMMON_API DeclaredCap {
    DeclaredCap(const Platform& declaringPlatform, std::string_view configfilePrefix);
    DeclaredCap(const DeclaredCap&) = delete;
    DeclaredCap& operator=(const DeclaredCap&) = delete;

    [[nodiscard]] const std::string& getName() const { return prefix; }
    InputMsg& getOrCreateMessage(std::string_view name);

    const Platform& platform;
    const std::string prefix;
    InheritMode mode = InheritMode::OVERRIDE;
    std::optional<std::string> commandLine;
    std::optional<std::string> description;
    std::optional<bool> isHidden;
    PWSet groups;
    NamedList<InputMsg> messages;
};

} // namespace pwr
