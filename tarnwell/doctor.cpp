#include "tarnwell/doctor.h"

#include "common/machine_files.h"
#include "common/metadata/system_metadata.h"
#include "common/platform/interrupt.h"
#include "tarnwell/capture.h"
#include "tarnwell/collection_clock.h"
#include "tarnwell/complaints.h"
#include "tarnwell/exit_code.h"
#include "tarnwell/feature_list.h"
#include "tarnwell/hardware_description.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/machine_description.h"
#include "tarnwell/plugin_set.h"
#include "tarnwell/settings.h"
#include "tarnwell/shared_rows.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace tarnwell {
namespace {

std::string padded(const std::string& text, std::size_t width) {
    return text + std::string(text.size() < width ? width - text.size() : 0, ' ');
}

/// The groups that features can be asked for by, each with its features.
std::string groupsOf(const FeatureList& features) {
    std::map<std::string, std::string> groups;
    std::size_t width = 0;
    for (const Feature& feature : features.all()) {
        for (const std::string& group : feature.groups) {
            if (!feature.isHidden) {
                groups[group] += (groups[group].empty() ? "" : ", ") + feature.name;
                width = std::max(width, group.size());
            }
        }
    }
    std::string text = groups.empty() ? "" : "Groups of features:\n";
    for (const auto& [group, names] : groups) {
        text.append("  ").append(padded(group, width)).append("  ").append(names).append("\n");
    }
    return text;
}

/// What this machine offers and, for what it does not, the reason and the fix.
std::string doctorReport(const FeatureList& features, const PluginSet& plugins) {
    std::size_t width = 0;
    for (const Feature& feature : features.all()) {
        if (feature.isHidden) {
            continue;
        }
        width = std::max(width, feature.name.size());
    }
    std::string text = "Features of this machine:\n";
    for (const Feature& feature : features.all()) {
        if (feature.isHidden) {
            continue;
        }
        text += "  " + padded(feature.name, width) + "  " + (feature.isAvailable ? "yes" : "no ") + "  " +
                feature.description + (feature.isOnRequest ? " (only with --feature)" : "") + "\n";
        if (!feature.isAvailable) {
            const std::string indent(width + 9, ' ');
            text += indent + "why: " + feature.reason + "\n";
            text += feature.fix.empty() ? "" : indent + "fix: " + feature.fix + "\n";
        }
    }
    text += groupsOf(features);
    for (const std::string& problem : plugins.problems()) {
        text += "Problem: " + problem + "\n";
    }
    return text;
}

int writeBundle(const Settings& settings, const pwr::MachineFiles& machine,
                const HardwareDescription& description) {
    std::string reason;
    if (captureMachine(machine, settings, description.files(), reason) != 0) {
        return fail(ExitCode::FAILED, reason);
    }
    std::printf("Wrote %s\n", settings.captureFile.c_str());
    return 0;
}

constexpr CommandOption kOptions[] = {
    {.text = {.name = "--capture",
              .description = "Also write a bundle of the machine, for tests and bug reports",
              .arg = "<file>",
              .argType = "file"},
     .apply = [](Settings& s, const std::string& v) { s.captureFile = v; }},
    {.text = {.name = "--time",
              .description = "Record for so long for the bundle [default 1 s]",
              .arg = "<seconds>",
              .abbreviation = "-t",
              .argDefault = "1",
              .argUnits = "s",
              .argType = "number"},
     .apply = [](Settings& s, const std::string& v) { s.seconds = collectionSecondsOf(v); }},
    {.text = {.name = "--interval",
              .description = "Change time between the bundle's moments [default 100 ms]",
              .arg = "<milliseconds>",
              .abbreviation = "-i",
              .argDefault = "100",
              .argUnits = "ms",
              .argType = "integer"},
     .apply = [](Settings& s, const std::string& v) { s.intervalMs = intervalOf(v); }},
    kHardwareConfigRow,
    {.text = {.name = "--machine",
              .description = "Look at this root folder or captured bundle [default /]",
              .arg = "<place>",
              .argDefault = "/",
              .argType = "file"},
     .apply = [](Settings& s, const std::string& v) { s.machine = v; }},
    kEndpointsRow,
};

} // namespace

std::span<const CommandOption> doctorOptions() {
    return kOptions;
}

int runDoctor(const Settings& settings) {
    std::string reason;
    const std::unique_ptr<pwr::MachineFiles> machine = openChosenMachine(settings, reason);
    if (machine == nullptr) {
        return fail(ExitCode::FAILED, reason);
    }
    CollectionClock clock(*machine);
    HostEnvironment environment(settings.outputPrefix);
    HostEnvironment::useClock(clock.source());
    PluginSet plugins;
    plugins.load(environment.folder() + "plugins", collectingOptions(settings));
    pwr::platform::installInterruptHandler();
    HardwareDescription description;
    pwr::SystemMetadata system;
    describeMachine(*machine, !clock.isRecorded() && settings.machine == "/", system);
    if (description.read(environment.folder(), settings.hardwareConfig) != 0 ||
        description.choose(system, plugins, settings.maxDetail) != 0) {
        return fail(ExitCode::FAILED, "the hardware description is not usable (see above)");
    }
    std::fputs(doctorReport(FeatureList(description, plugins.collectors()), plugins).c_str(), stdout);
    if (!settings.captureFile.empty()) {
        if (const int code = writeBundle(settings, *machine, description); code != 0) {
            return code;
        }
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        return fail(ExitCode::FAILED, "the list could not be written completely");
    }
    return plugins.problems().empty() ? toInt(ExitCode::DONE) : toInt(ExitCode::PARTIAL);
}

} // namespace tarnwell
