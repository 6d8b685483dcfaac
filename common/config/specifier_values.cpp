#include "common/config/specifier_values.h"

#include <cstddef>
#include <limits>
#include <string>

#include "common/config/statement.h"
#include "common/pw_utils.h"

namespace pwr {

namespace {

template <class Integer> bool readWhole(std::string_view text, Integer& value) {
    return extract_number_i(std::string(text), value) == 0;
}

/// A key, "=" and a hexadecimal number; "0x" must stand before it.
bool readHexAssignment(std::string_view text, std::string_view key, pw_u32_t& value) {
    if (!text.starts_with(key)) {
        return false;
    }
    text.remove_prefix(key.size());
    return (text.starts_with("0x") || text.starts_with("0X")) && readWhole(text, value);
}

} // namespace

bool readFMSValue(std::string_view text, FMSValue& value) {
    FMSValue read;
    pw_u8_t* const fields[] = {&read.family, &read.model, &read.stepping};
    std::size_t count = 0;
    for (bool isLast = false; !isLast; ++count) {
        const std::size_t dot = text.find('.');
        isLast = dot == std::string_view::npos;
        if (count == 3 || !readWhole(text.substr(0, dot), *fields[count])) {
            return false;
        }
        text.remove_prefix(isLast ? text.size() : dot + 1);
    }
    if (count < 2) {
        return false;
    }
    value = read;
    return true;
}

bool readPCIValue(std::string_view text, PCIValue& value) {
    const std::size_t comma = text.find(',');
    return comma != std::string_view::npos &&
           readPCIValue(trimBlanks(text.substr(0, comma)), trimBlanks(text.substr(comma + 1)), value);
}

bool readPCIValue(std::string_view vendor, std::string_view device, PCIValue& value) {
    PCIValue read;
    if (!readHexAssignment(vendor, "VENDOR=", read.vendor) ||
        !readHexAssignment(device, "DEVICE=", read.device)) {
        return false;
    }
    value = read;
    return true;
}

bool readGUIDValue(std::string_view text, pw_u32_t& guid) {
    return readHexAssignment(trimBlanks(text), "GUID=", guid);
}

bool readInteger32(std::string_view text, std::int64_t& value) {
    std::int64_t read = 0;
    if (!readWhole(text, read) || read < std::numeric_limits<std::int32_t>::min() ||
        read > std::numeric_limits<pw_u32_t>::max()) {
        return false;
    }
    value = read;
    return true;
}

} // namespace pwr
