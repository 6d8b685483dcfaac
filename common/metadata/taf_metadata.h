#pragma once

#include "common/export.h"
#include "common/metadata/platform_metadata.h"
#include "common/pw_types.h"

#include <list>
#include <set>
#include <string>
#include <vector>

namespace pwr {

/// The telemetry endpoints of the machine that a collection ran on, whose GUIDs are the specifier
/// values. Has no platform type and no part of its own in a saved collection: the endpoints stand in
/// the system record.
class KRCOMMON_API TAFMetadata : public PlatformMetadata {
public:
    TAFMetadata();

    /// Takes these GUIDs, numbers separated by ",", in place of the machine's. False and an error when one is no
    /// number; nothing is changed then.
    bool setTAF(const std::string& text);

    /// Also warns of GUIDs that the machine lacks and a platform of the list is described with, whatever found it:
    /// so the telemetry is asked last.
    int getPlatformNames(TWConfigFileParser* parser, std::list<std::string>& names,
                         SystemMetadata& system) override;
    /// Only a machine with telemetry can lack its description.
    bool shouldPrintMessageOnNoMatch() const override;

protected:
    /// "GUID=0x1" for each GUID of the loaded endpoints, the emulated ones in place of the real ones.
    int initAndGetValue_i(const SystemMetadata& system, std::vector<std::string>& values) override;

private:
    void retrieveGUIDs_i();

    std::set<pw_u32_t> m_guids;
};

} // namespace pwr
