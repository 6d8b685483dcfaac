#include "common/platform/program.h"

#include "common/platform/win32/wide_text.h"

#include <shellapi.h>

#include <cstdio>
#include <fcntl.h>
#include <io.h>

namespace pwr::platform {

std::vector<std::string> commandLineArguments(int argc, const char* const* argv) {
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    if (words == nullptr) {
        return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
    }
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) {
        arguments.push_back(narrowText(words[i]));
    }
    LocalFree(words);
    return arguments;
}

void prepareStandardStreams() {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
}

} // namespace pwr::platform
