#include "plugins/writers/text/system_facts.h"

#include "common/metadata/cpu_metadata.h"
#include "common/topology/top_tree.h"

#include <charconv>
#include <chrono>

namespace text_writer {

namespace {

std::string decimal(double value, int digits) {
    char buffer[400]; // the largest double has 309 digits before the point
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, digits);
    return std::string(buffer, end.ptr);
}

std::string twoDigits(unsigned number) {
    return std::string(number < 10 ? "0" : "") + std::to_string(number);
}

/// "2026-03-01 12:30:00 UTC"
std::string momentText(pw_u64_t microseconds) {
    using namespace std::chrono;
    const sys_seconds moment{seconds(static_cast<std::int64_t>(microseconds / 1000000))};
    const sys_days day = floor<days>(moment);
    const year_month_day date{day};
    const hh_mm_ss time{moment - day};
    return std::to_string(static_cast<int>(date.year())) + "-" +
           twoDigits(static_cast<unsigned>(date.month())) + "-" +
           twoDigits(static_cast<unsigned>(date.day())) + " " +
           twoDigits(static_cast<unsigned>(time.hours().count())) + ":" +
           twoDigits(static_cast<unsigned>(time.minutes().count())) + ":" +
           twoDigits(static_cast<unsigned>(time.seconds().count())) + " UTC";
}

/// The clock's ticks are exact; the time of day may have been set while collecting.
std::string durationText(const pwr::SystemMetadata& system) {
    if (system.stopTSC > system.startTSC && system.twaClockFreq > 0.0F) {
        const auto ticks = static_cast<double>(system.stopTSC - system.startTSC);
        return decimal(ticks / (static_cast<double>(system.twaClockFreq) * 1000000.0), 3) + " s";
    }
    if (system.startTimeval != 0 && system.stopTimeval > system.startTimeval) {
        return decimal(static_cast<double>(system.stopTimeval - system.startTimeval) / 1000000.0, 3) + " s";
    }
    return std::string();
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() || word.empty() ? "" : " ") + word;
    }
    return text;
}

std::string counted(std::size_t count, const std::string& noun) {
    return count == 0 ? std::string() : std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string topologyText(const pwr::SystemMetadata& system) {
    const pwr::CPUMetadata* cpu = system.getCPUMetadata();
    if (cpu == nullptr) {
        return std::string();
    }
    const auto count = [cpu](pwr::top_node_type type) {
        return static_cast<std::size_t>(cpu->getCPUTopology().getNumNodesOfType(type));
    };
    std::string text;
    for (const std::string& part : {counted(count(pwr::top_node_type::PACKAGE), "package"),
                                    counted(count(pwr::top_node_type::CORE), "core"),
                                    counted(count(pwr::top_node_type::THREAD), "logical processor")}) {
        text += (text.empty() || part.empty() ? "" : ", ") + part;
    }
    return text;
}

} // namespace

std::vector<std::pair<std::string, std::string>> systemFacts(const pwr::SystemMetadata& system) {
    const std::string samples =
        system.producedSamples == 0 && system.droppedSamples == 0
            ? std::string()
            : std::to_string(system.producedSamples) +
                  (system.droppedSamples == 0 ? "" : ", dropped: " + std::to_string(system.droppedSamples));
    const std::pair<std::string, std::string> all[] = {
        {"Host", system.hostName},
        {"System", joined({system.osName, system.osVersion, system.osType})},
        {"Processor", system.platformName},
        {"Topology", topologyText(system)},
        {"Command", joined(system.cmdLine)},
        {"Begin", system.startTimeval == 0 ? std::string() : momentText(system.startTimeval)},
        {"Duration", durationText(system)},
        {"Interval",
         system.pollingInterval == 0 ? std::string() : std::to_string(system.pollingInterval) + " ms"},
        {"Samples", samples},
    };
    std::vector<std::pair<std::string, std::string>> known;
    for (const auto& fact : all) {
        if (!fact.second.empty()) {
            known.push_back(fact);
        }
    }
    return known;
}

} // namespace text_writer
