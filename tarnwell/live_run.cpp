#include "tarnwell/live_run.h"

#include "common/machine_files.h"
#include "common/metadata/system_metadata.h"
#include "common/model/data_handle_provider.h"
#include "common/platform/interrupt.h"
#include "common/platform/processor.h"
#include "common/plugin/plugin_environment.h"
#include "tarnwell/build_facts.h"
#include "tarnwell/clock_moments.h"
#include "tarnwell/collection.h"
#include "tarnwell/collection_clock.h"
#include "tarnwell/collector_record.h"
#include "tarnwell/complaints.h"
#include "tarnwell/computation.h"
#include "tarnwell/feature_list.h"
#include "tarnwell/feature_words.h"
#include "tarnwell/hardware_description.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/machine_description.h"
#include "tarnwell/message_set.h"
#include "tarnwell/number_words.h"
#include "tarnwell/output_configuration.h"
#include "tarnwell/plugin_set.h"
#include "tarnwell/progress_line.h"
#include "tarnwell/report.h"
#include "tarnwell/result_forms.h"
#include "tarnwell/saving.h"
#include "tarnwell/settings.h"
#include "tarnwell/terminal.h"
#include "tarnwell/user_command.h"

#include <cmath>

namespace tarnwell {
namespace {

/// The run as one object, because everything in it lives until the report is written and is torn down
/// in the reverse order of its making.
class LiveRun {
public:
    LiveRun(const Settings& settings, const pwr::MachineFiles& machine)
        : m_settings(settings), m_machine(machine), m_clock(machine),
          m_moments(m_clock.source(), pwr::platform::processorReport().counterMHz),
          m_environment(settings.outputPrefix) {
        HostEnvironment::useClock(m_clock.source());
    }
    LiveRun(const LiveRun&) = delete;
    LiveRun& operator=(const LiveRun&) = delete;
    ~LiveRun() = default;

    int operator()() {
        m_plugins.load(m_environment.folder() + "plugins", collectingOptions(m_settings));
        complain(m_plugins.problems());
        if (const std::string missing = m_plugins.missingKind(true); !missing.empty()) {
            return fail(ExitCode::FAILED, missing);
        }
        describeMachine(m_machine, isLive_i(), m_system);
        if (m_description.read(m_environment.folder(), m_settings.hardwareConfig) != 0 ||
            m_description.choose(m_system, m_plugins, m_settings.maxDetail) != 0) {
            return fail(ExitCode::FAILED, "the hardware description is not usable (see above)");
        }
        if (const int code = choose_i(FeatureList(m_description, m_plugins.collectors())); code != 0) {
            return code;
        }
        if (m_configuration.readFiles(m_settings.outputConfig, m_environment.folder(),
                                      m_settings.moreOutputConfig) != 0) {
            return fail(ExitCode::FAILED, "the output configuration is not usable (see above)");
        }
        if (const int code = chooseResultForms(m_settings, m_plugins); code != 0) {
            return code;
        }
        // Found out before hours of collecting, not after them.
        const std::string prefix = m_settings.reports ? g_pluginEnvironment->getResultFilePrefix() : "";
        if (const std::string reason = outputPrefixProblem(prefix); !reason.empty()) {
            return fail(ExitCode::FAILED, reason);
        }
        std::string reason;
        if (const int code = m_saving.open(m_settings, reason); code != 0) {
            complain({reason});
            return code;
        }
        return collect_i();
    }

private:
    /// What to collect: what was asked for, else all that the machine offers.
    int choose_i(const FeatureList& features) {
        for (const std::string& name : m_settings.features) {
            const std::vector<const Feature*> selected = features.select(name);
            if (const std::string reason = unservedText(name); selected.empty() && !reason.empty()) {
                m_missing.push_back(reason);
                continue;
            }
            if (selected.empty()) {
                return fail(ExitCode::USAGE,
                            "unknown feature \"" + name + "\"; there are: " + features.names(true) +
                                (features.names(false).empty() ? "" : ", " + features.names(false)));
            }
            for (const Feature* feature : selected) {
                if (feature->isAvailable) {
                    m_chosen.insert(feature->name);
                } else {
                    m_missing.push_back(unavailableText(*feature));
                }
            }
        }
        for (const Feature& feature : features.all()) {
            if (!m_settings.features.empty() || feature.isHidden || feature.isOnRequest) {
                continue;
            }
            if (feature.isAvailable) {
                m_chosen.insert(feature.name);
            } else {
                m_absent.push_back(feature.name + " (" + feature.reason + ")");
            }
        }
        complain(m_missing);
        return 0;
    }

    bool isLive_i() const { return !m_clock.isRecorded() && m_settings.machine == "/"; }

