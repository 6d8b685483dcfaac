#include "tarnwell/terminal.h"

#include "common/platform/console.h"
#include "common/pw_utils.h"

#include <cstdio>

namespace tarnwell {

bool wantsColor() {
    return pwr::pw_getenv("NO_COLOR").empty() && pwr::platform::isTerminal(stdout);
}

bool isErrorTerminal() {
    return pwr::platform::isTerminal(stderr);
}

} // namespace tarnwell
