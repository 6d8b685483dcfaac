#include "tarnwell/pci_description.h"

#include "common/metadata/system_metadata.h"
#include "common/platform/pci.h"
#include "tarnwell/machine_text.h"
#include "tarnwell/pci_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <tuple>

namespace tarnwell {
namespace {

using pwr::platform::PciFunction;

constexpr std::array<const char*, 2> kIdLists{"/usr/share/misc/pci.ids", "/usr/share/hwdata/pci.ids"};
constexpr unsigned kDisplayClass = 0x03;

/// Makers whose graphics carry another vendor id than the host bridges of their processors.
struct VendorPair {
    unsigned bridge;
    unsigned graphics;
};
constexpr std::array<VendorPair, 1> kSecondVendors{{{0x1022, 0x1002}}};

/// "ssss:bb:dd.f", all hexadecimal; false for another name.
bool readPlace(const std::string& name, PciFunction& out) {
    struct Part {
        unsigned& value;
        char end;
    };
    const char* at = name.data();
    const char* const end = at + name.size();
    for (const Part& part :
         {Part{out.segment, ':'}, Part{out.bus, ':'}, Part{out.device, '.'}, Part{out.function, '\0'}}) {
        const auto number = std::from_chars(at, end, part.value, 16);
        if (number.ec != std::errc() ||
            (part.end == '\0' ? number.ptr != end : number.ptr == end || *number.ptr != part.end)) {
            return false;
        }
        at = number.ptr + 1;
    }
    // What the record cannot hold (segments that a virtual bridge makes up) must not show as another place.
    return out.segment <= 0xFFFF && out.bus <= 0xFF && out.device <= 0x1F && out.function <= 7;
}

std::vector<PciFunction> functionsOf(const pwr::MachineFiles& machine) {
    const std::string folder = "/sys/bus/pci/devices";
    std::vector<std::string> names;
    machine.list(folder, names);
    std::vector<PciFunction> functions;
    for (const std::string& name : names) {
        PciFunction function;
        const std::string path = folder + "/" + name;
        function.vendor = numberOf(textOf(machine, path + "/vendor")) & 0xFFFF;
        function.deviceId = numberOf(textOf(machine, path + "/device")) & 0xFFFF;
        function.classCode = numberOf(textOf(machine, path + "/class"));
        function.name = textOf(machine, path + "/label");
        if (readPlace(name, function) && function.vendor != 0) {
            functions.push_back(std::move(function));
        }
    }
    return functions;
}

void nameFunctions(const pwr::MachineFiles& machine, std::vector<PciFunction>& functions) {
    std::set<PciId> wanted;
    for (const PciFunction& function : functions) {
        if (function.name.empty()) {
            wanted.emplace(function.vendor, function.deviceId);
        }
    }
    std::map<PciId, std::string> names;
    for (std::size_t i = 0; i < kIdLists.size() && names.empty() && !wanted.empty(); ++i) {
        names = pciNames(textOf(machine, kIdLists[i]), wanted);
    }
    for (PciFunction& function : functions) {
        if (function.name.empty()) {
            function.name = names[{function.vendor, function.deviceId}];
            if (function.name.empty() || function.name.back() == ' ') {
                function.name += pciClassName(function.classCode);
            }
        }
    }
}

/// The processor's own graphics sits on the first bus beside the host bridge and is of the same maker.
unsigned integratedGraphics(const std::vector<PciFunction>& functions) {
    const auto bridge = std::find_if(functions.begin(), functions.end(), [](const PciFunction& function) {
        return function.segment == 0 && function.bus == 0 && function.device == 0 && function.function == 0;
    });
    if (bridge == functions.end()) {
        return 0;
    }
    const auto isSameMaker = [&](unsigned vendor) {
        return vendor == bridge->vendor ||
               std::any_of(kSecondVendors.begin(), kSecondVendors.end(), [&](const VendorPair& pair) {
                   return pair.bridge == bridge->vendor && pair.graphics == vendor;
               });
    };
    const auto graphics = std::find_if(functions.begin(), functions.end(), [&](const PciFunction& function) {
        return function.segment == 0 && function.bus == 0 && function.classCode >> 16U == kDisplayClass &&
               isSameMaker(function.vendor);
    });
    return graphics == functions.end() ? 0 : graphics->deviceId;
}

} // namespace

void describePci(const pwr::MachineFiles& machine, bool isLive, pwr::SystemMetadata& system) {
    std::vector<PciFunction> functions = functionsOf(machine);
    if (functions.empty() && isLive) {
        functions = pwr::platform::pciFunctions();
    }
    std::sort(functions.begin(), functions.end(), [](const PciFunction& a, const PciFunction& b) {
        return std::tie(a.segment, a.bus, a.device, a.function) <
               std::tie(b.segment, b.bus, b.device, b.function);
    });
    nameFunctions(machine, functions);
    system.igfxId = integratedGraphics(functions);
    for (const PciFunction& function : functions) {
        system.pciDevices.push_back(
            {static_cast<pw_u16_t>(function.segment), static_cast<pw_u8_t>(function.bus),
             static_cast<pw_u8_t>(function.device), static_cast<pw_u8_t>(function.function),
             static_cast<pw_u16_t>(function.vendor), static_cast<pw_u16_t>(function.deviceId),
             function.name});
    }
}

} // namespace tarnwell