    int collect_i() {
        m_environment.openStream(m_plugins.writers());
        describeBuild(m_system);
        describeRun(m_settings, m_clock, m_system);
        pwr::DataHandleProvider::initTopology(m_system);
        const int opened = m_messages.open(m_plugins.collectors(), m_description, m_chosen, isLive_i());
        complain(m_messages.problems());
        if (opened != 0) {
            return toInt(ExitCode::FAILED);
        }
        const auto unknown = m_plugins.missingMetricPlugins(m_messages.declarations());
        complain(unknown);
        m_missing.insert(m_missing.end(), unknown.begin(), unknown.end());
        Collection collection(m_settings,
                              {m_clock, m_moments, m_messages, m_saving, m_computation, m_system});
        if (std::string problem; collection.start(problem) != 0) {
            return fail(ExitCode::FAILED, problem);
        }
        pwr::platform::installInterruptHandler();
        announce_i();
        if (!waitForStart_i(collection)) {
            return fail(ExitCode::FAILED, "interrupted before the collection began");
        }
        UserCommand command(m_settings.command, m_settings.commandDelaySeconds);
        if (!command.startNow()) {
            return toInt(ExitCode::COMMAND_NOT_FOUND);
        }
        ProgressLine progress(!m_settings.quiet && isErrorTerminal());
        collection.initialize();
        // As late as possible, so that the collection's time does not count its own preparations.
        collection.begin();
        const CollectionOutcome outcome = collection.run(command, progress);
        m_messages.close();
        return end_i(outcome, command);
    }

    /// Lets the time pass that was asked for in front of the collection. False when the user did not want to wait.
    bool waitForStart_i(Collection& collection) const {
        const double ticks = m_settings.startDelaySeconds * m_clock.ticksPerSecond();
        const std::uint64_t begin = m_clock.now() + static_cast<std::uint64_t>(std::llround(ticks));
        if (ticks > 0 && !m_settings.quiet && isErrorTerminal()) {
            say("The collection begins in " + seconds(m_settings.startDelaySeconds));
        }
        return collection.waitUntil(begin);
    }

    /// The file gets the same declarations in the same order as the metric plug-ins.
    void announce_i() {
        m_records = collectorRecords(m_plugins, m_description, m_messages, m_clock.source().getUUID());
        std::vector<const pwr::Metadata*> declarations;
        for (const auto& record : m_records) {
            declarations.push_back(record.get());
        }
        const auto own = m_messages.declarations();
        declarations.insert(declarations.end(), own.begin(), own.end());
        const auto messages = m_messages.announced();
        ConfigurationTexts texts = m_configuration.texts();
        for (auto& text : m_description.textsOf(m_chosen)) {
            texts.push_back(std::move(text));
        }
        m_saving.describe(texts, declarations, messages, m_system);
        m_computation.announce(declarations, messages, m_system);
    }

    int end_i(const CollectionOutcome& outcome, UserCommand& command) {
        pwr::platform::ChildProcess* const child = command.process();
        if (child != nullptr && outcome.wasInterrupted && !pwr::platform::isInterruptFromTerminal()) {
            child->interrupt();
        }
        const auto notes = reportNotes(outcome, m_messages, m_absent, m_missing);
        m_saving.end(m_system, m_moments.take(), notes);
        // The report does not wait for a command that runs on, be it longer than asked for or deaf to Ctrl-C.
        const int written = m_computation.report(m_system, notes);
        if (const std::string saved = m_saving.summary(); !saved.empty() && !m_settings.quiet) {
            say(saved);
        }
        if (command.hasFailed()) {
            return toInt(ExitCode::COMMAND_NOT_FOUND);
        }
        if (const int commandCode = child == nullptr ? 0 : child->wait(); commandCode != 0) {
            return commandCode;
        }
        return exitCode_i(written == 0 && !m_environment.hasOutputFailed());
    }

    int exitCode_i(bool isWritten) const {
        if (!isWritten) {
            return fail(ExitCode::FAILED, "the results could not be written completely");
        }
        if (m_saving.hasFailed()) {
            return fail(ExitCode::FAILED, "the collection was not saved completely (see above)");
        }
        if (m_computation.isSliceEmpty()) {
            return fail(ExitCode::PARTIAL, "--result-slice-range: no reading is in it");
        }
        const bool isWhole = m_missing.empty() && m_plugins.problems().empty() &&
                             m_messages.problems().empty() && m_messages.failedReads() == 0 &&
                             m_messages.missingValues() == 0;
        return toInt(isWhole ? ExitCode::DONE : ExitCode::PARTIAL);
    }

    const Settings& m_settings;
    const pwr::MachineFiles& m_machine;
    CollectionClock m_clock;
    ClockMoments m_moments; ///< early, since it measures clocks from its making on
    HostEnvironment m_environment;
    OutputConfiguration m_configuration;
    HardwareDescription m_description;
    // What the plug-ins refer to outlives them.
    pwr::SystemMetadata m_system;
    std::vector<std::unique_ptr<pwr::CollectorMetadata>> m_records;
    MessageSet m_messages;
    PluginSet m_plugins;
    Saving m_saving;
    Computation m_computation{m_environment, m_plugins.metrics(), m_settings};
    std::set<std::string> m_chosen;
    std::vector<std::string> m_missing; ///< asked for, but not to be had
    std::vector<std::string> m_absent;  ///< not asked for by name, and not on this machine
};

} // namespace

int collectLive(const Settings& settings) {
    std::string reason;
    const std::unique_ptr<pwr::MachineFiles> machine = openChosenMachine(settings, reason);
    if (machine == nullptr) {
        return fail(ExitCode::FAILED, reason);
    }
    return LiveRun(settings, *machine)();
}

} // namespace tarnwell
