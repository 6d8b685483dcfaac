#include "common/platform/program.h"
#include "tarnwell/complaints.h"
#include "tarnwell/run.h"
#include "tarnwell/settings.h"

#include <cstdio>
#include <exception>

int main(int argc, char** argv) {
    pwr::platform::prepareStandardStreams();
    const tarnwell::ParsedCommandLine parsed =
        tarnwell::parseCommandLine(pwr::platform::commandLineArguments(argc, argv));
    std::fputs(parsed.output.c_str(), stdout);
    std::fputs(parsed.error.c_str(), stderr);
    if (!parsed.settings) {
        const bool isSaid = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
        return isSaid ? parsed.exitCode : 1;
    }
    try {
        return tarnwell::run(*parsed.settings);
    } catch (const std::exception& error) {
        tarnwell::complain({error.what()});
    } catch (const char* text) {
        tarnwell::complain({text});
    }
    return 1;
}
