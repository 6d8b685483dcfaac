#include "plugins/collectors/entity_names.h"

#include "common/model/data_handle_provider.h"
#include "common/plugin/plugin_environment.h"
#include "plugins/collectors/path_expansion.h"

namespace collectors {

const pwr::EntityHandle* EntityNames::entityOf(const Owner& owner) {
    if (owner.handle != nullptr) {
        return owner.handle;
    }
    if (owner.isProcessor) {
        return pwr::EntityHandle::getCPUThreadHandle(numberOf(owner.binding, "cpu"));
    }
    if (owner.isCore) {
        return pwr::EntityHandle::getCPUCoreHandle(numberOf(owner.binding, "core"));
    }
    if (owner.isPackage) {
        return pwr::EntityHandle::getCPUPackageHandle(numberOf(owner.binding, "package"));
    }
    if (owner.entity == "SYSTEM" || owner.entity.empty()) {
        return pwr::EntityHandle::getSystemHandle();
    }
    const auto known = m_entities.find(owner.entity);
    if (known != m_entities.end()) {
        return known->second;
    }
    // Two sensors of one kind have the same name: the later ones are numbered.
    std::set<std::string>& bearers = m_names[owner.entityName];
    bearers.insert(owner.entity);
    const std::string number = bearers.size() > 1 ? " #" + std::to_string(bearers.size()) : "";
    const pwr::EntityHandle* entity =
        pwr::EntityHandle::create(owner.entityName + number, pwr::EntityHandle::getSystemHandle());
    m_entities.emplace(owner.entity, entity);
    return entity;
}

const pwr::DataDescriptor* EntityNames::descriptorOf(const std::string& name) {
    if (name.empty()) {
        return nullptr;
    }
    const pwr::DataDescriptor* known = pwr::DataHandleProvider::findDescriptor(name);
    return known != nullptr ? known : pwr::DataDescriptorBuilder(name).build();
}

bool EntityNames::isNameTaken(const Owner& owner) const {
    const auto name = m_names.find(owner.entityName);
    return name != m_names.end() && !name->second.contains(owner.entity);
}

bool EntityNames::addInstance_i(const Owner& owner, Taken& taken, MessageInstances& out) {
    // Without a topology every look-up would warn.
    const bool isKnown = g_pluginEnvironment->getTopologyManager() != nullptr;
    const pwr::EntityHandle* entity = isKnown ? entityOf(owner) : nullptr;
    if (entity == nullptr) {
        return false;
    }
    // Some drivers give two states or sensors of one processor the same name.
    std::string name = owner.descriptor;
    for (unsigned number = 2; !taken.emplace(entity, name).second; ++number) {
        name = owner.descriptor + " #" + std::to_string(number);
    }
    out.instances.push_back({entity, descriptorOf(name)});
    return true;
}

int EntityNames::check_i(std::size_t wanted, std::size_t made, MessageInstances& out) {
    if (g_pluginEnvironment->getTopologyManager() == nullptr) {
        out.reason = "the processor topology is not known";
        return 1;
    }
    if (made == 0 && wanted > 0) {
        out.reason = "the topology knows none of the processors found";
        return 1;
    }
    if (made > CollectionData::MAX_VALUES) {
        out.reason = std::to_string(made) + " values are more than one reading holds";
        return 1;
    }
    return 0;
}

} // namespace collectors
