#include "tarnwell/message_set.h"

#include "common/config/input_msg.h"
#include "common/metadata/metadata.h"
#include "common/metadata/metric_metadata.h"
#include "common/metrics/metric_declaration.h"
#include "common/platform/processor_visit.h"
#include "common/plugin/collector_plugin.h"
#include "tarnwell/hardware_description.h"
#include "tarnwell/message_check.h"
#include "tarnwell/number_words.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace tarnwell {
namespace {

// The header of a reading names collector, metric and message with one byte each; 0 is "none".
constexpr unsigned kHighestId = 255;

constexpr const char* kWidth = "WIDTH";
constexpr const char* kStates = "STATES";

/// The counter's width stands with the operations, where the collector needs it; the metric needs it as well.
std::string widthOf(const pwr::MsgMetadata& message) {
    for (const pwr::OperationMetadata* operation : message.getMetaValues()) {
        for (const auto& [key, value] : operation->getValues()) {
            if (key == kWidth) {
                return value;
            }
        }
    }
    return "64";
}

/// The metric that a message's constants describe; null when they describe none.
std::unique_ptr<pwr::MetricMetadata> metricOf(const pwr::MsgMetadata& message) {
    if (!hasMetric(message)) {
        return nullptr;
    }
    pwr::MetricMetadata::ValueList values;
    for (const auto& [key, value] : constantsOf(message)) {
        if (key != kWidth && !pwr::MetricDeclaration::isForMessage(key)) {
            values.emplace_back(key, value);
        }
    }
    values.emplace_back(kWidth, widthOf(message));
    return std::make_unique<pwr::MetricMetadata>(0, 0, std::move(values));
}

/// The collector's reason; without one nothing of the message was found.
std::string reasonOf(const MessageAvailability& availability) {
    return availability.reason.empty() ? "nothing on this machine matches" : availability.reason;
}

} // namespace

MessageSet::MessageSet() = default;
MessageSet::~MessageSet() = default;

int MessageSet::open(const std::vector<CollectorPlugin*>& collectors, const HardwareDescription& description,
                     const std::set<std::string>& features, bool isLive) {
    for (CollectorPlugin* collector : collectors) {
        std::vector<Declared> declared = ownDeclarations_i(*collector);
        std::erase_if(declared,
                      [&](const Declared& d) { return features.count(d.message->getCapName()) == 0; });
        for (const OfferedFeature& feature : description.offered()) {
            for (const OfferedMessage& offered : feature.messages) {
                if (offered.collector == collector && offered.isAvailable() &&
                    features.count(feature.capability.getName()) != 0) {
                    auto record = offered.message->createMsgMetadata();
                    auto metric = metricOf(*record);
                    declared.push_back({std::move(record), std::move(metric), offered.message});
                }
            }
        }
        if (adopt_i(collector, std::move(declared), isLive) != 0) {
            return 1;
        }
    }
    noteUnserved_i(description, features);
    return 0;
}

/// A message without a plug-in is missing from a feature that otherwise works, and what the user wants to be set is
/// missed in any case.
void MessageSet::noteUnserved_i(const HardwareDescription& description,
                                const std::set<std::string>& features) {
    for (const OfferedFeature& feature : description.offered()) {
        const std::string& name = feature.capability.getName();
        for (const OfferedMessage& offered : feature.messages) {
            if (features.count(name) != 0 && (offered.collector == nullptr || !isRead(*offered.message)) &&
                offered.availability.state == MessageAvailability::State::ABSENT) {
                m_problems.push_back(name + ": message " + offered.message->getName() +
                                     " is off: " + reasonOf(offered.availability));
            }
        }
    }
}

/// What a collector brings along itself, each message with its metric.
std::vector<MessageSet::Declared> MessageSet::ownDeclarations_i(CollectorPlugin& collector) {
    std::vector<std::unique_ptr<pwr::Metadata>> declarations;
    if (collector.declare(declarations) != 0) {
        m_problems.push_back(collector.getName() + ": its messages could not be declared");
        return {};
    }
    std::map<pw_u32_t, const pwr::MetricMetadata*> metrics; // by the collector's own numbers
    std::vector<Declared> declared;
    for (std::unique_ptr<pwr::Metadata>& declaration : declarations) {
        if (const auto* metric = dynamic_cast<const pwr::MetricMetadata*>(declaration.get())) {
            metrics.emplace(metric->getMetricID(), metric);
        }
    }
    for (std::unique_ptr<pwr::Metadata>& declaration : declarations) {
        auto* message = dynamic_cast<pwr::MsgMetadata*>(declaration.get());
        if (message == nullptr) {
            continue;
        }
        static_cast<void>(declaration.release());
        Declared& made = declared.emplace_back();
        made.message.reset(message);
        const auto metric = metrics.find(message->getMetricID());
        if (metric != metrics.end()) {
            made.metric = std::make_unique<pwr::MetricMetadata>(0, 0, metric->second->getValues());
        }
    }
    return declared;
}

