#include "tarnwell/verify.h"

#include "common/metadata/system_metadata.h"
#include "tarnwell/complaints.h"
#include "tarnwell/damage_text.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/number_words.h"
#include "tarnwell/saved_clock.h"
#include "tarnwell/saved_messages.h"
#include "tarnwell/settings.h"
#include "tarnwell/shared_rows.h"

#include <cstdio>

namespace tarnwell {
namespace {

using pwr::saved::CollectionReader;

/// Takes every reading, which is what finds damage; what the messages lack is in the returned sentences.
std::vector<std::string> readAll(CollectionReader& reader, const pwr::SystemMetadata* system) {
    if (system == nullptr) {
        CollectionData reading;
        pwr::saved::SavedInstances added;
        while (reader.next(reading, added) != CollectionReader::Event::END) {}
        return {"the record of the collection as a whole is lost: there is no report from this file"};
    }
    SavedMessages messages(reader, *system);
    CollectionData reading;
    pwr::saved::SavedInstances added;
    for (;;) {
        const CollectionReader::Event event = reader.next(reading, added);
        if (event == CollectionReader::Event::END) {
            return messages.problems();
        }
        if (event == CollectionReader::Event::INSTANCES) {
            messages.add(added);
        }
    }
}

constexpr CommandOption kOptions[] = {kSavedFileRow};

} // namespace

std::span<const CommandOption> verifyOptions() {
    return kOptions;
}

int runVerify(const Settings& settings) {
    const HostEnvironment environment(settings.outputPrefix);
    std::string reason;
    const std::unique_ptr<CollectionReader> reader = CollectionReader::open(settings.inputFile, reason);
    if (reader == nullptr) {
        return fail(ExitCode::FAILED, reason);
    }
    const std::uint64_t promised = reader->totals().readings;
    const pwr::SystemMetadata* const system = reader->system();
    const std::vector<std::string> problems = readAll(*reader, system);
    for (const pwr::saved::Damage& damage : reader->damage().stretches) {
        std::printf("Damaged: %s\n", damageLine(damage).c_str());
    }
    for (const std::string& problem : problems) {
        std::printf("Damaged: %s\n", problem.c_str());
    }
    for (const std::string& line :
         lossLines(*reader, promised, system == nullptr ? 0 : ticksPerSecondOf(*system))) {
        std::printf("%s\n", line.c_str());
    }
    const CollectionReader::Totals& totals = reader->totals();
    const bool isWhole = reader->damage().isWhole() && problems.empty();
    std::printf("%s: %s, %s in %s, %s: %s\n", settings.inputFile.c_str(), byteCount(totals.bytes).c_str(),
                counted(totals.readings, "reading").c_str(), counted(totals.blocks, "block").c_str(),
                counted(totals.values, "value").c_str(), isWhole ? "whole" : "not whole");
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        return fail(ExitCode::FAILED, "the result could not be written completely");
    }
    return toInt(isWhole ? ExitCode::DONE : ExitCode::DAMAGED);
}

} // namespace tarnwell
