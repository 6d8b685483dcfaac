#include "tarnwell/replay_run.h"

#include "common/metadata/collector_metadata.h"
#include "common/metadata/metric_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/plugin/metric_plugin.h"
#include "common/plugin/plugin_environment.h"
#include "common/saved/collection_reader.h"
#include "tarnwell/complaints.h"
#include "tarnwell/computation.h"
#include "tarnwell/damage_text.h"
#include "tarnwell/feature_list.h"
#include "tarnwell/feature_words.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/output_configuration.h"
#include "tarnwell/plugin_set.h"
#include "tarnwell/progress_line.h"
#include "tarnwell/report.h"
#include "tarnwell/result_forms.h"
#include "tarnwell/saved_clock.h"
#include "tarnwell/saved_messages.h"
#include "tarnwell/settings.h"
#include "tarnwell/terminal.h"

#include <algorithm>
#include <bitset>

namespace tarnwell {
namespace {

using pwr::saved::CollectionReader;

constexpr std::uint64_t kReadingsBetweenLooks = 4096;
constexpr std::size_t kMostDamageNotes = 20;

/// Whether a message belongs to the feature, or to a feature of the group, that a name asks for.
bool isNamed(const pwr::MsgMetadata& message, const std::string& name) {
    return message.getCapName() == name || message.getCapGroups().count(name) != 0;
}

/// The counterpart of the live run: the same computation, fed from a file.
class ReplayRun {
public:
    ReplayRun(const Settings& settings, CollectionReader& reader, pwr::SystemMetadata& system,
              HostEnvironment& environment)
        : m_settings(settings), m_reader(reader), m_system(system), m_environment(environment),
          m_messages(reader, system), m_promised(reader.totals().readings) {}
    ReplayRun(const ReplayRun&) = delete;
    ReplayRun& operator=(const ReplayRun&) = delete;
    ~ReplayRun() = default;

    int operator()() {
        m_plugins.load(m_environment.folder() + "plugins", reportingOptions());
        complain(m_plugins.problems());
        if (const std::string missing = m_plugins.missingKind(false); !missing.empty()) {
            return fail(ExitCode::FAILED, missing);
        }
        if (const int code = choose_i(); code != 0) {
            return code;
        }
        if (readOutputConfiguration_i() != 0) {
            return fail(ExitCode::FAILED, "the output configuration is not usable (see above)");
        }
        if (const int code = chooseResultForms(m_settings, m_plugins); code != 0) {
            return code;
        }
        if (const std::string reason = outputPrefixProblem(g_pluginEnvironment->getResultFilePrefix());
            !reason.empty()) {
            return fail(ExitCode::FAILED, reason);
        }
        m_environment.openStream(m_plugins.writers());
        announce_i();
        replay_i();
        return end_i();
    }

private:
    /// What to report: what was asked for, else all that the file holds.
    int choose_i() {
        std::vector<const pwr::CollectorMetadata*> records;
        for (const auto& declaration : m_reader.declarations()) {
            if (const auto* record = dynamic_cast<const pwr::CollectorMetadata*>(declaration.get())) {
                records.push_back(record);
            }
        }
        const FeatureList features(records);
        const auto messages = m_messages.all();
        for (const std::string& name : m_settings.features) {
            const bool isHeld = std::any_of(messages.begin(), messages.end(), [&](const auto* message) {
                return isNamed(*message->metadata, name);
            });
            if (isHeld) {
                continue;
            }
            const std::vector<const Feature*> selected = features.select(name);
            if (const std::string reason = unservedText(name); selected.empty() && !reason.empty()) {
                m_missing.push_back(reason);
                continue;
            }
            if (selected.empty()) {
                return fail(ExitCode::USAGE,
                            "unknown feature \"" + name +
                                "\"; the collecting machine offered: " + features.names(true));
            }
            for (const Feature* feature : selected) {
                m_missing.push_back(feature->isAvailable ? feature->name + " was not collected"
                                                         : unavailableText(*feature));
            }
        }
        return 0;
    }

    int readOutputConfiguration_i() {
        const auto& more = m_settings.moreOutputConfig;
        if (m_settings.outputConfig.empty() && !m_reader.configurations().empty()) {
            return m_configuration.readTexts(m_reader.configurations(), more);
        }
        return m_configuration.readFiles(m_settings.outputConfig, m_environment.folder(), more);
    }

    bool isChosen_i(const pwr::MsgMetadata& message) const {
        const auto& names = m_settings.features;
        return names.empty() || std::any_of(names.begin(), names.end(),
                                            [&](const std::string& name) { return isNamed(message, name); });
    }

