#include "common/model/event.h"

#include <memory>

#include "common/model/data_handle_provider.h"

namespace pwr {

EventDescription::EventDescription(const std::string& name, const std::string& shortName)
    : Description(DescriptionType::EVENT, name, shortName) {}

Event::Event(const Description& description) : DataHandle(description, DataHandleType::EVENT) {}

const Event* Event::create(const Description& description) {
    return DataHandleProvider::adopt(std::unique_ptr<Event>(new Event(description)));
}

} // namespace pwr
