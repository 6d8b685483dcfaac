#include "common/metadata/serializer.h"

#include "common/plugin/logger.h"

#include <cstdlib>
#include <cstring>

namespace pwr {

namespace {

constexpr std::size_t c_firstSize = 128;

} // namespace

Serializer::Serializer(std::size_t size) : m_buffer(size) {}

Serializer::Serializer(const std::vector<char>& bytes) : m_buffer(bytes) {}

void Serializer::write_to(const void* source, std::size_t size) {
    if (source == nullptr || size == 0) {
        return;
    }
    if (space_avail_i() < size) {
        grow_i(size);
    }
    std::memcpy(m_buffer.data() + m_written, source, size);
    m_written += size;
}

std::size_t Serializer::read_from(void* target, std::size_t size) {
    if (target == nullptr || size == 0 || data_avail_i() < size) {
        return 0;
    }
    std::memcpy(target, m_buffer.data() + m_read, size);
    m_read += size;
    return size;
}

bool Serializer::read_text(std::string& target) {
    const std::size_t left = data_avail_i();
    if (left < sizeof(stream::Count)) {
        return false;
    }
    const char* const start = m_buffer.data() + m_read;
    const std::size_t length = stream::loadScalar<stream::Count>(start);
    if (left - sizeof(stream::Count) < length) {
        return false;
    }
    target.assign(start + sizeof(stream::Count), length);
    m_read += sizeof(stream::Count) + length;
    return true;
}

void Serializer::rewind_read(std::size_t size) {
    if (size > m_read) {
        logWarning("WARNING: trying to rewind %zu bytes, but only %zu bytes actually read!\n", size, m_read);
        return;
    }
    m_read -= size;
}

const std::vector<char>& Serializer::get_buffer() {
    m_buffer.resize(m_written);
    m_buffer.shrink_to_fit();
    return m_buffer;
}

char* Serializer::read_string(const char* source, std::size_t size) {
    if (source == nullptr) {
        return nullptr;
    }
    auto* const copy = static_cast<char*>(std::malloc(size + 1));
    if (copy != nullptr) {
        std::memcpy(copy, source, size);
        copy[size] = '\0';
    }
    return copy;
}

void Serializer::grow_i(std::size_t size) {
    const std::size_t needed = m_written + size;
    std::size_t grown = m_buffer.size();
    while (grown < needed) {
        grown = grown == 0 ? c_firstSize : grown * 2;
    }
    m_buffer.resize(grown);
}

} // namespace pwr