/// Gives the messages of one collector the host's numbers, and opens them.
int MessageSet::adopt_i(CollectorPlugin* collector, std::vector<Declared> declared, bool isLive) {
    const unsigned collectorId = ++m_collectorCount;
    std::vector<std::pair<const pwr::MsgMetadata*, const pwr::InputMsg*>> messages;
    std::vector<std::unique_ptr<pwr::Metadata>> metrics;
    for (Declared& one : declared) {
        const unsigned metricId = one.metric == nullptr ? 0 : ++m_metricCount;
        one.message->setIDs(collectorId, metricId, ++m_messageCount);
        messages.emplace_back(one.message.get(), one.input);
        m_declarations.push_back(std::move(one.message));
        if (one.metric != nullptr) {
            one.metric->setIDs(collectorId, metricId);
            metrics.push_back(std::move(one.metric));
        }
    }
    std::move(metrics.begin(), metrics.end(), std::back_inserter(m_declarations));
    if (collectorId > kHighestId || m_metricCount > kHighestId || m_messageCount > kHighestId) {
        m_problems.push_back("more than 255 collectors, metrics or messages: choose fewer with --feature");
        return 1;
    }
    for (const auto& [message, input] : messages) {
        open_i(collector, *message, input, isLive);
    }
    return 0;
}

void MessageSet::open_i(CollectorPlugin* collector, const pwr::MsgMetadata& metadata,
                        const pwr::InputMsg* input, bool isLive) {
    auto message = std::make_unique<Message>();
    message->metadata = &metadata;
    OpenMessage opened{collector, &metadata, input != nullptr && !isRead(*input) ? input : nullptr, -1};
    message->isWritten = opened.written != nullptr;
    if (input != nullptr && isLive) {
        readProcessor(*input, opened.processor);
    }
    bool isOpen = true;
    if (opened.processor >= 0 &&
        !pwr::platform::ProcessorVisit(static_cast<unsigned>(opened.processor)).isThere()) {
        message->instances.reason = "message " + metadata.getMsgName() + ": processor " +
                                    std::to_string(opened.processor) +
                                    " is not there, or not for this program";
        isOpen = false;
    } else if (!message->isWritten) {
        isOpen = collector->open(metadata, message->instances) == 0;
    }
    if (!isOpen) {
        const MessageInstances& why = message->instances;
        m_failures.push_back({metadata.getCapName(), why.reason, why.fix});
        m_problems.push_back(metadata.getCapName() + ": " + why.reason +
                             (why.fix.empty() ? "" : " (" + why.fix + ")"));
        return;
    }
    m_reader.add(opened);
    nameStates_i(metadata, message->instances.states);
    m_messages.push_back(std::move(message));
}

/// What the machine calls its states goes into the metric's record, and with that into saved files.
void MessageSet::nameStates_i(const pwr::MsgMetadata& message, const std::string& states) {
    if (states.empty()) {
        return;
    }
    for (std::unique_ptr<pwr::Metadata>& declaration : m_declarations) {
        const auto* metric = dynamic_cast<const pwr::MetricMetadata*>(declaration.get());
        if (metric != nullptr && metric->getMetricID() == message.getMetricID()) {
            pwr::MetricMetadata::ValueList values = metric->getValues();
            std::erase_if(values, [](const auto& value) { return value.first == kStates; });
            values.emplace_back(kStates, states);
            declaration = std::make_unique<pwr::MetricMetadata>(message.getPluginID(), message.getMetricID(),
                                                                std::move(values));
            return;
        }
    }
}

std::vector<const pwr::Metadata*> MessageSet::declarations() const {
    std::vector<const pwr::Metadata*> all;
    all.reserve(m_declarations.size());
    for (const std::unique_ptr<pwr::Metadata>& declaration : m_declarations) {
        all.push_back(declaration.get());
    }
    return all;
}

std::vector<AnnouncedMessage> MessageSet::announced() const {
    std::vector<AnnouncedMessage> all;
    all.reserve(m_messages.size());
    for (const std::unique_ptr<Message>& message : m_messages) {
        if (!message->isWritten) {
            all.push_back({message->metadata, &message->instances});
        }
    }
    return all;
}

std::vector<std::string> MessageSet::failures() const {
    std::vector<std::string> texts;
    for (const std::unique_ptr<Message>& message : m_messages) {
        if (message->failures > 0) {
            texts.push_back(message->metadata->getCapName() + ": message " + message->metadata->getMsgName() +
                            (message->isWritten ? " was not written" : " was not read") + " (" +
                            counted(message->failures, "time") + ")");
        }
    }
    return texts;
}

const OpenFailure* MessageSet::failureOf(const std::string& feature) const {
    const bool isOpen = std::any_of(m_messages.begin(), m_messages.end(), [&](const auto& message) {
        return message->metadata->getCapName() == feature;
    });
    const auto failure = std::find_if(m_failures.begin(), m_failures.end(),
                                      [&](const OpenFailure& f) { return f.feature == feature; });
    return isOpen || failure == m_failures.end() ? nullptr : &*failure;
}

void MessageSet::count(const CollectionData& reading) {
    for (std::size_t i = 0; i < reading.size(); ++i) {
        ++(reading.isPresent(i) ? m_produced : m_missing);
    }
}

void MessageSet::countFailures(const std::vector<std::size_t>& messages) {
    for (const std::size_t message : messages) {
        ++m_messages[message]->failures;
    }
    m_failedReads += messages.size();
}

void MessageSet::close() {
    for (const OpenMessage& message : m_reader.messages()) {
        if (message.written == nullptr) {
            message.collector->close(*message.metadata);
        }
    }
    for (const OpenMessage& message : m_reader.messages()) {
        for (std::string& note : message.collector->takeNotes()) {
            m_notes.push_back(std::move(note));
        }
    }
}

} // namespace tarnwell
