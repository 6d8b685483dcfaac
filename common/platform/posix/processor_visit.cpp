#include "common/platform/processor_visit.h"

#include <sched.h>

#include <cerrno>
#include <cstddef>
#include <vector>

namespace pwr::platform {

namespace {

/// A set of processors of any size: the system refuses sets smaller than its own.
class ProcessorSet {
public:
    explicit ProcessorSet(unsigned processors) : m_words(words_i(processors)) {}

    void add(unsigned processor) { m_words[processor / BITS] |= 1UL << (processor % BITS); }
    bool readFromThread() {
        return sched_getaffinity(0, bytes_i(), reinterpret_cast<cpu_set_t*>(m_words.data())) == 0;
    }
    bool applyToThread() const {
        return sched_setaffinity(0, bytes_i(), reinterpret_cast<const cpu_set_t*>(m_words.data())) == 0;
    }

private:
    static constexpr std::size_t BITS = 8 * sizeof(unsigned long);
    static std::size_t words_i(unsigned processors) { return processors / BITS + 1; }
    std::size_t bytes_i() const { return m_words.size() * sizeof(unsigned long); }

    std::vector<unsigned long> m_words;
};

constexpr unsigned FIRST_SIZE = 1024;
constexpr unsigned LARGEST_SIZE = 1U << 20U;

} // namespace

struct ProcessorVisit::Before {
    ProcessorSet set;
};

ProcessorVisit::ProcessorVisit(unsigned processor) {
    for (unsigned size = FIRST_SIZE; size <= LARGEST_SIZE; size *= 2) {
        auto before = std::make_unique<Before>(Before{ProcessorSet(size)});
        if (before->set.readFromThread()) {
            ProcessorSet only(size);
            if (processor < size) {
                only.add(processor);
            }
            if (processor < size && only.applyToThread()) {
                m_before = std::move(before);
            }
            return;
        }
        if (errno != EINVAL) {
            return;
        }
    }
}

ProcessorVisit::~ProcessorVisit() {
    if (m_before != nullptr) {
        m_before->set.applyToThread();
    }
}

} // namespace pwr::platform
