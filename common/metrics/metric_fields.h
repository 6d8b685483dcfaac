#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/config/table_info.h"
#include "common/metrics/metric.h"
#include "common/metrics/metric_intake.h"
#include "common/writer/table_message.h"
#include "common/writer/writer_message.h"

class WriterStream;

namespace pwr {

struct MetricTypeRules;
class WriterInterfaceConfigFileParser;

/// What a metric container keeps.
struct Metric::Fields {
    Fields(Metric& owner, const std::string& containerName, MetricType metricType,
           const SystemMetadata& systemMetadata, const Quantity* metricQuantity, std::uint32_t containerId)
        : name(containerName), quantity(metricQuantity), metadata(systemMetadata), type(metricType),
          id(containerId), intake(owner, name, systemMetadata, containerId) {}

    std::string name;
    const Quantity* quantity;
    const SystemMetadata& metadata;
    MetricType type;
    const MetricTypeRules* rules = nullptr; // null: no valid type
    std::uint32_t id;
    MetricIntake intake;
    bool isFinalized = false;
    int finalResult = 0;
    WriterStream* stream = nullptr;
    std::string containerTag;
    std::string featureTag;
    const WriterInterfaceConfigFileParser* parser = nullptr;
    std::map<std::string, TableInfo> tableInfos; // of the type's keys, as they were at construction

    std::vector<Data> finiteSet;
    const Field* valueGroup = nullptr;
    const Field* entityGroup = nullptr;
    const Field* descriptorGroup = nullptr;
    TextNotes notes;
    RealTableClass legacyType{};
    std::vector<EntityDescCombo> combinations;
    bool suppressEntityInfo = false;
    bool traceSampleEntityAttribute = false;

    // Row entities of the tables in row order; null until a table needs one.
    std::vector<const EntityHandle*> rowEntities;
    // Writers may keep pointers to tables and notes that they were given.
    std::vector<std::unique_ptr<TextNotes>> tableNotes;
    std::vector<std::unique_ptr<TableMessage>> tables;
};

/// What accumulators of this library see of a container beyond its public side.
class MetricAccess {
public:
    using Fields = Metric::Fields;

    static Fields& of(Metric& metric) { return *metric.m_fields; }
    static const Fields& of(const Metric& metric) { return *metric.m_fields; }
    static const RowTable& rowsOf(const Metric& metric) { return metric.m_fields->intake.rows(); }
    static const PendingSamples& samplesOf(const Metric& metric) { return metric.m_fields->intake.pending(); }
    /// Ticks in a millisecond; 0 when the clock's frequency is not known.
    static double ticksPerMillisecond(const Metric& metric);
};

} // namespace pwr
