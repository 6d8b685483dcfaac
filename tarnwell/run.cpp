#include "tarnwell/run.h"

#include "tarnwell/complaints.h"
#include "tarnwell/live_run.h"
#include "tarnwell/print_fms.h"
#include "tarnwell/replay_run.h"
#include "tarnwell/settings.h"
#include "tarnwell/subcommand.h"

namespace tarnwell {

int run(const Settings& settings) {
    if (!settings.logFile.empty()) {
        std::string reason;
        if (openMessageLog(settings.logFile, settings.arguments, reason) != 0) {
            return fail(ExitCode::FAILED, reason);
        }
    }
    complain(settings.remarks);
    if (settings.printsFms) {
        return printFms(settings);
    }
    if (settings.subcommand != nullptr) {
        return settings.subcommand->run(settings);
    }
    return settings.inputFile.empty() ? collectLive(settings) : replaySaved(settings);
}

} // namespace tarnwell
