#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/export.h"
#include "common/metrics/data_point.h"
#include "common/writer/table_class.h"

namespace pwr {

class Accumulator;
class Field;
class FieldDescription;
class Quantity;
class SystemMetadata;
class TableMessage;
class TextNotes;

/// An entity and one of its data.
struct EntityDescCombo {
    const EntityHandle* entity = nullptr;
    const DataDescriptor* descriptor = nullptr;
};

/// A metric container: takes the samples of one measured quantity, groups those of equal timestamps into sampling
/// points, hands each completed point to its accumulators, and has them report tables at the end.
/// Life:     made after the writer stream and the output configuration, fed with setData, ended with finalize.
/// Tables:   chosen and ordered by the output configuration's entries for feature-switch tag and container tag.
/// Units:    timestamps and durations are ticks of the collection clock.
/// Threads:  not synchronised; one thread feeds and finalises it.
/// Owns:     its accumulators. Metadata, quantity, entities and descriptors must outlive it.
/// Failure:  1 and a warning that names the container; a rejected sample changes nothing.
class KRCOMMON_API Metric {
public:
    /// The numbers are fixed; samples of the first three are taken periodically, those of the others when
    /// something happens.
    enum class MetricType : std::uint8_t {
        SampledDelta = 0,
        SampledResidency = 1,
        SampledValue = 2,
        TracedValueTransition = 3,
        TracedEvent = 4,
    };

    /// Says that no duration is given, which is not the same as 0: the latter asks for the elapsed time.
    static constexpr std::uint64_t NO_DURATION = 0xFFFFFFFFFFFFFFFF;

    /// Throws std::runtime_error when the environment has no writer stream, when no output configuration exists,
    /// and for a residency whose quantity is not Quantity::time(). A type beyond those above is an error in the
    /// log, and the container rejects every sample. The quantity may be null for the other types.
    Metric(const std::string& name, MetricType type, const std::string& metricContainerTag,
           const std::string& featureSwitchTag, const SystemMetadata& metadata, const Quantity* quantity);
    Metric(const Metric&) = delete;
    Metric& operator=(const Metric&) = delete;
    virtual ~Metric();

    /// Takes one sample: 0 when accepted, 1 when rejected. Of each entity and descriptor the timestamps must
    /// increase, and the first must not lie before the collection's begin. A duration of 0 stands for the time
    /// since the previous sample (for residencies: since the entity's previous sampling point); NO_DURATION for
    /// none. The element gets its duration and reporting descriptor.
    virtual int setData(std::uint64_t timestamp, DataElement& element, std::uint64_t duration);

    /// Completes the last sampling point and pushes all tables, once: a second call changes nothing. 1 when
    /// there was no sample or an accumulator failed. No sample is accepted afterwards.
    virtual int finalize();

    /// True until the first sample is accepted.
    virtual bool isEmpty() const;

    /// Marks the table as this container's and announces it to the writers as static information. Not owned.
    virtual int addStaticTableRowInfo(TableMessage* table);

    /// Adds a further accumulator, before the first sample only.
    int addAccumulator(std::shared_ptr<Accumulator> accumulator);

    /// Declares the values that samples can take: those of the descriptors, all of one type. They head the
    /// columns of per-value tables in this order. Another call adds to them. Only for SampledValue and
    /// TracedValueTransition; on any failure nothing is stored.
    int setFiniteSetValues(const std::vector<const DataDescriptor*>& descriptors);
    [[nodiscard]] const std::vector<Data>& getFiniteSetValues() const;

    /// Combinations to be expected, for who wants to know them; each needs an entity.
    int setEntityDescriptorCombinations(const std::vector<EntityDescCombo>& combinations);
    [[nodiscard]] const std::vector<EntityDescCombo>& getEntityDescriptorCombinations() const;

    /// Asks the writers for an over-time table of a residency. Always 0.
    int setTimelineTableToDisplay(TimelineTableType type);

    /// Names for the label columns of the tables.
    int setValueGroupInfo(const FieldDescription& description);
    int setEntityGroupInfo(const FieldDescription& description);
    int setDescriptorGroupInfo(const FieldDescription& description);
    [[nodiscard]] const Field* getValueGroupInfo() const;
    [[nodiscard]] const Field* getEntityGroupInfo() const;
    [[nodiscard]] const Field* getDescriptorGroupInfo() const;

    /// Each adds one note, which stands before or after every table of the container.
    int setPreMetricTextInfo(const std::string& note);
    int setPostMetricTextInfo(const std::string& note);
    /// Never null.
    [[nodiscard]] const TextNotes* getTextInfo() const;

    int setLegacyMetricType(RealTableClass tableClass);
    [[nodiscard]] RealTableClass getLegacyMetricType() const;
    int setSuppressEntityInfoInSummary(bool suppress);
    [[nodiscard]] bool getSuppressEntityInfoInSummary() const;
    int setTraceSampleEntityAttribute(bool trace);
    [[nodiscard]] bool getTraceSampleEntityAttribute() const;

    [[nodiscard]] const std::string& getName() const;
    [[nodiscard]] MetricType getMetricType() const;
    [[nodiscard]] const std::string& getMetricContainerTag() const;
    [[nodiscard]] const std::string& getFeatureSwitchTag() const;
    [[nodiscard]] const Quantity* getQuantity() const;
    [[nodiscard]] const SystemMetadata& getSystemMetadata() const;
    /// Numbers the containers of the process, from 0 on.
    [[nodiscard]] std::uint32_t getId() const;
    /// Entities and descriptors seen so far, each once, in the order of their first samples.
    [[nodiscard]] const std::vector<const EntityHandle*>& getEntities() const;
    [[nodiscard]] const std::vector<const DataDescriptor*>& getDescriptors() const;
    /// The timestamp of the last accepted sample, 0 before the first.
    [[nodiscard]] std::uint64_t getLatestTimestamp() const;
    /// The sampling point: complete while accumulators and writers are called, else the one being gathered.
    [[nodiscard]] const DataPoint& getData() const;

private:
    friend class MetricAccess;
    struct Fields;

    void init();

    std::unique_ptr<Fields> m_fields;
};

} // namespace pwr
