#pragma once

#include <string>
#include <utility>
#include <vector>

#include "common/export.h"
#include "common/model/data_handle.h"
#include "common/model/description.h"
#include "common/values/data.h"

namespace pwr {

class Quantity;

/// Describes a property that entities or samples can have, with the type of its values.
/// The quantity (null when the values measure nothing) is not owned.
class KRCOMMON_API AttributeDescription : public Description {
public:
    AttributeDescription(const std::string& name, const std::string& shortName, DataType dataType,
                         const Quantity* quantity = nullptr);

    [[nodiscard]] DataType getDataType() const noexcept { return m_dataType; }
    [[nodiscard]] const Quantity* getQuantity() const noexcept { return m_quantity; }

private:
    DataType m_dataType;
    const Quantity* m_quantity;
};

/// A property of entities or samples, such as a core's kind; its values are kept by an AttributeValueManager.
class KRCOMMON_API Attribute : public DataHandle {
public:
    /// Registers a new attribute, which lives for the process.
    static const Attribute* create(const AttributeDescription& description);

    [[nodiscard]] DataType getDataType() const noexcept { return m_dataType; }
    [[nodiscard]] const Quantity* getQuantity() const noexcept { return m_quantity; }

private:
    explicit Attribute(const AttributeDescription& description);

    DataType m_dataType;
    const Quantity* m_quantity;
};

/// Keeps values of attributes, one an attribute, in the order of the attributes' ids.
class KRCOMMON_API AttributeValueManager {
public:
    using Value = std::pair<const Attribute*, Data>;

    AttributeValueManager();
    AttributeValueManager(const AttributeValueManager&);
    AttributeValueManager& operator=(const AttributeValueManager&);
    virtual ~AttributeValueManager();

    /// Stores a copy of the value, in the place of an earlier one. Returns 0; 1 and a warning, nothing stored,
    /// when the attribute is null or the value's type is not the attribute's.
    int setAttributeValue(const Attribute* attribute, const Data& value);

    /// The attribute's value, null when it has none.
    [[nodiscard]] const Data* getAttributeValue(const Attribute* attribute) const;

    [[nodiscard]] bool empty() const noexcept { return m_values.empty(); }
    [[nodiscard]] std::vector<Value>::const_iterator begin() const noexcept { return m_values.begin(); }
    [[nodiscard]] std::vector<Value>::const_iterator end() const noexcept { return m_values.end(); }

protected:
    void clear_i() noexcept;

private:
    std::vector<Value> m_values;
};

/// Attribute values of one sample. Owned by the caller, who keeps it alive until the sampling point of the
/// sample has been handed on, and may clear and refill it afterwards.
class KRCOMMON_API DynamicAttributeValueManager : public AttributeValueManager {
public:
    DynamicAttributeValueManager();
    DynamicAttributeValueManager(const DynamicAttributeValueManager&);
    DynamicAttributeValueManager& operator=(const DynamicAttributeValueManager&);
    ~DynamicAttributeValueManager() override;

    /// Forgets all values; their storage is kept for the next sample.
    void clear();
};

} // namespace pwr
