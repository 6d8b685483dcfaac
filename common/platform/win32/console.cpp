#include "common/platform/console.h"
#include "common/platform/win32/wide_text.h"

#include <cstdint>
#include <io.h>

namespace pwr::platform {

namespace {

HANDLE handleOf(std::FILE* stream) {
    const std::intptr_t number = _get_osfhandle(_fileno(stream));
    return reinterpret_cast<HANDLE>(number); // NOLINT(performance-no-int-to-ptr): the C library's form of it
}

} // namespace

bool isTerminal(std::FILE* stream) {
    DWORD mode = 0; // a printer or the null device is a character device too, but has no console mode
    return GetConsoleMode(handleOf(stream), &mode) != 0;
}

unsigned terminalWidth(std::FILE* stream) {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (GetConsoleScreenBufferInfo(handleOf(stream), &info) == 0) {
        return 0;
    }
    return static_cast<unsigned>(info.srWindow.Right - info.srWindow.Left + 1);
}

} // namespace pwr::platform
