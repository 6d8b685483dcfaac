#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "common/machine_files.h"

namespace collectors {

inline constexpr const char* DENIED_FIX = "run as root, or let this user read that file";

/// The number of 64 bits that stands in eight bytes, the lowest first.
inline std::uint64_t numberIn(std::span<const char, 8> bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = bytes.size(); i > 0; --i) {
        number = number << 8U | static_cast<unsigned char>(bytes[i - 1]);
    }
    return number;
}

/// A file of binary numbers that stays open, or is tried again at each reading while it cannot be opened.
class BinaryFile {
public:
    BinaryFile(const pwr::MachineFiles& machine, std::string path)
        : m_machine(machine), m_path(std::move(path)) {}

    const std::string& path() const { return m_path; }

    pwr::MachineStatus read(std::uint64_t offset, std::span<char> bytes) {
        pwr::MachineStatus status = pwr::MachineStatus::OK;
        if (!m_file) {
            m_file = m_machine.open(m_path, status);
        }
        return m_file ? m_file->readAt(offset, bytes) : status;
    }

    pwr::MachineStatus readNumber(std::uint64_t offset, std::uint64_t& number) {
        std::array<char, 8> bytes{};
        const pwr::MachineStatus status = read(offset, bytes);
        if (status == pwr::MachineStatus::OK) {
            number = numberIn(bytes);
        }
        return status;
    }

private:
    const pwr::MachineFiles& m_machine;
    std::string m_path;
    std::unique_ptr<pwr::MachineFile> m_file;
};

} // namespace collectors
