#include "common/saved/byte_source.h"

#include "common/platform/raw_file.h"
#include "common/pw_utils.h"

#include <algorithm>
#include <cerrno>

namespace pwr::saved {

namespace {

class FileSource final : public ByteSource {
public:
    int open(const std::string& path) { return m_file.openPlain(path); }

    std::uint64_t size() override {
        std::uint64_t bytes = 0;
        return m_file.size(bytes) == 0 ? bytes : 0;
    }

    std::size_t readAt(std::uint64_t offset, std::span<char> to) override {
        std::size_t got = 0;
        if (m_file.readAt(offset, to, got) == 0) {
            return got;
        }
        std::fill(to.begin() + static_cast<std::ptrdiff_t>(got), to.end(), '\0');
        return to.size();
    }

private:
    platform::RawFile m_file;
};

class MemorySource final : public ByteSource {
public:
    explicit MemorySource(std::span<const char> bytes) : m_bytes(bytes) {}

    std::uint64_t size() override { return m_bytes.size(); }

    std::size_t readAt(std::uint64_t offset, std::span<char> to) override {
        if (offset >= m_bytes.size()) {
            return 0;
        }
        const auto part = m_bytes.subspan(static_cast<std::size_t>(offset));
        const std::size_t size = std::min(to.size(), part.size());
        std::copy_n(part.begin(), size, to.begin());
        return size;
    }

private:
    std::span<const char> m_bytes;
};

} // namespace

ByteSource::~ByteSource() = default;

std::unique_ptr<ByteSource> ByteSource::ofFile(const std::string& path, std::string& error) {
    auto source = std::make_unique<FileSource>();
    if (const int failure = source->open(path); failure != 0) {
        error = path + ": " + (failure == EINVAL ? "not a plain file" : pw_strerror(failure));
        return nullptr;
    }
    return source;
}

std::unique_ptr<ByteSource> ByteSource::ofMemory(std::span<const char> bytes) {
    return std::make_unique<MemorySource>(bytes);
}

} // namespace pwr::saved
