#include "tarnwell/pci_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace tarnwell {
namespace {

constexpr std::size_t kIdLength = 4;
constexpr std::size_t kNameOffset = kIdLength + 2; // two blanks stand between

struct ClassName {
    std::uint32_t code;
    const char* name;
};

// The second byte tells kinds apart that people would look for.
constexpr std::array<ClassName, 14> kSubclassNames{{
    {0x0101, "IDE controller"},
    {0x0104, "RAID controller"},
    {0x0106, "SATA controller"},
    {0x0108, "non-volatile memory controller"},
    {0x0200, "Ethernet controller"},
    {0x0300, "VGA controller"},
    {0x0302, "3D controller"},
    {0x0403, "audio device"},
    {0x0600, "host bridge"},
    {0x0601, "ISA bridge"},
    {0x0604, "PCI bridge"},
    {0x0703, "modem"},
    {0x0C03, "USB controller"},
    {0x0C05, "SMBus controller"},
}};
constexpr std::array<const char*, 20> kClassNames{{
    "unclassified device",
    "storage controller",
    "network controller",
    "display controller",
    "multimedia controller",
    "memory controller",
    "bridge",
    "communication controller",
    "system peripheral",
    "input controller",
    "docking station",
    "processor",
    "serial bus controller",
    "wireless controller",
    "intelligent controller",
    "satellite communication controller",
    "encryption controller",
    "signal processing controller",
    "processing accelerator",
    "instrumentation",
}};

/// "vvvv  Name" at the begin of a text; false for anything else.
bool readEntry(std::string_view text, unsigned& id, std::string_view& name) {
    if (text.size() <= kNameOffset || text.substr(kIdLength, 2) != "  ") {
        return false;
    }
    const auto end = std::from_chars(text.data(), text.data() + kIdLength, id, 16);
    name = text.substr(kNameOffset);
    return end.ptr == text.data() + kIdLength;
}

} // namespace

std::map<PciId, std::string> pciNames(const std::string& text, const std::set<PciId>& wanted) {
    std::map<PciId, std::string> names;
    unsigned vendor = 0;
    bool isWantedVendor = false;
    std::string_view vendorName;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line = std::string_view(text).substr(at, end - at);
        at = end + 1;
        unsigned id = 0;
        std::string_view name;
        if (line.starts_with('\t')) {
            if (isWantedVendor && readEntry(line.substr(1), id, name) && wanted.count({vendor, id}) != 0) {
                names[{vendor, id}] = std::string(vendorName) + ' ' + std::string(name);
            }
        } else if (!line.empty() && line.front() != '#') {
            // Other sections begin with a letter and a blank; what is below them belongs to no vendor.
            isWantedVendor = readEntry(line, id, name);
            const auto first = wanted.lower_bound({id, 0});
            isWantedVendor = isWantedVendor && first != wanted.end() && first->first == id;
            vendor = id;
            vendorName = name;
            for (auto device = first; isWantedVendor && device != wanted.end() && device->first == id;
                 ++device) {
                names[*device] = std::string(name) + ' ';
            }
        }
    }
    return names;
}

const char* pciClassName(std::uint32_t classCode) {
    const std::uint32_t both = classCode >> 8U & 0xFFFFU;
    const auto* const found = std::find_if(kSubclassNames.begin(), kSubclassNames.end(),
                                           [both](const ClassName& row) { return row.code == both; });
    if (found != kSubclassNames.end()) {
        return found->name;
    }
    return both >> 8U < kClassNames.size() ? kClassNames[both >> 8U] : "device";
}

} // namespace tarnwell
