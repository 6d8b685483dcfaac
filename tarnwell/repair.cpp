#include "tarnwell/repair.h"

#include "common/platform/file.h"
#include "common/saved/collection_reader.h"
#include "tarnwell/command_options.h"
#include "tarnwell/complaints.h"
#include "tarnwell/damage_text.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/number_words.h"
#include "tarnwell/settings.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace tarnwell {

void declareRepair(CLI::App& options, Settings& settings) {
    declareSavedFile(options, settings);
    options.add_option("OUT", settings.outputFile, "the file to write; it must not exist")->required();
}

int runRepair(const Settings& settings) {
    if (pwr::platform::pathExists(settings.outputFile)) {
        return fail(ExitCode::USAGE, settings.outputFile + " exists: give the name of a new file");
    }
    const HostEnvironment environment(settings.outputPrefix);
    pwr::saved::DamageReport damage;
    std::string reason;
    if (pwr::saved::repairCollection(settings.inputFile, settings.outputFile, damage, reason) != 0) {
        return fail(ExitCode::FAILED, reason);
    }
    for (const pwr::saved::Damage& stretch : damage.stretches) {
        std::printf("Left out: %s\n", damageLine(stretch).c_str());
    }
    if (damage.lostBlocks > 0) {
        std::printf("Lost: %s\n", counted(damage.lostBlocks, "block").c_str());
    }
    if (!damage.isClosed) {
        std::printf("%s was not closed: its last second may be missing\n", settings.inputFile.c_str());
    }
    std::printf("Wrote %s%s\n", settings.outputFile.c_str(), damage.isWhole() ? ": nothing was wrong" : "");
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        return fail(ExitCode::FAILED, "the result could not be written completely");
    }
    return toInt(damage.isWhole() ? ExitCode::DONE : ExitCode::DAMAGED);
}

} // namespace tarnwell
