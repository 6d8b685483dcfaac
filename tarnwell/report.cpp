#include "tarnwell/report.h"

#include "common/metadata/system_metadata.h"
#include "common/plugin/metric_plugin.h"
#include "common/pw_utils.h"
#include "common/result_file.h"
#include "common/writer/writer_message.h"
#include "common/writer/writer_stream.h"
#include "common/writer/writer_stream_host.h"
#include "tarnwell/collection.h"
#include "tarnwell/collection_clock.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/message_set.h"
#include "tarnwell/settings.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>

namespace tarnwell {
namespace {

std::string milliseconds(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f ms", value);
    return text.data();
}

std::string counted(std::uint64_t count, const std::string& thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

} // namespace

void describeRun(const Settings& settings, const CollectionClock& clock, pwr::SystemMetadata& system) {
    system.twaClockFreq = clock.source().getFrequency();
    system.pollingInterval = static_cast<pw_u16_t>(settings.intervalMs);
    system.cmdLine.push_back("tarnwell");
    // An empty argument would read back as missing.
    std::copy_if(settings.arguments.begin(), settings.arguments.end(), std::back_inserter(system.cmdLine),
                 [](const std::string& argument) { return !argument.empty(); });
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

int writeReport(HostEnvironment& environment, const std::vector<MetricPlugin*>& metrics,
                const pwr::SystemMetadata& system, const std::vector<std::string>& notes) {
    WriterStream& stream = environment.stream();
    pwr::SystemMessage message(&system);
    stream.pushMessage(message);
    for (MetricPlugin* metric : metrics) {
        metric->finalizeCollection(system.stopTSC);
    }
    for (const std::string& note : notes) {
        stream.pushTextMessage(note);
    }
    return pwr::WriterStreamHost::flush(stream);
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
