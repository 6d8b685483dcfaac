#include "common/platform/system_info.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <cpuid.h>
#endif

#include <array>
#include <cstring>

namespace pwr::platform {

#if defined(__x86_64__) && defined(__GNUC__)
namespace {

constexpr unsigned SIGNATURE_LEAF = 1;
constexpr unsigned FIRST_BRAND_LEAF = 0x80000002;
constexpr unsigned LAST_BRAND_LEAF = 0x80000004;

std::string brandText() {
    std::string brand;
    for (unsigned leaf = FIRST_BRAND_LEAF; leaf <= LAST_BRAND_LEAF; ++leaf) {
        std::array<unsigned, 4> words{};
        if (__get_cpuid(leaf, &words[0], &words[1], &words[2], &words[3]) == 0) {
            return {};
        }
        std::array<char, sizeof words> bytes{};
        std::memcpy(bytes.data(), words.data(), sizeof words);
        brand.append(bytes.data(), bytes.size());
    }
    brand = brand.substr(0, brand.find('\0'));
    const std::size_t first = brand.find_first_not_of(' ');
    return first == std::string::npos ? std::string()
                                      : brand.substr(first, brand.find_last_not_of(' ') + 1 - first);
}

} // namespace

ProcessorIdentity processorIdentity() {
    ProcessorIdentity identity;
    unsigned signature = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    if (__get_cpuid(SIGNATURE_LEAF, &signature, &b, &c, &d) == 0) {
        return identity;
    }
    // The extended fields count only for the families that outgrew the four-bit ones.
    const unsigned baseFamily = (signature >> 8) & 0xF;
    const unsigned baseModel = (signature >> 4) & 0xF;
    const bool extendedModel = baseFamily == 0x6 || baseFamily == 0xF;
    identity.stepping = signature & 0xF;
    identity.family = baseFamily == 0xF ? baseFamily + ((signature >> 20) & 0xFF) : baseFamily;
    identity.model = extendedModel ? baseModel + (((signature >> 16) & 0xF) << 4) : baseModel;
    identity.brand = brandText();
    return identity;
}
#else
ProcessorIdentity processorIdentity() {
    return {};
}
#endif

} // namespace pwr::platform
