#include "common/platform/pci.h"

#include "common/platform/win32/wide_text.h"

#include <algorithm>
#include <cwchar>
#include <memory>
#include <type_traits>

#include <setupapi.h>

namespace pwr::platform {
namespace {

struct DestroyList {
    void operator()(HDEVINFO list) const { SetupDiDestroyDeviceInfoList(list); }
};
using DeviceList = std::unique_ptr<std::remove_pointer_t<HDEVINFO>, DestroyList>;

class Device {
public:
    Device(HDEVINFO list, SP_DEVINFO_DATA& data) : m_list(list), m_data(data) {}

    bool number(DWORD property, DWORD& value) const {
        DWORD type = 0;
        return SetupDiGetDeviceRegistryPropertyW(m_list, &m_data, property, &type,
                                                 reinterpret_cast<BYTE*>(&value), sizeof value,
                                                 nullptr) != 0 &&
               type == REG_DWORD;
    }

    /// A text, or several with a null behind each.
    std::wstring text(DWORD property) const {
        std::wstring buffer(2048, L'\0');
        const auto size = static_cast<DWORD>((buffer.size() - 2) * sizeof(wchar_t)); // the rest stays null
        const BOOL isRead = SetupDiGetDeviceRegistryPropertyW(
            m_list, &m_data, property, nullptr, reinterpret_cast<BYTE*>(buffer.data()), size, nullptr);
        return isRead != 0 ? buffer : std::wstring();
    }

private:
    HDEVINFO m_list;
    SP_DEVINFO_DATA& m_data;
};

/// The hexadecimal number behind a mark such as "VEN_" in an identification; false without the mark.
bool numberBehind(const std::wstring& text, const wchar_t* mark, unsigned long& value) {
    const std::size_t at = text.find(mark);
    if (at == std::wstring::npos) {
        return false;
    }
    value = std::wcstoul(text.c_str() + at + std::wcslen(mark), nullptr, 16);
    return true;
}

bool readFunction(const Device& device, PciFunction& out) {
    unsigned long vendor = 0;
    unsigned long deviceId = 0;
    const std::wstring identification = device.text(SPDRP_HARDWAREID);
    if (!numberBehind(identification, L"VEN_", vendor) || !numberBehind(identification, L"DEV_", deviceId) ||
        vendor == 0) {
        return false; // no vendor has the number 0: emulations stand in with it
    }
    out.vendor = static_cast<unsigned>(vendor);
    out.deviceId = static_cast<unsigned>(deviceId);
    // "CC_" and four or six digits; the first identification that has it may have either form.
    const std::wstring general = device.text(SPDRP_COMPATIBLEIDS);
    unsigned long classCode = 0;
    if (numberBehind(general, L"CC_", classCode)) {
        const bool isShort = general.find_first_not_of(L"0123456789abcdefABCDEF", general.find(L"CC_") + 3) ==
                             general.find(L"CC_") + 7;
        out.classCode = static_cast<std::uint32_t>(isShort ? classCode << 8U : classCode);
    }
    DWORD bus = 0;
    DWORD address = 0;
    if (device.number(SPDRP_BUSNUMBER, bus) && device.number(SPDRP_ADDRESS, address)) {
        // The segment stands above the eight bits of the bus, the device above the function.
        out.segment = bus >> 8U & 0xFFFF;
        out.bus = bus & 0xFF;
        out.device = address >> 16U & 0xFF;
        out.function = address & 0xFF;
    }
    const std::wstring friendly = device.text(SPDRP_FRIENDLYNAME);
    out.name = narrowText((friendly.empty() ? device.text(SPDRP_DEVICEDESC) : friendly).c_str());
    return true;
}

} // namespace

std::vector<PciFunction> pciFunctions() {
    std::vector<PciFunction> functions;
    const HDEVINFO opened = SetupDiGetClassDevsW(nullptr, L"PCI", nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES);
    if (opened == INVALID_HANDLE_VALUE) {
        return functions;
    }
    const DeviceList list(opened);
    SP_DEVINFO_DATA data{};
    data.cbSize = sizeof data;
    for (DWORD i = 0; SetupDiEnumDeviceInfo(list.get(), i, &data) != 0; ++i) {
        PciFunction function;
        if (readFunction(Device(list.get(), data), function)) {
            functions.push_back(std::move(function));
        }
    }
    return functions;
}

} // namespace pwr::platform
