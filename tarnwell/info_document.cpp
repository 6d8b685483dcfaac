#include "tarnwell/info_document.h"

#include "common/metadata/collector_metadata.h"
#include "common/metadata/metric_metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/saved/collection_reader.h"

#include <map>

namespace tarnwell {
namespace {

using Json = nlohmann::ordered_json;
using pwr::saved::CollectionReader;

Json secondsOf(double ticks, const pwr::SystemMetadata* system) {
    if (system == nullptr || !(system->twaClockFreq > 0.0F)) {
        return nullptr;
    }
    return ticks / (static_cast<double>(system->twaClockFreq) * 1e6);
}

Json fileOf(const std::string& path, CollectionReader& reader) {
    const CollectionReader::Totals& totals = reader.totals();
    const pwr::SystemMetadata* system = reader.system();
    const bool isTimed = system != nullptr && totals.lastTick >= system->startTSC && totals.lastTick != 0;
    return {
        {"path", path},
        {"bytes", totals.bytes},
        {"format_major", totals.formatMajor},
        {"format_minor", totals.formatMinor},
        {"is_closed", reader.damage().isClosed},
        {"has_index", reader.hasIndex()},
        {"readings", totals.readings},
        {"values", totals.values},
        {"blocks", totals.blocks},
        {"last_ticks", totals.lastTick},
        {"last_seconds", isTimed ? secondsOf(static_cast<double>(totals.lastTick - system->startTSC), system)
                                 : Json(nullptr)},
    };
}

Json damageOf(CollectionReader& reader) {
    const pwr::saved::DamageReport& damage = reader.damage();
    Json stretches = Json::array();
    for (const pwr::saved::Damage& stretch : damage.stretches) {
        stretches.push_back({{"offset", stretch.offset},
                             {"length", stretch.length},
                             {"kind", stretch.kind},
                             {"reason", stretch.reason}});
    }
    return {
        {"is_whole", damage.isWhole()},
        {"lost_blocks", damage.lostBlocks},
        {"lost_ticks", damage.lostTicks},
        {"lost_seconds", secondsOf(static_cast<double>(damage.lostTicks), reader.system())},
        {"stretches", std::move(stretches)},
    };
}

Json pairsOf(const std::vector<std::pair<std::string, std::string>>& pairs) {
    Json list = Json::array();
    for (const auto& [name, value] : pairs) {
        list.push_back({{"name", name}, {"value", value}});
    }
    return list;
}

Json operationsOf(const pwr::MsgMetadata& message) {
    Json operations = Json::array();
    for (const pwr::OperationMetadata* operation : message.getMetaValues()) {
        operations.push_back({{"name", operation->getName()},
                              {"operation", operation->getOperation()},
                              {"size", operation->getSize()},
                              {"message_tag", operation->getOrgMsgTag()},
                              {"values", pairsOf(operation->getValues())}});
    }
    return operations;
}

Json messageOf(const pwr::MsgMetadata& message, std::size_t instances) {
    return {
        {"plugin_id", message.getPluginID()},
        {"metric_id", message.getMetricID()},
        {"message_id", message.getMsgID()},
        {"feature", message.getCapName()},
        {"groups", message.getCapGroups()},
        {"name", message.getMsgName()},
        {"triggers", message.getTriggers()},
        {"tracepoints", message.getTracepointNames()},
        {"instances", instances},
        {"operations", operationsOf(message)},
    };
}

/// Collectors, metrics and messages, each list in file order.
void addDeclarations(const CollectionReader& reader, Json& document) {
    std::map<id_config_t, std::size_t> instances;
    for (const pwr::saved::SavedInstances& saved : reader.instances()) {
        instances[saved.message] += saved.instances.size();
    }
    Json collectors = Json::array();
    Json metrics = Json::array();
    Json messages = Json::array();
    for (const std::unique_ptr<pwr::Metadata>& record : reader.declarations()) {
        if (const auto* collector = dynamic_cast<const pwr::CollectorMetadata*>(record.get())) {
            collectors.push_back(
                {{"name", collector->getName()}, {"values", pairsOf(collector->getValues())}});
        } else if (const auto* metric = dynamic_cast<const pwr::MetricMetadata*>(record.get())) {
            metrics.push_back({{"plugin_id", metric->getPluginID()},
                               {"metric_id", metric->getMetricID()},
                               {"values", pairsOf(metric->getValues())}});
        } else if (const auto* message = dynamic_cast<const pwr::MsgMetadata*>(record.get())) {
            const id_config_t id{static_cast<pw_u8_t>(message->getPluginID()),
                                 static_cast<pw_u8_t>(message->getMetricID()),
                                 static_cast<pw_u8_t>(message->getMsgID())};
            messages.push_back(messageOf(*message, instances[id]));
        }
    }
    document["collectors"] = std::move(collectors);
    document["metrics"] = std::move(metrics);
    document["messages"] = std::move(messages);
}

} // namespace

Json infoDocument(const std::string& path, CollectionReader& reader) {
    const pwr::SystemMetadata* system = reader.system();
    Json document = {
        {"file", fileOf(path, reader)},
        {"damage", damageOf(reader)},
        {"system", system == nullptr ? Json(nullptr) : systemDocument(*system)},
    };
    addDeclarations(reader, document);
    Json clocks = Json::array();
    for (const pwr::TWClockSync& sync : reader.clocks()) {
        clocks.push_back(clockDocument(sync));
    }
    document["clocks"] = std::move(clocks);
    Json configurations = Json::array();
    for (const auto& [name, text] : reader.configurations()) {
        configurations.push_back({{"name", name}, {"bytes", text.size()}, {"text", text}});
    }
    document["configurations"] = std::move(configurations);
    document["notes"] = reader.notes();
    return document;
}

} // namespace tarnwell
