#include "common/metrics/metric_fields.h"
#include "common/model/field.h"

// What a container is told and tells about itself; none of it changes what the intake does.
namespace pwr {

int Metric::setValueGroupInfo(const FieldDescription& description) {
    m_fields->valueGroup = Field::create(description);
    return 0;
}

int Metric::setEntityGroupInfo(const FieldDescription& description) {
    m_fields->entityGroup = Field::create(description);
    return 0;
}

int Metric::setDescriptorGroupInfo(const FieldDescription& description) {
    m_fields->descriptorGroup = Field::create(description);
    return 0;
}

const Field* Metric::getValueGroupInfo() const {
    return m_fields->valueGroup;
}

const Field* Metric::getEntityGroupInfo() const {
    return m_fields->entityGroup;
}

const Field* Metric::getDescriptorGroupInfo() const {
    return m_fields->descriptorGroup;
}

int Metric::setPreMetricTextInfo(const std::string& note) {
    return m_fields->notes.addPreTableNote(note);
}

int Metric::setPostMetricTextInfo(const std::string& note) {
    return m_fields->notes.addPostTableNote(note);
}

const TextNotes* Metric::getTextInfo() const {
    return &m_fields->notes;
}

int Metric::setLegacyMetricType(RealTableClass tableClass) {
    m_fields->legacyType = tableClass;
    return 0;
}

RealTableClass Metric::getLegacyMetricType() const {
    return m_fields->legacyType;
}

int Metric::setSuppressEntityInfoInSummary(bool suppress) {
    m_fields->suppressEntityInfo = suppress;
    return 0;
}

bool Metric::getSuppressEntityInfoInSummary() const {
    return m_fields->suppressEntityInfo;
}

int Metric::setTraceSampleEntityAttribute(bool trace) {
    m_fields->traceSampleEntityAttribute = trace;
    return 0;
}

bool Metric::getTraceSampleEntityAttribute() const {
    return m_fields->traceSampleEntityAttribute;
}

const std::vector<Data>& Metric::getFiniteSetValues() const {
    return m_fields->finiteSet;
}

const std::vector<EntityDescCombo>& Metric::getEntityDescriptorCombinations() const {
    return m_fields->combinations;
}

const std::string& Metric::getName() const {
    return m_fields->name;
}

Metric::MetricType Metric::getMetricType() const {
    return m_fields->type;
}

const std::string& Metric::getMetricContainerTag() const {
    return m_fields->containerTag;
}

const std::string& Metric::getFeatureSwitchTag() const {
    return m_fields->featureTag;
}

const Quantity* Metric::getQuantity() const {
    return m_fields->quantity;
}

const SystemMetadata& Metric::getSystemMetadata() const {
    return m_fields->metadata;
}

std::uint32_t Metric::getId() const {
    return m_fields->id;
}

const std::vector<const EntityHandle*>& Metric::getEntities() const {
    return m_fields->intake.rows().entities();
}

const std::vector<const DataDescriptor*>& Metric::getDescriptors() const {
    return m_fields->intake.rows().descriptors();
}

std::uint64_t Metric::getLatestTimestamp() const {
    return m_fields->intake.latestTimestamp();
}

const DataPoint& Metric::getData() const {
    return m_fields->intake.point();
}

} // namespace pwr
