#pragma once

#include <optional>
#include <string>

#include "common/export.h"
#include "common/model/data_handle.h"
#include "common/model/description.h"
#include "common/values/data.h"

namespace pwr {

/// Says which of an entity's data a sample is: a state of a residency, a sensor, a direction of traffic.
/// It may stand for a value (the state's number, for example). Made by DataDescriptorBuilder.
class KRCOMMON_API DataDescriptor : public DataHandle {
public:
    /// The value it stands for, null when none was given.
    [[nodiscard]] const Data* getValue() const noexcept { return m_value ? &*m_value : nullptr; }

private:
    friend class DataDescriptorBuilder;
    DataDescriptor(const Description& description, const std::optional<Data>& value);

    std::optional<Data> m_value;
};

/// Collects what a data descriptor is made from. A builder can be used again: each build() registers another
/// descriptor. To share one, look it up with DataHandleProvider::findDescriptor(name) first.
class KRCOMMON_API DataDescriptorBuilder {
public:
    explicit DataDescriptorBuilder(const std::string& name);

    DataDescriptorBuilder& setFieldName(const std::string& fieldName);
    DataDescriptorBuilder& setShortName(const std::string& shortName);
    DataDescriptorBuilder& setDescription(const std::string& description);
    DataDescriptorBuilder& setHeader(const std::string& header);
    /// A value that is not set or not valid counts as none.
    DataDescriptorBuilder& setValue(const Data& value);

    /// Registers a new descriptor, which lives for the process.
    const DataDescriptor* build() const;

private:
    std::string m_name;
    std::string m_shortName;
    std::optional<std::string> m_fieldName;
    std::string m_description;
    std::string m_header;
    std::optional<Data> m_value;
};

} // namespace pwr
