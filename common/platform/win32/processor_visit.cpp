#include "common/platform/processor_visit.h"

#include <windows.h>

namespace pwr::platform {

namespace {

// Processors are numbered by group x 64, as everywhere in this system's code.
constexpr unsigned PROCESSORS_PER_GROUP = 64;

} // namespace

struct ProcessorVisit::Before {
    GROUP_AFFINITY affinity;
};

ProcessorVisit::ProcessorVisit(unsigned processor) {
    GROUP_AFFINITY only{};
    only.Group = static_cast<WORD>(processor / PROCESSORS_PER_GROUP);
    only.Mask = static_cast<KAFFINITY>(1) << (processor % PROCESSORS_PER_GROUP);
    auto before = std::make_unique<Before>();
    if (processor / PROCESSORS_PER_GROUP < GetActiveProcessorGroupCount() &&
        SetThreadGroupAffinity(GetCurrentThread(), &only, &before->affinity) != 0) {
        m_before = std::move(before);
    }
}

ProcessorVisit::~ProcessorVisit() {
    if (m_before != nullptr) {
        SetThreadGroupAffinity(GetCurrentThread(), &m_before->affinity, nullptr);
    }
}

} // namespace pwr::platform
