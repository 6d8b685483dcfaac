#include "common/platform/processor.h"
#include "common/platform/win32/registry.h"

namespace pwr::platform {

ProcessorSettings processorSettings() {
    const wchar_t* const key = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
    ProcessorSettings settings;
    // The register that the value is a copy of has the revision in its upper half.
    const std::vector<unsigned char> update = registryBytes(key, L"Update Revision");
    if (update.size() == 8) {
        for (std::size_t i = 8; i-- > 4;) {
            settings.microcodeRevision = settings.microcodeRevision << 8U | update[i];
        }
    }
    settings.platformId = registryNumber(key, L"Platform ID");
    settings.nominalMHz = registryNumber(key, L"~MHz");
    return settings;
}

} // namespace pwr::platform
