#pragma once

namespace tarnwell {

/// Whether results go to a terminal whose user has not said NO_COLOR.
bool wantsColor();

/// Whether a progress line on standard error would be seen.
bool isErrorTerminal();

} // namespace tarnwell
