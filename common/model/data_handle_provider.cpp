#include "common/model/data_handle_provider.h"

#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/model/cpu_entity_topology.h"
#include "common/model/data_descriptor.h"
#include "common/writer/writer_message.h"
#include "common/writer/writer_stream.h"

namespace pwr {

namespace {

constinit std::uint64_t g_nextId = 0;

struct Registry {
    std::vector<std::unique_ptr<const UniqueId>> objects; // in order of registration
    std::vector<const UniqueId*> byId;                    // ids are dense; null where nothing was registered
    // The keys are the names that the descriptors themselves hold.
    std::unordered_map<std::string_view, const DataDescriptor*> descriptors;
    WriterStream* stream = nullptr;
};

// Never destroyed: handles are used until the very end, also by destructors of other modules.
Registry& registry() {
    static Registry* const made = new Registry;
    return *made;
}

void mapId(Registry& known, const UniqueId* object) {
    const auto index = static_cast<std::size_t>(object->getId());
    if (known.byId.size() <= index) {
        known.byId.resize(index + 1, nullptr);
    }
    if (known.byId[index] == nullptr) {
        known.byId[index] = object;
    }
}

void mapDescriptor(Registry& known, const UniqueId* object) {
    if (object->getIdType() != UniqueIdType::DATA_HANDLE) {
        return;
    }
    const auto* const handle = static_cast<const DataHandle*>(object);
    if (handle->getHandleType() == DataHandleType::DATA_DESCRIPTOR) {
        known.descriptors.try_emplace(handle->getName(), static_cast<const DataDescriptor*>(handle));
    }
}

} // namespace

UniqueId::UniqueId() noexcept : m_id(g_nextId++) {}

UniqueId::~UniqueId() = default;

void DataHandleProvider::registerId(std::unique_ptr<const UniqueId> made) {
    if (made == nullptr) {
        return;
    }
    Registry& known = registry();
    const UniqueId* const object = made.get();
    known.objects.push_back(std::move(made));
    mapId(known, object);
    mapDescriptor(known, object);
    if (known.stream != nullptr) {
        IdMessage announcement;
        announcement.addUniqueId(object);
        known.stream->pushMessage(announcement);
    }
}

int DataHandleProvider::addStream(WriterStream* stream) {
    if (stream == nullptr) {
        return 1;
    }
    IdMessage everything;
    for (const auto& object : registry().objects) {
        everything.addUniqueId(object.get());
    }
    // Only now the current one: a writer that makes a handle while it takes the message must not be told of it
    // before it has read the message.
    stream->pushMessage(everything);
    registry().stream = stream;
    return 0;
}

int DataHandleProvider::removeStream(const WriterStream* stream) {
    Registry& known = registry();
    if (stream == nullptr || known.stream != stream) {
        return 1;
    }
    known.stream = nullptr;
    return 0;
}

const UniqueId* DataHandleProvider::findId(std::uint64_t id) {
    const Registry& known = registry();
    return id < known.byId.size() ? known.byId[static_cast<std::size_t>(id)] : nullptr;
}

const DataDescriptor* DataHandleProvider::findDescriptor(const std::string& name) {
    const Registry& known = registry();
    const auto found = known.descriptors.find(name);
    return found == known.descriptors.end() ? nullptr : found->second;
}

int DataHandleProvider::initTopology(const SystemMetadata& metadata) {
    return CpuEntityTopology::current() != nullptr ? 0 : CpuEntityTopology::install(metadata);
}

int DataHandleProvider::resetTopology(const SystemMetadata& metadata) {
    return CpuEntityTopology::install(metadata);
}

} // namespace pwr
