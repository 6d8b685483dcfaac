#include "tarnwell/run.h"

#include "common/config/writer_interface_configfile_parser.h"
#include "common/machine_files.h"
#include "common/model/data_handle_provider.h"
#include "common/platform/child_process.h"
#include "common/platform/interrupt.h"
#include "common/plugin/metric_plugin.h"
#include "common/pw_utils.h"
#include "tarnwell/build_facts.h"
#include "tarnwell/collection.h"
#include "tarnwell/doctor.h"
#include "tarnwell/exit_code.h"
#include "tarnwell/feature_list.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/machine_description.h"
#include "tarnwell/message_set.h"
#include "tarnwell/plugin_set.h"
#include "tarnwell/progress_line.h"
#include "tarnwell/report.h"
#include "tarnwell/settings.h"
#include "tarnwell/terminal.h"

#include <cstdio>

namespace tarnwell {
namespace {

int fail(ExitCode code, const std::string& text) {
    std::fprintf(stderr, "tarnwell: %s\n", text.c_str());
    return toInt(code);
}

void complain(const std::vector<std::string>& problems) {
    for (const std::string& problem : problems) {
        std::fprintf(stderr, "tarnwell: %s\n", problem.c_str());
    }
}

/// The run as one object, because everything in it lives until the report is written and is torn down
/// in the reverse order of its making.
class Run {
public:
    Run(const Settings& settings, const pwr::MachineFiles& machine)
        : m_settings(settings), m_machine(machine), m_clock(machine), m_environment(settings, m_clock) {}
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() { pwr::WriterInterfaceConfigFileParser::destroy(); }

    int operator()() {
        m_plugins.load(m_environment.folder() + "plugins", pluginOptions_i());
        const FeatureList features(m_plugins.collectors());
        if (m_settings.action == Settings::Action::DOCTOR) {
            pwr::platform::installInterruptHandler();
            return runDoctor(m_settings, features, m_plugins, m_machine);
        }
        if (!m_plugins.isComplete()) {
            complain(m_plugins.problems());
            return toInt(ExitCode::FAILED);
        }
        if (const int code = choose_i(features); code != 0) {
            return code;
        }
        if (readOutputConfiguration_i() != 0) {
            return fail(ExitCode::FAILED, "the output configuration is not usable (see above)");
        }
        if (const std::string reason = prefixProblem_i(); !reason.empty()) {
            return fail(ExitCode::FAILED, reason);
        }
        return collect_i();
    }

private:
    std::vector<std::pair<std::string, std::string>> pluginOptions_i() const {
        return {{"machine", m_settings.machine}, {"color", wantsColor() ? "1" : "0"}};
    }

    /// What to collect: what was asked for, else all that the machine offers.
    int choose_i(const FeatureList& features) {
        for (const std::string& name : m_settings.features) {
            const Feature* feature = features.find(name);
            if (feature == nullptr) {
                return fail(ExitCode::USAGE,
                            "unknown feature \"" + name + "\"; there are: " + features.names(true) +
                                (features.names(false).empty() ? "" : ", " + features.names(false)));
            }
            if (feature->isAvailable) {
                m_chosen.insert(name);
            } else {
                const std::string fix = feature->fix.empty() ? "" : " (" + feature->fix + ")";
                m_missing.push_back(name + " is not available: " + feature->reason + fix);
            }
        }
        for (const Feature& feature : features.all()) {
            if (m_settings.features.empty() && feature.isAvailable) {
                m_chosen.insert(feature.name);
            } else if (m_settings.features.empty()) {
                m_absent.push_back(feature.name + " (" + feature.reason + ")");
            }
        }
        complain(m_plugins.problems());
        complain(m_missing);
        return 0;
    }

    int readOutputConfiguration_i() const {
        std::vector<std::string> files = m_settings.outputConfig;
        if (files.empty()) {
            const std::string shipped = m_environment.folder() + "config/output/*.cfg";
            files = pwr::doGlob(shipped);
            if (files.empty()) {
                complain({"there is no " + shipped + ": tables have neither titles nor order"});
            }
        }
        return pwr::WriterInterfaceConfigFileParser::instance()->parse(files);
    }

    /// Found out before hours of collecting, not after them.
    std::string prefixProblem_i() const { return outputPrefixProblem(m_settings.outputPrefix); }

    int collect_i() {
        m_environment.openStream(m_plugins.writers());
        describeMachine(m_machine, !m_clock.isRecorded() && m_settings.machine == "/", m_system);
        describeBuild(m_system);
        describeRun(m_settings, m_clock, m_system);
        pwr::DataHandleProvider::initTopology(m_system);
        if (m_messages.open(m_plugins.collectors(), m_chosen) != 0) {
            complain(m_messages.problems());
            return toInt(ExitCode::FAILED);
        }
        complain(m_messages.problems());

        std::unique_ptr<pwr::platform::ChildProcess> child;
        Collection collection(m_settings, m_clock, m_messages, m_plugins.metrics(), m_system);
        pwr::platform::installInterruptHandler();
        m_messages.announce(m_plugins.metrics(), m_system);
        if (!m_settings.command.empty()) {
            std::string reason;
            child = pwr::platform::ChildProcess::start(m_settings.command, reason);
            if (child == nullptr) {
                return fail(ExitCode::COMMAND_NOT_FOUND,
                            "cannot start " + m_settings.command.front() + ": " + reason);
            }
        }
        ProgressLine progress(!m_settings.quiet && isErrorTerminal());
        // As late as possible, so that the collection's time does not count its own preparations.
        collection.begin();
        const CollectionOutcome outcome = collection.run(child.get(), progress);
        m_messages.close();
        return end_i(outcome, child.get());
    }

    int end_i(const CollectionOutcome& outcome, pwr::platform::ChildProcess* child) {
        if (child != nullptr && outcome.wasInterrupted && !pwr::platform::isInterruptFromTerminal()) {
            child->interrupt();
        }
        // The report does not wait for a command that runs on, be it longer than asked for or deaf to Ctrl-C.
        const int written = writeReport(m_environment, m_plugins.metrics(), m_system,
                                        reportNotes(outcome, m_messages, m_absent, m_missing));
        if (const int commandCode = child == nullptr ? 0 : child->wait(); commandCode != 0) {
            return commandCode;
        }
        if (written != 0 || m_environment.hasOutputFailed()) {
            return fail(ExitCode::FAILED, "the results could not be written completely");
        }
        const bool isWhole = m_missing.empty() && m_plugins.problems().empty() &&
                             m_messages.problems().empty() && m_messages.failedReads() == 0 &&
                             m_messages.missingValues() == 0;
        return toInt(isWhole ? ExitCode::DONE : ExitCode::PARTIAL);
    }

    const Settings& m_settings;
    const pwr::MachineFiles& m_machine;
    CollectionClock m_clock;
    HostEnvironment m_environment;
    // What the plug-ins refer to outlives them.
    pwr::SystemMetadata m_system;
    MessageSet m_messages;
    PluginSet m_plugins;
    std::set<std::string> m_chosen;
    std::vector<std::string> m_missing; ///< asked for, but not to be had
    std::vector<std::string> m_absent;  ///< not asked for by name, and not on this machine
};

} // namespace

int run(const Settings& settings) {
    std::string reason;
    const std::unique_ptr<pwr::MachineFiles> machine = pwr::openMachine(settings.machine, reason);
    if (machine == nullptr) {
        return fail(ExitCode::FAILED, "cannot read the machine " + settings.machine + ": " + reason);
    }
    return Run(settings, *machine)();
}

} // namespace tarnwell
