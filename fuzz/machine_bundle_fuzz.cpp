#include "common/machine_bundle.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

// Any bytes are either a bundle, whose every path then answers and which can be captured and read again,
// or a reason that names the line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    std::string reason;
    const auto machine = pwr::MachineBundle::parse("input", text, reason);
    if (!machine) {
        if (!reason.starts_with("input:")) {
            std::abort();
        }
        return 0;
    }
    std::vector<std::string> patterns;
    std::string pattern;
    for (int depth = 0; depth < 6; ++depth) {
        pattern += "/*";
        patterns.push_back(pattern);
    }
    std::string content;
    std::vector<std::string> names;
    for (const std::string& path : pwr::matchPaths(*machine, patterns.back())) {
        machine->read(path, content);
        machine->list(path, names);
        machine->readLink(path, content);
    }
    pwr::BundleWriter writer(*machine, patterns);
    writer.capture(1);
    const std::string copy = writer.text();
    if (!pwr::MachineBundle::parse("copy", copy, reason)) {
        std::abort();
    }
    return 0;
}
