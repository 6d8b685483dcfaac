#include "plugins/collectors/text_files/entity_names.h"

#include <charconv>

#include "common/model/data_handle_provider.h"

namespace text_files {

namespace {

int numberOf(const Place& place, std::string_view variable) {
    const std::string* text = place.binding.find(variable);
    int number = -1;
    if (text != nullptr) {
        std::from_chars(text->data(), text->data() + text->size(), number);
    }
    return number;
}

} // namespace

const pwr::EntityHandle* EntityNames::entityOf(const Place& place) {
    if (place.isProcessor) {
        return pwr::EntityHandle::getCPUThreadHandle(numberOf(place, "cpu"));
    }
    if (place.isCore) {
        return pwr::EntityHandle::getCPUCoreHandle(numberOf(place, "core"));
    }
    if (place.isPackage) {
        return pwr::EntityHandle::getCPUPackageHandle(numberOf(place, "package"));
    }
    if (place.entity == "SYSTEM" || place.entity.empty()) {
        return pwr::EntityHandle::getSystemHandle();
    }
    const auto known = m_entities.find(place.entity);
    if (known != m_entities.end()) {
        return known->second;
    }
    // Two sensors of one kind have the same name: the later ones are numbered.
    std::set<std::string>& bearers = m_names[place.entityName];
    bearers.insert(place.entity);
    const std::string number = bearers.size() > 1 ? " #" + std::to_string(bearers.size()) : "";
    const pwr::EntityHandle* entity =
        pwr::EntityHandle::create(place.entityName + number, pwr::EntityHandle::getSystemHandle());
    m_entities.emplace(place.entity, entity);
    return entity;
}

const pwr::DataDescriptor* EntityNames::descriptorOf(const std::string& name) {
    if (name.empty()) {
        return nullptr;
    }
    const pwr::DataDescriptor* known = pwr::DataHandleProvider::findDescriptor(name);
    return known != nullptr ? known : pwr::DataDescriptorBuilder(name).build();
}

bool EntityNames::isNameTaken(const Place& place) const {
    const auto name = m_names.find(place.entityName);
    return name != m_names.end() && !name->second.contains(place.entity);
}

} // namespace text_files
