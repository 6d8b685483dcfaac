#include "common/model/state.h"

#include <memory>

#include "common/model/data_handle_provider.h"

namespace pwr {

StateDescription::StateDescription(const std::string& name, const std::string& shortName, const Data& value)
    : Description(DescriptionType::STATE, name, shortName) {
    if (value.isSet() && value.isValid()) {
        m_value = value;
    }
}

State::State(const StateDescription& description)
    : DataHandle(description, DataHandleType::STATE), m_value(description.m_value) {}

const State* State::create(const StateDescription& description) {
    return DataHandleProvider::adopt(std::unique_ptr<State>(new State(description)));
}

} // namespace pwr
