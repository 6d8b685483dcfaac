#include "common/saved/payload_codec.h"
#include "common/saved/payloads.h"

namespace pwr::saved {

namespace {

void put(PayloadWriter& out, const SavedEntity& entity) {
    out.put(static_cast<pw_u8_t>(entity.kind), entity.node, entity.parent);
    for (const auto* text :
         {&entity.name, &entity.shortName, &entity.fieldName, &entity.description, &entity.header}) {
        out.putText(*text);
    }
}

bool take(PayloadReader& in, SavedEntity& entity) {
    pw_u8_t kind = 0;
    if (!in.take(kind, entity.node, entity.parent) ||
        kind > static_cast<pw_u8_t>(SavedEntity::Kind::TOPOLOGY)) {
        return false;
    }
    entity.kind = static_cast<SavedEntity::Kind>(kind);
    return in.takeText(entity.name) && in.takeText(entity.shortName) && in.takeText(entity.fieldName) &&
           in.takeText(entity.description) && in.takeText(entity.header);
}

/// A value stands behind the number of its type; NONE is no value.
void put(PayloadWriter& out, const std::optional<Data>& value) {
    const DataType type = value ? value->getType() : DataType::NONE;
    std::int64_t integer = 0;
    std::uint64_t natural = 0;
    double real = 0;
    std::string text;
    if (type == DataType::INT && value->toInt(integer) == 0) {
        out.put(static_cast<pw_u8_t>(type), integer);
    } else if (type == DataType::UINT && value->toUInt(natural) == 0) {
        out.put(static_cast<pw_u8_t>(type), natural);
    } else if (type == DataType::REAL && value->toReal(real) == 0) {
        out.put(static_cast<pw_u8_t>(type), real);
    } else if (type == DataType::STRING && value->toString(text) == 0) {
        out.put(static_cast<pw_u8_t>(type));
        out.putText(text);
    } else {
        out.put(static_cast<pw_u8_t>(DataType::NONE));
    }
}

template <class T> bool takeNumber(PayloadReader& in, std::optional<Data>& value) {
    T number{};
    if (!in.take(number)) {
        return false;
    }
    value = Data(number);
    return true;
}

bool take(PayloadReader& in, std::optional<Data>& value) {
    pw_u8_t type = 0;
    if (!in.take(type)) {
        return false;
    }
    value.reset();
    std::string text;
    switch (type) {
    case static_cast<pw_u8_t>(DataType::NONE): return true;
    case static_cast<pw_u8_t>(DataType::INT): return takeNumber<std::int64_t>(in, value);
    case static_cast<pw_u8_t>(DataType::UINT): return takeNumber<std::uint64_t>(in, value);
    case static_cast<pw_u8_t>(DataType::REAL): return takeNumber<double>(in, value);
    case static_cast<pw_u8_t>(DataType::STRING):
        if (!in.takeText(text)) {
            return false;
        }
        value = Data(text);
        return true;
    default: return false;
    }
}

void put(PayloadWriter& out, const SavedDescriptor& descriptor) {
    for (const auto* text : {&descriptor.name, &descriptor.shortName, &descriptor.fieldName,
                             &descriptor.description, &descriptor.header}) {
        out.putText(*text);
    }
    put(out, descriptor.value);
}

bool take(PayloadReader& in, SavedDescriptor& descriptor) {
    return in.takeText(descriptor.name) && in.takeText(descriptor.shortName) &&
           in.takeText(descriptor.fieldName) && in.takeText(descriptor.description) &&
           in.takeText(descriptor.header) && take(in, descriptor.value);
}

void put(PayloadWriter& out, const std::pair<pw_u32_t, pw_u32_t>& instance) {
    out.put(instance.first, instance.second);
}

bool take(PayloadReader& in, std::pair<pw_u32_t, pw_u32_t>& instance) {
    return in.take(instance.first, instance.second);
}

void put(PayloadWriter& out, const SavedInstances& message);
bool take(PayloadReader& in, SavedInstances& message);

template <class T> void putAll(PayloadWriter& out, const std::vector<T>& items) {
    out.put(static_cast<pw_u32_t>(items.size()));
    for (const T& item : items) {
        put(out, item);
    }
}

template <class T> bool takeAll(PayloadReader& in, std::vector<T>& items) {
    pw_u32_t count = 0;
    if (!in.take(count)) {
        return false;
    }
    items.clear();
    for (pw_u32_t i = 0; i < count; ++i) {
        if (!take(in, items.emplace_back())) {
            return false;
        }
    }
    return true;
}

void put(PayloadWriter& out, const SavedInstances& message) {
    out.put(message.message.plugin, message.message.metric, message.message.message,
            static_cast<pw_u8_t>(message.isAddition ? 1 : 0), message.firstEntity, message.firstDescriptor);
    putAll(out, message.newEntities);
    putAll(out, message.newDescriptors);
    putAll(out, message.instances);
}

bool take(PayloadReader& in, SavedInstances& message) {
    pw_u8_t isAddition = 0;
    if (!in.take(message.message.plugin, message.message.metric, message.message.message, isAddition,
                 message.firstEntity, message.firstDescriptor) ||
        isAddition > 1) {
        return false;
    }
    message.isAddition = isAddition == 1;
    return takeAll(in, message.newEntities) && takeAll(in, message.newDescriptors) &&
           takeAll(in, message.instances);
}

} // namespace

void encode(std::span<const SavedInstances> messages, std::vector<char>& payload) {
    PayloadWriter out(payload);
    out.put(static_cast<pw_u32_t>(messages.size()));
    for (const SavedInstances& message : messages) {
        put(out, message);
    }
}

bool decode(std::span<const char> payload, std::vector<SavedInstances>& messages) {
    PayloadReader in(payload);
    return takeAll(in, messages) && in.isDone();
}

} // namespace pwr::saved
