#pragma once

#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/serializer.h"
#include "common/metadata/system_metadata.h"

#include <memory>
#include <string>
#include <vector>

namespace tests {

using Bytes = std::vector<char>;

/// The collection of docs/formats/system-record.md: every item holds something.
inline void fillExample(pwr::SystemMetadata& r) {
    r.sidMap = {{2, "clk-tsc"}};
    r.driverVersion = pwr::packSavedVersion(2025, 4, 0);
    r.scuVersion = 7;
    r.platformName = "Heron";
    r.hostName = "lab3";
    r.osName = "Linux";
    r.osType = "x86_64";
    r.osVersion = "6.1";
    r.twaClockFreq = 2400.0F;
    r.startTSC = 1000;
    r.stopTSC = 12000001000;
    r.startTimeval = 1763700000250000;
    r.stopTimeval = 1763700005250000;
    r.pollingInterval = 100;
    r.immediateMode = true;
    r.cmdLine = {"--time", "5"};
    r.producedSamples = 250;
    r.droppedSamples = 3;
    r.lowOverheadMode = true;
    r.platformSpecifiers = {{"BOARD", "rev 2"}, {"DOCK", ""}};
    r.hyperVEnabled = true;
    r.edramCapable = true;
    r.igfxId = 0x9A49;
    r.driverBuildDate = "2025-09-01";
    r.programStartTimeval = 1763699999000000;
    r.programStopTimeval = 1763700006000000;
    r.appBuildDate = "2025-10-02";
    r.continuousQuantum = 60;
    r.clockSyncs = {{"clk-qpc", "QPC", 10.0F, 555, "clk-tsc", "TSC", 2400.0F, 1000}};
    r.hvciEnabled = true;
    r.buildRef = "b17";
    r.packageType = "BGA";
    r.vtioEnabled = true;
    r.tafEndpoints = {{4, {0xFEDC0000, 0x1A2B, 64, 4, 8, 1}}, {20, {0xFEDC1000, 0x1A2B, 64, 20, 8, 1}}};
    r.pciDevices = {{0, 0, 2, 0, 0x1234, 0x9A49, "Display"}, {1, 3, 31, 7, 0x1234, 0x00FF, ""}};

    auto cpu = std::make_unique<pwr::CPUMetadata>();
    cpu->setDisplayName("Heron 8");
    cpu->addSpecifierValue("6.140.1");
    cpu->addMetadataValue("S0IX-SUBSTATES-SOC", "0 1");
    cpu->setFMS(6, 140, 1);
    cpu->busFreq = 100.0F;
    cpu->lfmFreq = 400.0F;
    cpu->hfmFreq = 2800.0F;
    cpu->baseOpFreq = 2400.5F;
    cpu->platformId = 5;
    cpu->microcodeRevision = 0xB6;
    cpu->buildTopology("0 0 0 0x40000001 -1 -1  1 0 0 0x40000001 -1 -1  0 0 4 0x20000001 -1 1", 0);
    cpu->buildHWQFeedbackMapping("0 3");
    tw_driver_topology_change change{};
    change.timestamp = 77;
    change.type = 1;
    change.cpu = 2;
    change.core = 4;
    cpu->addTopologyChange(pwr::TopologyChange(change, 4));
    r.setPlatformMetadata(pwr::PlatformType::CPU, cpu.release());

    auto chipset = std::make_unique<pwr::CXHMetadata>();
    chipset->setDisplayName("Heron hub");
    chipset->addRegisterEntry(0x0100, 0xA5);
    r.setPlatformMetadata(pwr::PlatformType::CXH, chipset.release());
}

inline Bytes bytesOf(const pwr::Metadata& record) {
    pwr::Serializer out(0);
    record.serialize(out);
    return out.get_buffer();
}

/// A record whose body can be read on its own.
struct ReadableRecord : pwr::SystemMetadata {
    int readBody(const Bytes& body) {
        pwr::Serializer in(body);
        return deserialize_i(in, 0);
    }
};

} // namespace tests
