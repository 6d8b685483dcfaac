#include "tarnwell/hardware_description.h"

#include "common/config/config_lint.h"
#include "common/config/input_msg.h"
#include "common/config/statement.h"
#include "common/config/tw_configfile_parser.h"
#include "common/pw_utils.h"
#include "tarnwell/complaints.h"
#include "tarnwell/hardware_texts.h"
#include "tarnwell/message_check.h"
#include "tarnwell/plugin_set.h"

#include <algorithm>
#include <array>

namespace tarnwell {
namespace {

using State = MessageAvailability::State;

constexpr std::array<const char*, 5> kMoments = {"INIT", "BEGIN", "POLL", "END", "FINI"};

/// Whether nothing but events carries a message out.
bool isTraced(const pwr::InputMsg& message) {
    return !message.getTracepointNames().empty() &&
           std::none_of(kMoments.begin(), kMoments.end(),
                        [&](const char* moment) { return message.getTriggers().count(moment) != 0; });
}

/// When a message is carried out, or what makes its source record by itself.
bool hasMoment(const pwr::InputMsg& message, const CollectorPlugin& collector) {
    return (!message.getTracepointNames().empty() && collector.recordsByItself()) ||
           std::any_of(kMoments.begin(), kMoments.end(),
                       [&](const char* moment) { return message.getTriggers().count(moment) != 0; });
}

std::string joined(const pwr::PWSet& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text.empty() ? "none" : text;
}

/// The collector type of a message; "" when it has nothing but constants.
std::string typeOf(const pwr::InputMsg& message) {
    for (const pwr::Operation* operation : message) {
        if (!operation->getCollectorType().empty()) {
            return operation->getCollectorType();
        }
    }
    return {};
}

/// A message by its name and the keys of its first operation.
std::string wordsOf(const pwr::MsgMetadata& record) {
    std::string text = record.getMsgName();
    if (!record.getMetaValues().empty()) {
        for (const auto& [key, value] : record.getMetaValues().front()->getValues()) {
            text.append(", ").append(key).append("=").append(value);
        }
    }
    return text;
}

/// Why nothing of a feature is there: what a collector knows goes before what the description supposes.
void explain(const std::vector<const OfferedMessage*>& messages, Feature& feature) {
    for (const OfferedMessage* offered : messages) {
        if (!offered->availability.reason.empty()) {
            feature.reason = offered->availability.reason;
            feature.fix = offered->availability.fix;
            return;
        }
    }
    for (const OfferedMessage* offered : messages) {
        feature.reason = constantOf(*offered->record, "ABSENT-REASON");
        feature.fix = constantOf(*offered->record, "ABSENT-FIX");
        if (!feature.reason.empty()) {
            return;
        }
    }
    feature.reason = "nothing on this machine matches message " + wordsOf(*messages.front()->record);
}

} // namespace

HardwareDescription::~HardwareDescription() {
    m_offered.clear();
    pwr::TWConfigFileParser::destroy();
}

int HardwareDescription::read(const std::string& libraryFolder, const std::vector<std::string>& more) {
    std::vector<std::string> files = shippedFiles(libraryFolder, "hardware", "nothing is known to collect");
    files.insert(files.end(), more.begin(), more.end());
    for (const std::string& file : files) {
        if (pwr::tw_dirExists(file)) {
            complain({file + " is a folder: name the files in it"});
        }
        m_texts.push_back(namedText(file));
    }
    return pwr::TWConfigFileParser::instance()->parse(files);
}

int HardwareDescription::choose(pwr::SystemMetadata& system, const PluginSet& plugins, bool maxDetail) {
    m_platforms = choosePlatforms(system);
    m_offered.clear();
    std::vector<pwr::ConfigCap> capabilities;
    if (pwr::TWConfigFileParser::instance()->getCapabilitiesFor(capabilities, m_platforms) != 0) {
        return 1;
    }
    int result = 0;
    // What several platforms call the same is one feature, however else they describe it.
    std::set<std::pair<std::string, std::string>> known;
    for (const pwr::ConfigCap& capability : capabilities) {
        if (known.emplace(capability.getConfigfilePrefix(), capability.getName()).second) {
            result |= offer_i(capability, plugins, maxDetail);
        }
    }
    return result;
}

int HardwareDescription::offer_i(const pwr::ConfigCap& capability, const PluginSet& plugins, bool maxDetail) {
    std::vector<pwr::InputMsg*> messages;
    if (pwr::TWConfigFileParser::instance()->getMessagesFor(
            messages, m_platforms, capability.getConfigfilePrefix(), maxDetail) != 0) {
        return 1;
    }
    std::erase_if(messages, [&](const pwr::InputMsg* message) {
        return message->getFeatureName() != capability.getName();
    });
    OfferedFeature feature{capability, {}};
    int result = 0;
    for (const pwr::InputMsg* message : messages) {
        OfferedMessage offered{message, message->createMsgMetadata(), nullptr, {}};
        for (const std::string& complaint : complaintsOf(*message, *offered.record, messages)) {
            complain({StatementPlaces(m_texts).find(*message, complaint) + ": message " + message->getName() +
                      ": " + complaint});
            result = 1;
        }
        result |= probe_i(offered, plugins);
        feature.messages.push_back(std::move(offered));
    }
    dropSubstitutes_i(feature);
    m_offered.push_back(std::move(feature));
    return result;
}

/// Asks the collector whether the message's work is there.
int HardwareDescription::probe_i(OfferedMessage& offered, const PluginSet& plugins) {
    const pwr::InputMsg& message = *offered.message;
    const std::string type = typeOf(message);
    const std::vector<std::string> unsavable = pwr::listUnsavable(*offered.record);
    MessageAvailability& availability = offered.availability;
    offered.collector = pwr::TWConfigFileParser::instance()->getCollector(type);
    if (type.empty()) {
        availability.state = State::NOT_HERE; // nothing to carry out: the parser has warned of it
    } else if (offered.collector == nullptr) {
        availability = plugins.whyNotServed(type);
    } else if (!hasMoment(message, *offered.collector)) {
        availability = {State::ABSENT,
                        "message " + message.getName() + ": nothing carries it out at its triggers (" +
                            joined(message.getTriggers()) + ")",
                        offered.collector->recordsByItself() ? "use TRACEPOINT=NAME"
                                                             : "use INIT, BEGIN, POLL, END or FINI"};
    } else if (!unsavable.empty()) {
        availability = {State::ABSENT, "message " + message.getName() + ": " + unsavable.front(),
                        "make several messages of it"};
    } else {
        availability = isRead(message) ? offered.collector->probe(*offered.record)
                                       : offered.collector->probeWrite(*offered.record);
    }
    if (availability.state != State::INVALID) {
        return 0;
    }
    complain({StatementPlaces(m_texts).find(message, availability.reason) + ": " + availability.reason});
    return 1;
}

/// A message with INSTEAD-OF is wanted only where none of those that it names is there.
void HardwareDescription::dropSubstitutes_i(OfferedFeature& feature) {
    std::vector<OfferedMessage*> dropped;
    for (OfferedMessage& offered : feature.messages) {
        const std::string names = constantOf(*offered.record, "INSTEAD-OF");
        pwr::ListItems items(names);
        for (std::string_view item; items.next(item);) {
            const bool isThere = std::any_of(
                feature.messages.begin(), feature.messages.end(), [&](const OfferedMessage& other) {
                    return &other != &offered && other.message->getName() == item && other.isAvailable();
                });
            if (isThere) {
                dropped.push_back(&offered);
            }
        }
    }
    for (OfferedMessage* offered : dropped) {
        offered->availability = {State::NOT_HERE, {}, {}};
    }
}

std::vector<Feature> HardwareDescription::features(const CollectorPlugin* only) const {
    std::vector<Feature> all;
    for (const OfferedFeature& offered : m_offered) {
        std::vector<const OfferedMessage*> messages;
        Feature feature;
        for (const OfferedMessage& message : offered.messages) {
            if (message.availability.state != State::NOT_HERE &&
                (only == nullptr || message.collector == only)) {
                messages.push_back(&message);
                feature.isAvailable = feature.isAvailable || message.isAvailable();
            }
        }
        if (messages.empty()) {
            continue;
        }
        feature.name = offered.capability.getName();
        feature.description = offered.capability.getDescription();
        feature.isHidden = offered.capability.isHidden();
        feature.groups.insert(offered.capability.getGroups().begin(), offered.capability.getGroups().end());
        feature.isOnRequest =
            std::all_of(messages.begin(), messages.end(),
                        [](const OfferedMessage* message) { return isTraced(*message->message); });
        if (!feature.isAvailable) {
            explain(messages, feature);
        }
        all.push_back(std::move(feature));
    }
    return all;
}

std::vector<std::string> HardwareDescription::files() const {
    std::vector<std::string> files;
    for (const OfferedFeature& feature : m_offered) {
        for (const OfferedMessage& offered : feature.messages) {
            if (offered.collector != nullptr && isRead(*offered.message)) {
                const std::vector<std::string> more = offered.collector->getFiles(*offered.record);
                files.insert(files.end(), more.begin(), more.end());
            }
        }
    }
    return files;
}

ConfigurationTexts HardwareDescription::textsOf(const std::set<std::string>& featureNames) const {
    std::set<std::string> prefixes;
    for (const OfferedFeature& offered : m_offered) {
        if (featureNames.count(offered.capability.getName()) != 0) {
            prefixes.insert(offered.capability.getConfigfilePrefix());
        }
    }
    std::set<std::string> platforms = {"ALL"};
    pwr::ListItems items(m_platforms);
    for (std::string_view item; items.next(item);) {
        // A hyphen means descent: the ancestors' statements are used as well.
        std::string_view name = item.substr(item.find('=') + 1);
        for (std::size_t end = name.size(); end != std::string_view::npos && end > 0;
             end = name.rfind('-', end - 1)) {
            platforms.emplace(name.substr(0, end));
        }
    }
    return usedStatements(m_texts, platforms, prefixes);
}

} // namespace tarnwell
