#pragma once

#include "common/config/config_cap.h"
#include "common/metadata/msg_metadata.h"
#include "common/plugin/collector_plugin.h"
#include "tarnwell/configuration_texts.h"
#include "tarnwell/feature_list.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace pwr {
class InputMsg;
class SystemMetadata;
} // namespace pwr

namespace tarnwell {

class PluginSet;

/// A message of the hardware description, and whether it can be collected here.
struct OfferedMessage {
    const pwr::InputMsg* message;             ///< the parser's
    std::unique_ptr<pwr::MsgMetadata> record; ///< without the host's numbers
    CollectorPlugin* collector = nullptr;     ///< null when its plug-in is not loaded
    MessageAvailability availability;

    bool isAvailable() const { return availability.state == MessageAvailability::State::AVAILABLE; }
};

struct OfferedFeature {
    pwr::ConfigCap capability;
    std::vector<OfferedMessage> messages;
};

/// What the files of config/hardware (and those that the user adds) say of this machine: which platform it is, what
/// can be collected on it, and by whom. The process's parser for the length of one run.
/// Needs the plug-ins to be loaded before read(), because their manifests are a part of the language.
class HardwareDescription {
public:
    HardwareDescription() = default;
    HardwareDescription(const HardwareDescription&) = delete;
    HardwareDescription& operator=(const HardwareDescription&) = delete;
    ~HardwareDescription();

    /// Reads the files shipped in @p libraryFolder and @p more behind them. 0; or 1, and what is wrong has been said.
    int read(const std::string& libraryFolder, const std::vector<std::string>& more);

    /// Chooses the platform by what is known of the machine, and asks the collectors what of it is there. 0; or 1 when
    /// a message cannot be understood, which has been said with its place.
    int choose(pwr::SystemMetadata& system, const PluginSet& plugins, bool maxDetail);

    /// "FMS=NAME,PCI=NAME" as the parser takes it; "ALL=ALL" on a machine that no platform was recognised on.
    const std::string& platforms() const { return m_platforms; }
    const std::vector<OfferedFeature>& offered() const { return m_offered; }
    /// For the user: features of which at least one message concerns this machine. Those of one name are not merged.
    /// With a collector: of its messages alone.
    std::vector<Feature> features(const CollectorPlugin* only = nullptr) const;

    /// The machine's files that the messages read, as patterns with `*`, for a record of the machine.
    std::vector<std::string> files() const;

    const ConfigurationTexts& texts() const { return m_texts; }
    /// The statements about the chosen features, to be saved with what was collected by them.
    ConfigurationTexts textsOf(const std::set<std::string>& featureNames) const;

private:
    int offer_i(const pwr::ConfigCap& capability, const PluginSet& plugins, bool maxDetail);
    int probe_i(OfferedMessage& offered, const PluginSet& plugins);
    static void dropSubstitutes_i(OfferedFeature& feature);

    ConfigurationTexts m_texts;
    std::string m_platforms;
    std::vector<OfferedFeature> m_offered;
};

/// The platforms that a machine is, by its processor, its PCI devices, its telemetry and its other properties, in the
/// form of HardwareDescription::platforms().
std::string choosePlatforms(pwr::SystemMetadata& system);

} // namespace tarnwell
