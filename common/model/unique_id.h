#pragma once

#include <cstdint>

#include "common/export.h"

namespace pwr {

/// What kind of object carries an id, so that a holder of the base can tell a handle from the rest.
enum class UniqueIdType : std::uint32_t { DATA_HANDLE = 0, QUANTITY = 1 };

/// An identity that no other object of the process has.
/// Ids come from one counter that starts at 0 and goes up by one with every object constructed, of any kind;
/// they are never given twice, so an identity can neither be copied nor moved.
/// Threads: objects are made on one thread at a time.
class KRCOMMON_API UniqueId {
public:
    UniqueId(const UniqueId&) = delete;
    UniqueId& operator=(const UniqueId&) = delete;
    virtual ~UniqueId();

    [[nodiscard]] virtual UniqueIdType getIdType() const = 0;

    [[nodiscard]] std::uint64_t getId() const noexcept { return m_id; }

protected:
    UniqueId() noexcept;

private:
    std::uint64_t m_id;
};

} // namespace pwr