    /// Everything is declared, also what was not chosen: a declaration without instances gives no table.
    void announce_i() {
        std::vector<const pwr::Metadata*> declarations;
        for (const auto& declaration : m_reader.declarations()) {
            declarations.push_back(declaration.get());
        }
        for (std::string& note : m_plugins.missingMetricPlugins(declarations)) {
            m_missing.push_back(std::move(note));
        }
        std::vector<AnnouncedMessage> chosen;
        for (const SavedMessages::Message* message : m_messages.all()) {
            if (isChosen_i(*message->metadata)) {
                chosen.push_back({message->metadata, &message->instances});
                m_isUsed.set(message->metadata->getMsgID());
            }
        }
        m_computation.announce(declarations, chosen, m_system);
        complain(m_missing);
    }

    void replay_i() {
        ProgressLine progress(!m_settings.quiet && isErrorTerminal());
        const pwr::TWQPCClock watch;
        const pw_u64_t begin = watch.getTimestamp();
        const double ticksPerSecond = static_cast<double>(watch.getFrequency()) * 1e6;
        CollectionData reading;
        pwr::saved::SavedInstances added;
        for (std::uint64_t count = 1;; ++count) {
            const CollectionReader::Event event = m_reader.next(reading, added);
            if (event == CollectionReader::Event::END) {
                return;
            }
            if (event == CollectionReader::Event::INSTANCES) {
                addInstances_i(added);
            } else if (m_isUsed.test(reading.header().id.message)) {
                m_computation.process(reading);
            }
            if (progress.isEnabled() && count % kReadingsBetweenLooks == 0) {
                progress.showReading(static_cast<double>(watch.getTimestamp() - begin) / ticksPerSecond,
                                     m_reader.bytesRead(), m_reader.totals().bytes);
            }
        }
    }

    void addInstances_i(const pwr::saved::SavedInstances& added) {
        const SavedMessages::Message* message = m_messages.add(added);
        if (message != nullptr && isChosen_i(*message->metadata)) {
            m_isUsed.set(message->metadata->getMsgID());
            m_computation.announceMore({message->metadata, &message->instances});
        }
    }

    std::vector<std::string> notes_i() const {
        std::vector<std::string> notes = m_reader.notes();
        for (const std::string& missing : m_missing) {
            notes.push_back("Missing: " + missing);
        }
        const auto& stretches = m_reader.damage().stretches;
        const std::size_t shown = std::min(stretches.size(), kMostDamageNotes);
        for (std::size_t i = 0; i < shown; ++i) {
            notes.push_back("Damaged: " + damageLine(stretches[i]));
        }
        if (shown < stretches.size()) {
            notes.push_back("Damaged: " + std::to_string(stretches.size() - shown) +
                            " more; tarnwell verify names them all");
        }
        for (const std::string& problem : m_messages.problems()) {
            notes.push_back("Damaged: " + problem);
        }
        const auto losses = lossLines(m_reader, m_promised, ticksPerSecondOf(m_system));
        notes.insert(notes.end(), losses.begin(), losses.end());
        return notes;
    }

    int end_i() {
        const int written = m_computation.report(m_system, notes_i());
        if (written != 0 || m_environment.hasOutputFailed()) {
            return fail(ExitCode::FAILED, "the results could not be written completely");
        }
        if (!m_reader.damage().isWhole() || !m_messages.problems().empty()) {
            return fail(ExitCode::DAMAGED,
                        m_settings.inputFile +
                            " is damaged or was not closed: the end of the report says what is missing");
        }
        if (m_computation.isSliceEmpty()) {
            return fail(ExitCode::PARTIAL, "--result-slice-range: no reading is in it");
        }
        return toInt(m_missing.empty() && m_plugins.problems().empty() ? ExitCode::DONE : ExitCode::PARTIAL);
    }

    const Settings& m_settings;
    CollectionReader& m_reader;
    pwr::SystemMetadata& m_system;
    HostEnvironment& m_environment;
    OutputConfiguration m_configuration;
    // What the plug-ins refer to outlives them.
    SavedMessages m_messages;
    PluginSet m_plugins;
    Computation m_computation{m_environment, m_plugins.metrics(), m_settings};
    std::uint64_t m_promised;
    std::bitset<256> m_isUsed;          ///< by message number
    std::vector<std::string> m_missing; ///< asked for, but not to be had
};

} // namespace

int replaySaved(const Settings& settings) {
    HostEnvironment environment(settings.outputPrefix);
    std::string reason;
    const std::unique_ptr<CollectionReader> reader = CollectionReader::open(settings.inputFile, reason);
    if (reader == nullptr) {
        return fail(ExitCode::FAILED, reason);
    }
    pwr::SystemMetadata* const system = reader->system();
    if (system == nullptr) {
        return fail(ExitCode::DAMAGED, settings.inputFile +
                                           " has lost what it said of the collection as a whole, "
                                           "without which there is no report; see tarnwell verify");
    }
    const std::unique_ptr<ToldClock> clock = savedClock(*reader, *system, reason);
    if (clock == nullptr) {
        return fail(ExitCode::FAILED, settings.inputFile + ": " + reason);
    }
    HostEnvironment::useClock(*clock);
    return ReplayRun(settings, *reader, *system, environment)();
}

} // namespace tarnwell
