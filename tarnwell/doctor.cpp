#include "tarnwell/doctor.h"

#include "common/machine_bundle.h"
#include "tarnwell/capture.h"
#include "tarnwell/exit_code.h"
#include "tarnwell/feature_list.h"
#include "tarnwell/plugin_set.h"
#include "tarnwell/settings.h"

#include <algorithm>
#include <cstdio>

namespace tarnwell {
namespace {

std::string padded(const std::string& text, std::size_t width) {
    return text + std::string(text.size() < width ? width - text.size() : 0, ' ');
}

} // namespace

std::string doctorReport(const FeatureList& features, const PluginSet& plugins) {
    std::size_t width = 0;
    for (const Feature& feature : features.all()) {
        width = std::max(width, feature.name.size());
    }
    std::string text = "Features of this machine:\n";
    for (const Feature& feature : features.all()) {
        text += "  " + padded(feature.name, width) + "  " + (feature.isAvailable ? "yes" : "no ") + "  " +
                feature.description + "\n";
        if (!feature.isAvailable) {
            const std::string indent(width + 9, ' ');
            text += indent + "why: " + feature.reason + "\n";
            text += feature.fix.empty() ? "" : indent + "fix: " + feature.fix + "\n";
        }
    }
    for (const std::string& problem : plugins.problems()) {
        text += "Problem: " + problem + "\n";
    }
    return text;
}

int runDoctor(const Settings& settings, const FeatureList& features, const PluginSet& plugins,
              const pwr::MachineFiles& machine) {
    std::fputs(doctorReport(features, plugins).c_str(), stdout);
    if (!settings.captureFile.empty()) {
        std::string reason;
        if (captureMachine(machine, settings, reason) != 0) {
            std::fprintf(stderr, "tarnwell: %s\n", reason.c_str());
            return toInt(ExitCode::FAILED);
        }
        std::printf("Wrote %s\n", settings.captureFile.c_str());
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fprintf(stderr, "tarnwell: the list could not be written completely\n");
        return toInt(ExitCode::FAILED);
    }
    return plugins.problems().empty() ? toInt(ExitCode::DONE) : toInt(ExitCode::PARTIAL);
}

} // namespace tarnwell
