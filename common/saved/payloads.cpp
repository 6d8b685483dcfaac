#include "common/saved/payloads.h"

#include "common/metadata/handled_version.h"
#include "common/metadata/metadata.h"
#include "common/metadata/saved_version.h"
#include "common/metadata/serializer.h"
#include "common/saved/payload_codec.h"

namespace pwr::saved {

namespace {

void put(PayloadWriter& out, const TWClockSync& sync) {
    out.putText(sync.clockUUID);
    out.putText(sync.clockName);
    out.put(sync.clockFrequency, sync.clockValue);
    out.putText(sync.defaultClockUUID);
    out.putText(sync.defaultClockName);
    out.put(sync.defaultClockFrequency, sync.defaultClockValue);
}

bool take(PayloadReader& in, TWClockSync& sync) {
    return in.takeText(sync.clockUUID) && in.takeText(sync.clockName) &&
           in.take(sync.clockFrequency, sync.clockValue) && in.takeText(sync.defaultClockUUID) &&
           in.takeText(sync.defaultClockName) && in.take(sync.defaultClockFrequency, sync.defaultClockValue);
}

/// A system record would reset the topology only by being read, so it is refused before.
bool isDeclaration(Serializer& in) {
    pw_u32_t type = 0;
    if (in.read(type) == 0) {
        return false;
    }
    in.rewind_read(sizeof(type));
    using Type = Metadata::__metadata_data_type;
    return type == static_cast<pw_u32_t>(Type::COLLECTOR) || type == static_cast<pw_u32_t>(Type::METRIC) ||
           type == static_cast<pw_u32_t>(Type::MSG);
}

} // namespace

bool encodeRecord(const Metadata& record, std::vector<char>& bytes) {
    Serializer out(0);
    record.serialize(out);
    bytes = out.get_buffer();
    // Records are written in the current form, whatever file was read before.
    setHandledVersion(c_currentSavedVersion);
    Serializer in(bytes);
    const std::unique_ptr<Metadata> readBack(isDeclaration(in) ? Metadata::deserialize(in, 0) : nullptr);
    char more = 0;
    return readBack != nullptr && in.read_from(&more, sizeof(more)) == 0;
}

void encodeRecords(std::span<const std::vector<char>> records, std::vector<char>& payload) {
    PayloadWriter(payload).put(static_cast<pw_u32_t>(records.size()));
    for (const auto& record : records) {
        payload.insert(payload.end(), record.begin(), record.end());
    }
}

bool decode(std::span<const char> payload, std::vector<std::unique_ptr<Metadata>>& records) {
    Serializer in(std::vector<char>(payload.begin(), payload.end()));
    pw_u32_t count = 0;
    if (in.read(count) == 0) {
        return false;
    }
    records.clear();
    for (pw_u32_t i = 0; i < count; ++i) {
        std::unique_ptr<Metadata> record(isDeclaration(in) ? Metadata::deserialize(in, 0) : nullptr);
        if (!record) {
            return false;
        }
        records.push_back(std::move(record));
    }
    char more = 0;
    return in.read_from(&more, sizeof(more)) == 0;
}

void encode(const Configuration& configuration, std::vector<char>& payload) {
    PayloadWriter out(payload);
    out.putText(configuration.first);
    out.putText(configuration.second);
}

bool decode(std::span<const char> payload, Configuration& configuration) {
    PayloadReader in(payload);
    return in.takeText(configuration.first) && in.takeText(configuration.second) && in.isDone();
}

void encode(const Moment& moment, std::vector<char>& payload) {
    PayloadWriter out(payload);
    out.put(moment.tick, moment.timeval, static_cast<pw_u32_t>(moment.clocks.size()));
    for (const TWClockSync& sync : moment.clocks) {
        put(out, sync);
    }
}

bool decode(std::span<const char> payload, Moment& moment) {
    PayloadReader in(payload);
    pw_u32_t count = 0;
    if (!in.take(moment.tick, moment.timeval, count)) {
        return false;
    }
    moment.clocks.clear();
    for (pw_u32_t i = 0; i < count; ++i) {
        if (!take(in, moment.clocks.emplace_back())) {
            return false;
        }
    }
    return in.isDone();
}

void encode(std::span<const std::string> lines, std::vector<char>& payload) {
    PayloadWriter out(payload);
    out.put(static_cast<pw_u32_t>(lines.size()));
    for (const std::string& line : lines) {
        out.putText(line);
    }
}

bool decode(std::span<const char> payload, std::vector<std::string>& lines) {
    PayloadReader in(payload);
    pw_u32_t count = 0;
    if (!in.take(count)) {
        return false;
    }
    lines.clear();
    for (pw_u32_t i = 0; i < count; ++i) {
        if (!in.takeText(lines.emplace_back())) {
            return false;
        }
    }
    return in.isDone();
}

} // namespace pwr::saved
