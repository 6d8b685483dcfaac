#pragma once

#include <cstdint>
#include <optional>

#include "common/export.h"
#include "common/values/data.h"

namespace pwr {

class DataDescriptor;
class DynamicAttributeValueManager;
class EntityHandle;

/// One sample on its way into a Metric: whose it is, which of the entity's data it is (the descriptor, which
/// may be missing) and the value. Duration (ticks of the collection clock) and reporting descriptor are filled
/// in by Metric::setData when it accepts the sample; a rejected sample leaves them alone.
/// Use:      keep one element for each entity and descriptor, or change one for every sample, as it suits; an
///           element that stays with its entity and descriptor finds its place in the container faster.
/// Owns:     the value, nothing else. Additional information must live until the sampling point is handed on.
/// Failure:  setters return 1 after a warning and keep what was there, but for setValue.
class KRCOMMON_API DataElement {
public:
    DataElement(const EntityHandle* entity, const DataDescriptor* descriptor)
        : m_entity(entity), m_descriptor(descriptor) {}

    int setEntity(const EntityHandle* entity) {
        if (entity == nullptr) {
            return refuseEntity_i();
        }
        if (entity != m_entity) {
            m_entity = entity;
            m_container = NO_CONTAINER;
        }
        return 0;
    }
    int setDescriptor(const DataDescriptor* descriptor) {
        if (descriptor == nullptr) {
            return refuseDescriptor_i();
        }
        if (descriptor != m_descriptor) {
            m_descriptor = descriptor;
            m_container = NO_CONTAINER;
        }
        return 0;
    }
    int setAdditionalInfo(const DynamicAttributeValueManager* info);

    /// Replaces the value, whatever type the old one had. A value that is unset or invalid is refused (1) and
    /// leaves the element without one, so that an old measurement is never reported as a new one.
    int setValue(const Data& value) {
        if (!value.isSet() || !value.isValid()) {
            m_value.reset();
            return 1;
        }
        m_value = value;
        return 0;
    }

    [[nodiscard]] const EntityHandle* getEntity() const noexcept { return m_entity; }
    [[nodiscard]] const DataDescriptor* getDescriptor() const noexcept { return m_descriptor; }
    [[nodiscard]] const DynamicAttributeValueManager* getAdditionalInfo() const noexcept { return m_info; }
    /// Null, after a warning, when no value is set.
    [[nodiscard]] const Data* getValue() const;
    [[nodiscard]] std::uint64_t getDuration() const noexcept { return m_duration; }
    /// The descriptor under which the sample is reported: the element's own or, when it has none, one named
    /// after the container. Null, after a warning, before a container accepted the element.
    [[nodiscard]] const DataDescriptor* getOrvexDescriptor() const;

private:
    friend class MetricIntake;
    friend class PendingSamples;

    static int refuseEntity_i();
    static int refuseDescriptor_i();

    static constexpr std::uint32_t NO_CONTAINER = 0xFFFFFFFF;

    alignas(64) const EntityHandle* m_entity; // so that an element takes two lines of memory, not three
    const DataDescriptor* m_descriptor;
    const DynamicAttributeValueManager* m_info = nullptr;
    std::optional<Data> m_value;
    std::uint64_t m_duration = 0;
    const DataDescriptor* m_reportingDescriptor = nullptr;
    // Where the container that took this element last keeps its combination: spares the next look-up.
    std::uint32_t m_container = NO_CONTAINER;
    std::uint32_t m_row = 0;
};

} // namespace pwr
