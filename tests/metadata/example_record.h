#pragma once

#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/serializer.h"
#include "common/metadata/system_metadata.h"
#include "tests/support/record_page.h"

#include <string>

namespace tests {

constexpr std::size_t c_frame = 4; // the number of the record's kind

/// The collection of docs/formats/system-record.md: every item holds something.
inline std::string exampleBytes() {
    const std::vector<char> bytes = pwr::recordExample("system", "system-record.md");
    return {bytes.begin(), bytes.end()};
}

inline std::string bytesOf(const pwr::Metadata& record) {
    pwr::Serializer out(0);
    record.serialize(out);
    return {out.get_buffer().begin(), out.get_buffer().end()};
}

/// A record whose body can be read on its own.
struct ReadableRecord : pwr::SystemMetadata {
    int readBody(const std::string& body) {
        pwr::Serializer in(std::vector<char>(body.begin(), body.end()));
        return deserialize_i(in, 0);
    }
};

struct ExampleRecord : ReadableRecord {
    ExampleRecord() { EXPECT_EQ(0, readBody(exampleBytes().substr(c_frame))); }
};

} // namespace tests
