#include "common/platform/program.h"

#include <csignal>

namespace pwr::platform {

std::vector<std::string> commandLineArguments(int argc, const char* const* argv) {
    return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

void prepareStandardStreams() {
    // A closed pipe or a file-size limit is then an error of the write, which can be reported.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace pwr::platform
