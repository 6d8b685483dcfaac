#pragma once

#include "common/export.h"

#include <memory>

namespace pwr::platform {

/// Keeps the calling thread on one logical processor (by its number in the system) while the object lives, for
/// counters that only their own processor can read; afterwards the thread may run where it could before.
/// Made and ended on the same thread.
class KRCOMMON_API ProcessorVisit {
public:
    explicit ProcessorVisit(unsigned processor);
    ProcessorVisit(const ProcessorVisit&) = delete;
    ProcessorVisit& operator=(const ProcessorVisit&) = delete;
    ~ProcessorVisit();

    /// False when there is no such processor, or when the thread may not run on it: then it runs anywhere.
    [[nodiscard]] bool isThere() const { return m_before != nullptr; }

private:
    struct Before;
    std::unique_ptr<Before> m_before;
};

} // namespace pwr::platform
