#include "tarnwell/machine_text.h"

#include "common/line_reader.h"

#include <algorithm>
#include <charconv>

namespace tarnwell {

using pwr::MachineStatus;

MachineStatus NoFiles::read(const std::string& /*path*/, std::string& out) const {
    out.clear();
    return MachineStatus::MISSING;
}

MachineStatus NoFiles::list(const std::string& /*path*/, std::vector<std::string>& names) const {
    names.clear();
    return MachineStatus::MISSING;
}

MachineStatus NoFiles::readLink(const std::string& /*path*/, std::string& target) const {
    target.clear();
    return MachineStatus::MISSING;
}

bool NoFiles::exists(const std::string& /*path*/) const {
    return false;
}

std::unique_ptr<pwr::MachineFile> NoFiles::open(const std::string& /*path*/, MachineStatus& status) const {
    status = MachineStatus::MISSING;
    return nullptr;
}

std::string textOf(const pwr::MachineFiles& machine, const std::string& path) {
    std::string text;
    if (machine.read(path, text) != MachineStatus::OK) {
        return {};
    }
    const std::size_t last = text.find_last_not_of(" \n\r\t");
    return last == std::string::npos ? std::string() : text.substr(0, last + 1);
}

std::uint32_t numberOf(const std::string& text) {
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const char* const begin = text.data() + (isHexadecimal ? 2 : 0);
    std::uint32_t value = 0;
    std::from_chars(begin, text.data() + text.size(), value, isHexadecimal ? 16 : 10);
    return value;
}

std::map<std::string, std::string> factsOf(const std::string& text, char separator) {
    std::map<std::string, std::string> facts;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        at = end + 1;
        if (line.empty()) {
            break;
        }
        const std::size_t middle = line.find(separator);
        if (middle == std::string::npos) {
            continue;
        }
        std::string value = pwr::LineReader::trim(line.substr(middle + 1));
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
            value = value.substr(1, value.size() - 2);
        }
        facts.emplace(pwr::LineReader::trim(line.substr(0, middle)), value);
    }
    return facts;
}

} // namespace tarnwell
