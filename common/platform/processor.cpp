#include "common/platform/processor.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <cpuid.h>
#endif

#include <array>
#include <cstring>

namespace pwr::platform {

#if defined(__x86_64__) && defined(__GNUC__)
namespace {

constexpr unsigned VENDOR_LEAF = 0;
constexpr unsigned SIGNATURE_LEAF = 1;
constexpr unsigned COUNTER_LEAF = 0x15;
constexpr unsigned FREQUENCY_LEAF = 0x16;
constexpr unsigned HYPERVISOR_LEAF = 0x40000000;
constexpr unsigned FIRST_BRAND_LEAF = 0x80000002;
constexpr unsigned LAST_BRAND_LEAF = 0x80000004;

constexpr unsigned HYPERVISOR_BIT = 1U << 31U; // in the third word of the signature leaf
constexpr double HERTZ_PER_MEGAHERTZ = 1e6;

/// The four words of a leaf; all zero for one that the processor lacks.
struct Leaf {
    explicit Leaf(unsigned number) { __get_cpuid_count(number, 0, &a, &b, &c, &d); }
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
};

/// The letters that stand in words, up to the first null, without blanks around them.
template <std::size_t N> std::string lettersOf(const std::array<unsigned, N>& words) {
    std::array<char, N * sizeof(unsigned)> bytes{};
    std::memcpy(bytes.data(), words.data(), bytes.size());
    std::string text(bytes.data(), bytes.size());
    text = text.substr(0, text.find('\0'));
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

std::string brandText() {
    std::array<unsigned, 12> words{};
    std::size_t at = 0;
    for (unsigned number = FIRST_BRAND_LEAF; number <= LAST_BRAND_LEAF; ++number) {
        const Leaf leaf(number);
        for (const unsigned word : {leaf.a, leaf.b, leaf.c, leaf.d}) {
            words[at++] = word;
        }
    }
    return lettersOf(words);
}

void readSignature(unsigned signature, ProcessorReport& report) {
    // The extended fields count only for the families that outgrew the four-bit ones.
    const unsigned baseFamily = (signature >> 8) & 0xF;
    const unsigned baseModel = (signature >> 4) & 0xF;
    const bool extendedModel = baseFamily == 0x6 || baseFamily == 0xF;
    report.stepping = signature & 0xF;
    report.family = baseFamily == 0xF ? baseFamily + ((signature >> 20) & 0xFF) : baseFamily;
    report.model = extendedModel ? baseModel + (((signature >> 16) & 0xF) << 4) : baseModel;
}

void readFrequencies(ProcessorReport& report) {
    const Leaf frequencies(FREQUENCY_LEAF);
    report.baseMHz = frequencies.a & 0xFFFF;
    report.maximumMHz = frequencies.b & 0xFFFF;
    report.busMHz = frequencies.c & 0xFFFF;
    // The counter ticks with the crystal (third word, Hz), multiplied by a ratio (second to first word).
    const Leaf counter(COUNTER_LEAF);
    if (counter.a != 0) {
        report.counterMHz = static_cast<double>(counter.c) / HERTZ_PER_MEGAHERTZ *
                            static_cast<double>(counter.b) / static_cast<double>(counter.a);
    }
}

void readHypervisor(ProcessorReport& report) {
    // Not below the highest ordinary leaf, so without the check that the others go through.
    std::array<unsigned, 3> letters{};
    unsigned highest = 0;
    __cpuid(HYPERVISOR_LEAF, highest, letters[0], letters[1], letters[2]);
    report.hypervisor = lettersOf(letters);
}

} // namespace

ProcessorReport processorReport() {
    ProcessorReport report;
    const Leaf signature(SIGNATURE_LEAF);
    if (signature.a == 0) {
        return report;
    }
    const Leaf vendor(VENDOR_LEAF);
    report.vendor = lettersOf(std::array{vendor.b, vendor.d, vendor.c});
    report.brand = brandText();
    readSignature(signature.a, report);
    readFrequencies(report);
    report.isHypervisorKnown = true;
    report.hasHypervisor = (signature.c & HYPERVISOR_BIT) != 0;
    if (report.hasHypervisor) {
        readHypervisor(report);
    }
    return report;
}
#else
ProcessorReport processorReport() {
    return {};
}
#endif

} // namespace pwr::platform
