#include "tarnwell/report.h"

#include "common/metadata/system_metadata.h"
#include "common/pw_utils.h"
#include "common/result_file.h"
#include "tarnwell/collection.h"
#include "tarnwell/collection_clock.h"
#include "tarnwell/message_set.h"
#include "tarnwell/number_words.h"
#include "tarnwell/settings.h"

namespace tarnwell {

void describeRun(const Settings& settings, const CollectionClock& clock, pwr::SystemMetadata& system) {
    system.twaClockFreq = clock.source().getFrequency();
    system.pollingInterval = static_cast<pw_u16_t>(settings.intervalMs);
    system.cmdLine.push_back("tarnwell");
    // What a text and a list of the record cannot hold would make all of it unreadable, and so the collection: an
    // empty argument reads back as missing, and lengths and counts have 16 bits.
    constexpr std::size_t most = 0xFFFF;
    for (const std::string& argument : settings.arguments) {
        if (!argument.empty() && system.cmdLine.size() < most) {
            system.cmdLine.push_back(argument.substr(0, most));
        }
    }
}

std::vector<std::string> reportNotes(const CollectionOutcome& outcome, const MessageSet& messages,
                                     const std::vector<std::string>& absent,
                                     const std::vector<std::string>& missing) {
    std::vector<std::string> notes;
    notes.push_back(counted(outcome.polls, "poll") + "; interval achieved: mean " +
                    milliseconds(outcome.meanIntervalMs) + ", longest " +
                    milliseconds(outcome.longestIntervalMs) +
                    "; missed ticks: " + std::to_string(outcome.missedTicks));
    if (messages.missingValues() > 0) {
        notes.push_back("Values that could not be read: " + std::to_string(messages.missingValues()) +
                        " of " + std::to_string(messages.missingValues() + messages.producedValues()));
    }
    notes.insert(notes.end(), messages.notes().begin(), messages.notes().end());
    for (const std::string& failure : messages.failures()) {
        notes.push_back("Missing: " + failure);
    }
    for (const std::string& problem : messages.problems()) {
        notes.push_back("Missing: " + problem);
    }
    for (const std::string& feature : missing) {
        notes.push_back("Missing: " + feature);
    }
    for (const std::string& feature : absent) {
        notes.push_back("Not collected: " + feature);
    }
    return notes;
}

std::string outputPrefixProblem(const std::string& prefix) {
    if (prefix.empty()) {
        return {};
    }
    if (pwr::PathOps::getFilenameFromPath(pwr::PathOps::normalizePathSeparator(prefix)).empty()) {
        return "--output " + prefix + ": names a folder; give a file name to start the result files with";
    }
    // Writing and dropping an uncommitted file is the only test that knows rights, disks and read-only mounts.
    const pwr::ResultFile probe(prefix + ".txt");
    return probe.getError().empty() ? std::string() : "--output " + prefix + ": " + probe.getError();
}

} // namespace tarnwell
