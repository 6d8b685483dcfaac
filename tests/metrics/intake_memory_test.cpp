#include <cstdlib>
#include <new>
#include <unordered_map>

#include "tests/metrics/metric_fixture.h"

// Counts what the process allocates. Pieces are noted beside the heap, not in it: where the library has allocation
// functions of its own, pieces cross between them and these.
namespace {

template <class T> struct UncountedAllocator {
    using value_type = T;
    UncountedAllocator() = default;
    template <class U> UncountedAllocator(const UncountedAllocator<U>&) {}
    T* allocate(std::size_t count) {
        // NOLINTNEXTLINE(bugprone-sizeof-expression): the map's buckets are pointers
        return static_cast<T*>(std::malloc(count * sizeof(T)));
    }
    void deallocate(T* memory, std::size_t) { std::free(memory); }
    bool operator==(const UncountedAllocator&) const { return true; }
};
using Pieces = std::unordered_map<void*, std::size_t, std::hash<void*>, std::equal_to<>,
                                  UncountedAllocator<std::pair<void* const, std::size_t>>>;

std::size_t g_allocations = 0;
std::size_t g_bytes = 0;
Pieces* g_pieces = nullptr; // null: nothing is counted

void* allocate(std::size_t size) {
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    if (g_pieces != nullptr) {
        ++g_allocations;
        g_bytes += size;
        g_pieces->emplace(memory, size);
    }
    return memory;
}

void release(void* memory) noexcept {
    if (g_pieces != nullptr) {
        const auto piece = g_pieces->find(memory);
        if (piece != g_pieces->end()) {
            g_bytes -= piece->second;
            g_pieces->erase(piece);
        }
    }
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    release(memory);
}

namespace {

using pwr::Data;
using tests::DataElement;
using tests::Metric;
using tests::MetricTest;
using tests::Type;

class IntakeMemoryTest : public MetricTest {
protected:
    static constexpr std::size_t ROWS = 4096;

    IntakeMemoryTest() {
        for (std::size_t row = 0; row < ROWS; ++row) {
            m_entities.push_back(pwr::EntityHandle::create("e", nullptr));
        }
        g_pieces = &m_pieces;
    }
    ~IntakeMemoryTest() override { g_pieces = nullptr; }
    /// One point with a value for every row, in a new order each time.
    void addPoint(Metric& metric, std::uint64_t distinct, bool isText) {
        ++m_point;
        for (std::size_t i = 0; i < ROWS; ++i) {
            m_number.setValue(m_point % distinct);
            m_element.setEntity(m_entities[(i * (2 * m_point + 1)) % ROWS]);
            m_element.setValue(isText ? m_text : m_number);
            metric.setData(1000 * m_point, m_element, 0);
        }
    }
    /// False where the library has an allocator of its own, so that nothing could be counted.
    static bool seesTheLibrary() {
        const std::size_t before = g_allocations;
        pwr::EntityHandle::create("probe", nullptr);
        return g_allocations != before;
    }

    Pieces m_pieces;
    std::vector<const pwr::EntityHandle*> m_entities;
    std::uint64_t m_point = 0;
    Data m_number{std::uint64_t{0}};
    Data m_text{"a text that does not fit into the string itself"};
    DataElement m_element{nullptr, a};
};

TEST_F(IntakeMemoryTest, steadyStateAllocatesNothing) {
    if (!seesTheLibrary()) {
        GTEST_SKIP() << "the library's allocations cannot be seen from here";
    }
    for (const Type type : {Type::SampledValue, Type::SampledDelta, Type::SampledResidency}) {
        for (const bool isText : {false, true}) {
            if (isText && type != Type::SampledValue) {
                continue;
            }
            Metric metric = make(type, pwr::Quantity::data());
            for (int i = 0; i < 70; ++i) { // every buffer has been emptied, and every value seen
                addPoint(metric, 8, isText);
            }
            const std::size_t before = g_allocations;
            for (int i = 0; i < 70; ++i) {
                addPoint(metric, 8, isText);
            }
            EXPECT_EQ(0U, g_allocations - before) << static_cast<int>(type) << isText;
        }
    }
}

TEST_F(IntakeMemoryTest, rowsAndDistinctValuesAreSmall) {
    if (!seesTheLibrary()) {
        GTEST_SKIP() << "the library's allocations cannot be seen from here";
    }
    for (const std::uint64_t distinct : {1, 2, 4, 7, 8, 13, 16}) {
        const std::size_t before = g_bytes;
        Metric metric = make(Type::SampledValue);
        for (int i = 0; i < 64; ++i) {
            addPoint(metric, distinct, false);
        }
        EXPECT_LE((g_bytes - before) / ROWS, 700 + 64 * distinct) << distinct;
    }
}

} // namespace
