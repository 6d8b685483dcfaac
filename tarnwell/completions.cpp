#include "tarnwell/completions.h"

#include "tarnwell/completion_scripts.h"
#include "tarnwell/program_options.h"
#include "tarnwell/settings.h"
#include "tarnwell/standard_output.h"

#include <algorithm>
#include <array>

namespace tarnwell {
namespace {

struct Shell {
    const char* name;
    std::string (*script)(const ProgramOptions& options);
};

constexpr std::array kShells = {
    Shell{"bash", bashCompletions},
    Shell{"zsh", zshCompletions},
    Shell{"fish", fishCompletions},
};

const Shell* findShell(const std::string& name) {
    const auto* const shell =
        std::find_if(kShells.begin(), kShells.end(), [&](const Shell& s) { return s.name == name; });
    return shell == kShells.end() ? nullptr : shell;
}

constexpr CommandOption kOptions[] = {
    {.text = {.name = "SHELL",
              .description = "The shell that is to read the script",
              .argType = "word",
              .validArgs = "bash,zsh,fish"},
     .apply =
         [](Settings& s, const std::string& v) {
             if (findShell(v) == nullptr) {
                 throw BadValue{"bash, zsh or fish"};
             }
             s.shell = v;
         },
     .isRequired = true},
};

} // namespace

std::span<const CommandOption> completionsOptions() {
    return kOptions;
}

int runCompletions(const Settings& settings) {
    return printWhole(findShell(settings.shell)->script(ProgramOptions()));
}

} // namespace tarnwell
