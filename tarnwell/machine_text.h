#pragma once

#include "common/machine_files.h"

#include <cstdint>
#include <map>
#include <string>

namespace tarnwell {

/// The files of a machine whose system keeps its facts elsewhere: what lies at such paths there describes
/// another system.
class NoFiles : public pwr::MachineFiles {
public:
    pwr::MachineStatus read(const std::string& path, std::string& out) const override;
    pwr::MachineStatus list(const std::string& path, std::vector<std::string>& names) const override;
    pwr::MachineStatus readLink(const std::string& path, std::string& target) const override;
    bool exists(const std::string& path) const override;
    std::unique_ptr<pwr::MachineFile> open(const std::string& path,
                                           pwr::MachineStatus& status) const override;
};

/// A small file's text without the line end and blanks behind it; "" when it cannot be read.
std::string textOf(const pwr::MachineFiles& machine, const std::string& path);

/// The number with which a text begins, decimal or behind "0x" hexadecimal; 0 when it begins with none that fits.
std::uint32_t numberOf(const std::string& text);

/// Facts by name, from the lines of a text: name, separator, value. Blanks around both and quotation marks
/// around a value are left out; the first line of a name counts; an empty line ends the text.
std::map<std::string, std::string> factsOf(const std::string& text, char separator);

} // namespace tarnwell
