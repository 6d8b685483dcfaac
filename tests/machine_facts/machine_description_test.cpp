#include "tarnwell/machine_description.h"

#include "common/machine_bundle.h"
#include "common/metadata/cpu_metadata.h"
#include "common/platform/file.h"
#include "common/pw_utils.h"
#include "tarnwell/capture.h"
#include "tarnwell/clock_moments.h"
#include "tarnwell/settings.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

namespace {

std::string bytesLine(const char* path, const std::string& content) {
    return std::string("file ") + path + " " + std::to_string(content.size()) + "\n" + content + "\n";
}

std::unique_ptr<pwr::MachineFiles> machineOf(const std::string& entries) {
    std::string reason;
    auto machine = pwr::MachineBundle::parse("test", "tarnwell-machine 1\n@1\n" + entries + "end\n", reason);
    EXPECT_NE(nullptr, machine) << reason;
    return machine;
}

/// All that the record says of a machine, one fact a line.
std::string factsOf(const pwr::MachineFiles& machine) {
    pwr::SystemMetadata system;
    tarnwell::describeMachine(machine, false, system);
    const pwr::CPUMetadata& cpu = *system.getCPUMetadata();
    std::ostringstream out;
    out << system.hostName << '|' << system.osName << '|' << system.osType << '|' << system.osVersion << '|'
        << system.platformName << "\nfms " << int{cpu.getFamily()} << '.' << int{cpu.getModel()} << '.'
        << int{cpu.getStepping()} << " MHz " << cpu.busFreq << ' ' << cpu.lfmFreq << ' ' << cpu.hfmFreq << ' '
        << cpu.baseOpFreq << " microcode " << cpu.microcodeRevision << " id " << cpu.platformId << '\n';
    for (const auto& [name, value] : cpu.getMetadataValues()) {
        out << name << '=' << value << '\n';
    }
    for (const auto& [name, value] : system.platformSpecifiers) {
        out << name << ": " << value << '\n';
    }
    for (const pwr::PCIDevice& device : system.pciDevices) {
        out << device.segment << ':' << int{device.bus} << ':' << int{device.device} << '.'
            << int{device.function} << ' ' << device.vendor << ' ' << device.deviceId << ' ' << device.name
            << '\n';
    }
    out << "graphics " << system.igfxId << '\n';
    return out.str();
}

std::string pciEntries(const std::string& place, const char* vendor, const char* device, const char* kind) {
    const std::string folder = "line /sys/bus/pci/devices/" + place + "/";
    return folder + "vendor " + vendor + "\n" + folder + "device " + device + "\n" + folder + "class " +
           kind + "\n";
}

TEST(MachineDescription, saysWhatTheFilesOfARecordedMachineHold) {
    const std::string unknown =
        "unknown|unknown|unknown|unknown|unknown\nfms 0.0.0 MHz 0 0 0 0 microcode 0 id 0\n";
    struct Case {
        const char* name;
        std::string entries;
        std::string facts;
    };
    const std::string bridge = pciEntries("0000:00:00.0", "0x1111", "0x0001", "0x060000");
    const std::vector<Case> cases = {
        {"nothing known, and nothing taken from the system of the test", "", unknown + "graphics 0\n"},
        {"all of a governed processor",
         "line /proc/sys/kernel/hostname h\nline /proc/sys/kernel/ostype Linux\n"
         "line /proc/sys/kernel/arch x86_64\nline /proc/sys/kernel/osrelease 6.1\n" +
             bytesLine("/proc/cpuinfo",
                       "processor\t: 0\nvendor_id\t: Maker\ncpu family\t: 6\nmodel\t\t: 151\n"
                       "model name\t: Best @ 2.10GHz\nstepping\t: 2\nmicrocode\t: 0x2b\n"
                       "cpu MHz\t\t: 1234.5\nflags\t\t: fpu tsc\n\nprocessor\t: 1\nmodel\t: 9\n") +
             "line /sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_min_freq 800000\n"
             "line /sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq 4900000\n"
             "line /sys/devices/system/cpu/cpu8/cpufreq/cpuinfo_min_freq 400000\n"
             "line /sys/devices/system/cpu/cpu8/cpufreq/cpuinfo_max_freq 3600000\n"
             "line /sys/devices/system/cpu/cpu0/microcode/processor_flags 0x80\n",
         "h|Linux|x86_64|6.1|Best @ 2.10GHz\nfms 6.151.2 MHz 0 400 4900 2100 microcode 43 id 128\n"
         "hypervisor=no\nvendor=Maker\ngraphics 0\n"},
        {"the kernel's base frequency goes before the name's",
         bytesLine("/proc/cpuinfo", "model name: B @ 2.10GHz\n") +
             "line /sys/devices/system/cpu/cpu0/cpufreq/base_frequency 2000000\n",
         "unknown|unknown|unknown|unknown|B @ 2.10GHz\nfms 0.0.0 MHz 0 0 0 2000 microcode 0 id 0\ngraphics "
         "0\n"},
        {"a guest: not governed, so its frequency is the base; the hypervisor is told by a flag alone",
         bytesLine("/proc/cpuinfo", "cpu MHz : 2445.5\nflags : fpu hypervisor\n") +
             bytesLine("/etc/os-release", "NAME=\"D\"\nPRETTY_NAME=\"D 12\"\n") +
             "line /sys/class/dmi/id/product_name Board 7\n",
         "unknown|unknown|unknown|unknown|unknown\nfms 0.0.0 MHz 0 0 0 2445.5 microcode 0 id 0\n"
         "hypervisor=yes\ndistribution: D 12\nhypervisor: yes\nsystem product: Board 7\ngraphics 0\n"},
        {"devices in the order of their places, named by the list or by their class",
         pciEntries("0000:0a:1f.7", "0x8888", "0x1000", "0x020000") +
             pciEntries("0000:02:00.0", "0x2222", "0xabcd", "0x010802") +
             pciEntries("0001:00:00.0", "0x2222", "0x0003", "0x0d8000") +
             pciEntries("0000:00:02.0", "0x3333", "0x0002", "0x030000") + bridge +
             bytesLine("/usr/share/misc/pci.ids",
                       "# remark\n2222  Two\n\tabcd  Disk\n\t\t2222 0001  Special\n"
                       "8889  Other\n\t1000  Wrong\nC 88  Class\n\t1000  No\n"),
         unknown + "0:0:0.0 4369 1 host bridge\n0:0:2.0 13107 2 VGA controller\n0:2:0.0 8738 43981 Two Disk\n"
                   "0:10:31.7 34952 4096 Ethernet controller\n1:0:0.0 8738 3 Two wireless "
                   "controller\ngraphics 0\n"},
        {"integrated graphics: a display on the first bus, of the bridge's maker; odd places are no devices",
         bridge + pciEntries("0000:00:02.0", "0x1111", "0x4680", "0x038000") +
             pciEntries("10000:00:03.0", "0x1111", "0x1", "0x030000") +
             pciEntries("0000:01", "0x1", "0x1", "0x1"),
         unknown + "0:0:0.0 4369 1 host bridge\n0:0:2.0 4369 18048 display controller\ngraphics 18048\n"},
    };
    for (const Case& machine : cases) {
        EXPECT_EQ(machine.facts, factsOf(*machineOf(machine.entries))) << machine.name;
    }
}

TEST(MachineDescription, isTheSameFromARecordingOfTheMachine) {
    const auto machine = machineOf(
        pciEntries("0000:00:00.0", "0x1111", "0x0001", "0x060000") +
        pciEntries("0000:00:02.0", "0x1111", "0x4680", "0x030000") +
        bytesLine("/proc/cpuinfo", "cpu family : 6\nmodel name : B\nmicrocode : 0x2b\nflags : hypervisor\n") +
        bytesLine("/usr/lib/os-release", "NAME=D\nID=d\n") +
        "line /proc/sys/kernel/hostname h\nline /proc/sys/kernel/ostype Linux\nline /sys/hypervisor/type x\n"
        "line /proc/sys/kernel/arch x86_64\nline /proc/sys/kernel/osrelease 6.1\n"
        "line /sys/bus/pci/devices/0000:00:02.0/label Onboard\nline /sys/class/dmi/id/sys_vendor V\n"
        "line /sys/class/dmi/id/product_name P\nline /sys/class/dmi/id/bios_version 1\n"
        "line /sys/class/dmi/id/bios_date 2\nline /sys/devices/system/cpu/cpu0/microcode/processor_flags "
        "0x80\n"
        "line /sys/devices/system/cpu/cpu4/cpufreq/base_frequency 2000000\n");
    tarnwell::Settings settings;
    settings.captureFile = pwr::platform::temporaryFolder() + "/machine_facts_" +
                           std::to_string(tarnwell::wallClockMicroseconds()) + ".bundle";
    settings.seconds = 0.001;
    std::string reason;
    ASSERT_EQ(0, tarnwell::captureMachine(*machine, settings, {}, reason)) << reason;
    const auto recorded = pwr::openMachine(settings.captureFile, reason);
    std::remove(settings.captureFile.c_str());
    ASSERT_NE(nullptr, recorded) << reason;
    EXPECT_EQ(factsOf(*machine), factsOf(*recorded));
    EXPECT_EQ(std::string::npos, factsOf(*machine).find("unknown"));
}

TEST(MachineDescription, describesTheRunningSystemAsItself) {
    std::string reason;
    const auto machine = pwr::openMachine("/", reason);
    ASSERT_NE(nullptr, machine) << reason;
    pwr::SystemMetadata system;
    tarnwell::describeMachine(*machine, true, system);
    const pwr::CPUMetadata* const cpu = system.getCPUMetadata();
    ASSERT_NE(nullptr, cpu);
    EXPECT_GT(cpu->getCPUTopology().getNumNodesOfType(pwr::top_node_type::THREAD), 0U);
    for (const std::string* text :
         {&system.hostName, &system.osName, &system.osType, &system.osVersion, &system.platformName}) {
        EXPECT_FALSE(text->empty());
        EXPECT_EQ(std::string::npos, text->find('\n'));
    }
    // Also where another system's files can be seen, as below an emulation.
    const bool isWindows = pwr::PathOps::getPathSeparator() == '\\';
    EXPECT_EQ(isWindows, system.osName.find("Windows") != std::string::npos);
}

} // namespace
