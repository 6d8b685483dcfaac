#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/plugin/collection_data.h"
#include "plugins/collectors/binary_file.h"
#include "plugins/collectors/owner_patterns.h"

namespace registers {

/// One value of a message: some bits of one register of one processor.
struct RegisterValue : collectors::Owner {
    std::string path;
    std::uint32_t number = 0; ///< of the register, which is its offset in the file
    unsigned lsb = 0;
    unsigned bits = 64;
    collectors::RawType type = collectors::RawType::UINT;

    /// The value in the register's 64 bits, as a reading holds it.
    std::uint64_t valueIn(std::uint64_t whole) const;
};

/// How the registers of one message are read: each once, however many values come from it. In a steady state a
/// reading allocates nothing.
class RegisterPlan {
public:
    RegisterPlan(const pwr::MachineFiles& machine, std::vector<RegisterValue> values);

    void read();
    /// Appends the values of the last reading to a record; 1 when it takes no more.
    int store(CollectionData& out) const;

private:
    struct Register {
        std::size_t file;
        std::uint32_t number;
        std::uint64_t whole;
        bool isPresent;
    };

    std::vector<RegisterValue> m_values;
    std::vector<collectors::BinaryFile> m_files;
    std::vector<Register> m_registers;
    std::vector<std::size_t> m_registerOf; // one per value
};

} // namespace registers
