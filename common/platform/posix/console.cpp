#include "common/platform/console.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace pwr::platform {

bool isTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) == 1;
}

unsigned terminalWidth(std::FILE* stream) {
    winsize size{};
    return ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

} // namespace pwr::platform
