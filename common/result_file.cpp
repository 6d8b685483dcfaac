#include "common/result_file.h"

#include "common/platform/file.h"
#include "common/pw_utils.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace pwr {

namespace {

bool isReplaceable(const std::string& path) {
    std::error_code failure;
    const auto type = std::filesystem::status(platform::nativePath(path), failure).type();
    return type != std::filesystem::file_type::character && type != std::filesystem::file_type::block &&
           type != std::filesystem::file_type::fifo;
}

} // namespace

ResultFile::ResultFile(const std::string& path)
    : m_path(path), m_partPath(isReplaceable(path) ? path + ".part" : "") {
    errno = 0;
    m_file.open(platform::nativePath(m_partPath.empty() ? m_path : m_partPath),
                std::ios::binary | std::ios::trunc);
    noteFailure_i();
    if (!m_file.is_open()) {
        m_partPath.clear(); // what stands there is not ours to remove
    }
}

ResultFile::~ResultFile() {
    discard_i();
}

void ResultFile::write(std::string_view text) {
    errno = 0;
    m_file.write(text.data(), static_cast<std::streamsize>(text.size()));
    noteFailure_i();
}

int ResultFile::commit(std::string& error) {
    if (m_error.empty()) {
        errno = 0;
        m_file.close(); // what is still buffered is written here, so a full disk may only show now
        noteFailure_i();
    }
    if (m_error.empty() && !m_partPath.empty() && !platform::renameReplacing(m_partPath, m_path)) {
        m_error = pw_strerror(errno);
    }
    if (!m_error.empty()) {
        error = m_path + ": " + m_error;
        discard_i();
        return 1;
    }
    m_partPath.clear();
    return 0;
}

int ResultFile::writeWhole(const std::string& path, std::string_view text, std::string& error) {
    ResultFile file(path);
    file.write(text);
    return file.commit(error);
}

/// Keeps the reason of the first failure; errno is that of the stream's last system call.
void ResultFile::noteFailure_i() {
    if (m_file.fail() && m_error.empty()) {
        m_error = errno != 0 ? pw_strerror(errno) : "cannot be written";
    }
}

void ResultFile::discard_i() {
    if (m_partPath.empty()) {
        return;
    }
    m_file.close();
    std::error_code ignored;
    std::filesystem::remove(platform::nativePath(m_partPath), ignored);
    m_partPath.clear();
}

} // namespace pwr
