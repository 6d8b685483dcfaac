#include "tarnwell/repair.h"

#include "common/platform/file.h"
#include "common/saved/collection_reader.h"
#include "tarnwell/complaints.h"
#include "tarnwell/damage_text.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/number_words.h"
#include "tarnwell/settings.h"
#include "tarnwell/shared_rows.h"

#include <cstdio>

namespace tarnwell {
namespace {

constexpr CommandOption kOptions[] = {
    kSavedFileRow,
    {.text = {.name = "OUT", .description = "The file to write; it must not exist", .argType = "file"},
     .apply = [](Settings& s, const std::string& v) { s.outputFile = nameOf(v, "the file to write"); },
     .isRequired = true},
};

} // namespace

std::span<const CommandOption> repairOptions() {
    return kOptions;
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
