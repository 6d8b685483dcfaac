#pragma once

#include <optional>
#include <string>

#include "common/export.h"
#include "common/model/data_handle.h"
#include "common/model/description.h"
#include "common/values/data.h"

namespace pwr {

/// Describes a state and the value that stands for it in samples; a value that is not set counts as none.
class KRCOMMON_API StateDescription : public Description {
public:
    explicit StateDescription(const std::string& name, const std::string& shortName = "",
                              const Data& value = Data());

    /// The value given, null when none was.
    [[nodiscard]] const Data* getValue() const noexcept { return m_value ? &*m_value : nullptr; }

private:
    friend class State;
    std::optional<Data> m_value;
};

/// Identifies a state that an entity can be in.
class KRCOMMON_API State : public DataHandle {
public:
    /// Registers a new state, which lives for the process.
    static const State* create(const StateDescription& description);

    /// The value that stands for the state, null when there is none.
    [[nodiscard]] const Data* getValue() const noexcept { return m_value ? &*m_value : nullptr; }

private:
    explicit State(const StateDescription& description);

    std::optional<Data> m_value;
};

} // namespace pwr
