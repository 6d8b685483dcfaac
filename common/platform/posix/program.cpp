#include "common/platform/program.h"

namespace pwr::platform {

std::vector<std::string> commandLineArguments(int argc, const char* const* argv) {
    return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

void useBinaryStreams() {}

} // namespace pwr::platform
