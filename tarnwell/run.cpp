#include "tarnwell/run.h"

#include "tarnwell/live_run.h"
#include "tarnwell/replay_run.h"
#include "tarnwell/settings.h"
#include "tarnwell/subcommand.h"

namespace tarnwell {

int run(const Settings& settings) {
    if (settings.subcommand != nullptr) {
        return settings.subcommand->run(settings);
    }
    return settings.inputFile.empty() ? collectLive(settings) : replaySaved(settings);
}

} // namespace tarnwell
