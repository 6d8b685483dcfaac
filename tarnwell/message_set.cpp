#include "tarnwell/message_set.h"

#include "common/metadata/metadata.h"
#include "common/metadata/metric_metadata.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/reading_precision.h"

#include <algorithm>
#include <map>

namespace tarnwell {
namespace {

// The header of a reading names collector, metric and message with one byte each; 0 is "none".
constexpr unsigned kHighestId = 255;

} // namespace

MessageSet::MessageSet() = default;
MessageSet::~MessageSet() = default;

int MessageSet::open(const std::vector<CollectorPlugin*>& collectors, const std::set<std::string>& features) {
    for (CollectorPlugin* collector : collectors) {
        std::vector<std::unique_ptr<pwr::Metadata>> declarations;
        if (collector->declare(declarations) != 0) {
            m_problems.push_back(collector->getName() + ": its messages could not be declared");
            continue;
        }
        if (adopt_i(collector, std::move(declarations), features) != 0) {
            return 1;
        }
    }
    return 0;
}

/// Takes the declarations of one collector over: what belongs to a chosen feature gets the host's numbers.
int MessageSet::adopt_i(CollectorPlugin* collector, std::vector<std::unique_ptr<pwr::Metadata>> declarations,
                        const std::set<std::string>& features) {
    const unsigned collectorId = ++m_collectorCount;
    std::map<pw_u32_t, pw_u32_t> metricIds; // the collector's own numbers to ours
    std::vector<const pwr::MsgMetadata*> messages;
    for (std::unique_ptr<pwr::Metadata>& declaration : declarations) {
        auto* message = dynamic_cast<pwr::MsgMetadata*>(declaration.get());
        if (message == nullptr || features.count(message->getCapName()) == 0) {
            continue;
        }
        const auto [metric, isNew] = metricIds.try_emplace(message->getMetricID(), m_metricCount + 1);
        m_metricCount += isNew ? 1 : 0;
        message->setIDs(collectorId, metric->second, ++m_messageCount);
        messages.push_back(message);
        m_declarations.push_back(std::move(declaration));
    }
    for (std::unique_ptr<pwr::Metadata>& declaration : declarations) {
        auto* metric = dynamic_cast<pwr::MetricMetadata*>(declaration.get());
        if (metric == nullptr) {
            continue;
        }
        const auto known = metricIds.find(metric->getMetricID());
        if (known != metricIds.end()) {
            metric->setIDs(collectorId, known->second);
            m_declarations.push_back(std::move(declaration));
        }
    }
    if (collectorId > kHighestId || m_metricCount > kHighestId || m_messageCount > kHighestId) {
        m_problems.push_back("more than 255 collectors, metrics or messages: choose fewer with --feature");
        return 1;
    }
    for (const pwr::MsgMetadata* message : messages) {
        open_i(collector, *message);
    }
    return 0;
}

void MessageSet::open_i(CollectorPlugin* collector, const pwr::MsgMetadata& metadata) {
    auto message = std::make_unique<Message>();
    message->collector = collector;
    message->metadata = &metadata;
    if (collector->open(metadata, message->instances) != 0) {
        const MessageInstances& why = message->instances;
        m_failures.push_back({metadata.getCapName(), why.reason, why.fix});
        m_problems.push_back(metadata.getCapName() + ": " + why.reason +
                             (why.fix.empty() ? "" : " (" + why.fix + ")"));
        return;
    }
    m_messages.push_back(std::move(message));
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
        all.push_back({message->metadata, &message->instances});
    }
    return all;
}

const OpenFailure* MessageSet::failureOf(const std::string& feature) const {
    const bool isOpen = std::any_of(m_messages.begin(), m_messages.end(), [&](const auto& message) {
        return message->metadata->getCapName() == feature;
    });
    const auto failure = std::find_if(m_failures.begin(), m_failures.end(),
                                      [&](const OpenFailure& f) { return f.feature == feature; });
    return isOpen || failure == m_failures.end() ? nullptr : &*failure;
}

const std::vector<const CollectionData*>& MessageSet::read(const std::string& trigger) {
    m_round.clear();
    for (const std::unique_ptr<Message>& message : m_messages) {
        if (message->metadata->getTriggers().count(trigger) == 0) {
            continue;
        }
        message->data.clear();
        message->data.header().id = idOf_i(*message->metadata);
        if (message->collector->read(*message->metadata, message->data) != 0) {
            ++m_failedReads;
            continue;
        }
        pwr::dropMeaninglessDigits(message->data.header());
        count_i(message->data);
        m_round.push_back(&message->data);
    }
    return m_round;
}

void MessageSet::count_i(const CollectionData& data) {
    for (std::size_t i = 0; i < data.size(); ++i) {
        ++(data.isPresent(i) ? m_produced : m_missing);
    }
}

void MessageSet::close() {
    for (const std::unique_ptr<Message>& message : m_messages) {
        message->collector->close(*message->metadata);
    }
}

id_config_t MessageSet::idOf_i(const pwr::MsgMetadata& metadata) {
    return {static_cast<pw_u8_t>(metadata.getPluginID()), static_cast<pw_u8_t>(metadata.getMetricID()),
            static_cast<pw_u8_t>(metadata.getMsgID())};
}

} // namespace tarnwell
