#include "common/metadata/metadata.h"

#include "common/metadata/collector_metadata.h"
#include "common/metadata/metric_metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metadata/operation_metadata.h"
#include "common/metadata/serializer.h"
#include "common/metadata/system_metadata.h"

#include <memory>

namespace pwr {

namespace {

using Type = Metadata::__metadata_data_type;

template <class Record> std::unique_ptr<Metadata> make() {
    return std::make_unique<Record>();
}

struct Kind {
    Type type;
    std::unique_ptr<Metadata> (*make)();
};

constexpr Kind c_kinds[] = {
    {Type::SYSTEM, make<SystemMetadata>},       {Type::MSG, make<MsgMetadata>},
    {Type::METRIC, make<MetricMetadata>},       {Type::COLLECTOR, make<CollectorMetadata>},
    {Type::OPERATION, make<OperationMetadata>},
};

} // namespace

Metadata::~Metadata() = default;

pw_u32_t Metadata::getPluginID() const {
    return 0;
}

void Metadata::serialize(Serializer& out) const {
    out.write(static_cast<pw_u32_t>(m_type));
    serialize_i(out);
}

Metadata* Metadata::deserialize(Serializer& in, unsigned reserved) {
    pw_u32_t type = 0;
    if (in.read(type) == 0) {
        return nullptr;
    }
    for (const Kind& kind : c_kinds) {
        if (static_cast<pw_u32_t>(kind.type) == type) {
            std::unique_ptr<Metadata> record = kind.make();
            return record->deserialize_i(in, reserved) == 0 ? record.release() : nullptr;
        }
    }
    return nullptr;
}

int Metadata::deserializeAs_i(Metadata& record, Serializer& in, unsigned reserved) {
    pw_u32_t type = 0;
    if (in.read(type) == 0 || type != static_cast<pw_u32_t>(record.m_type)) {
        return -1;
    }
    return record.deserialize_i(in, reserved);
}

} // namespace pwr
