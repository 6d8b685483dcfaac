// Arbitrary bytes as the body of a system record, of any version. A record that was read can be shown,
// and one of a version whose form is written is written and read again as the same bytes.
// Each record that is read makes entities, which live as long as the process: run the target in
// portions, with -runs=100000 or -max_total_time=60 each, and it stays below half a gigabyte.

#include "common/metadata/saved_version.h"
#include "common/metadata/serializer.h"
#include "common/metadata/system_metadata.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <vector>

namespace {

using Bytes = std::vector<char>;

std::unique_ptr<pwr::SystemMetadata> readRecord(const Bytes& bytes) {
    pwr::Serializer in(bytes);
    std::unique_ptr<pwr::Metadata> record(pwr::Metadata::deserialize(in, 0));
    return std::unique_ptr<pwr::SystemMetadata>(dynamic_cast<pwr::SystemMetadata*>(record.release()));
}

Bytes writeRecord(const pwr::Metadata& record) {
    pwr::Serializer out(0);
    record.serialize(out);
    return out.get_buffer();
}

void require(bool fact) {
    if (!fact) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes{1, 0, 0, 0}; // the kind
    bytes.insert(bytes.end(), data, data + size);
    const std::unique_ptr<pwr::SystemMetadata> record = readRecord(bytes);
    if (record == nullptr) {
        return 0;
    }
    std::ostringstream text;
    text << *record << record->getVersionHeader(true) << record->getCollectionHeader()
         << record->getSystemHWHeader();
    require(text.good());
    if (record->appVersion < pwr::packSavedVersion(2025, 3, 1)) {
        return 0;
    }
    const Bytes written = writeRecord(*record);
    const std::unique_ptr<pwr::SystemMetadata> again = readRecord(written);
    require(again != nullptr);
    require(writeRecord(*again) == written);
    return 0;
}
