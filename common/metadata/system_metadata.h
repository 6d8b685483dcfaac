#pragma once

#include "common/driver_interface.h"
#include "common/export.h"
#include "common/metadata/metadata.h"
#include "common/metadata/platform_metadata.h"
#include "common/metadata/saved_version.h"
#include "common/pw_types.h"
#include "common/tw_clock.h"

#include <deque>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

class CPUMetadata;

/// A PCI device of the machine that a collection ran on: where it is, what it is, how it is called
/// ("" when nobody knows).
struct PCIDevice {
    pw_u16_t segment = 0;
    pw_u8_t bus = 0;
    pw_u8_t device = 0;
    pw_u8_t function = 0;
    pw_u16_t vendor = 0;
    pw_u16_t deviceId = 0;
    std::string name;
};

/// The one record that describes a collection as a whole: versions, machine and operating system,
/// clocks and times, command line, sample counts, and the platform objects, which it owns.
/// The fields stand in the order in which they are saved. Frequencies are in MHz, time values
/// ("timeval") in microseconds since 1970 UTC, ticks are those of the default clock.
/// platformName, hostName, osName, osType and osVersion must be filled before saving, and the
/// command line must not hold empty arguments: a saved record without them cannot be read back.
class KRCOMMON_API SystemMetadata : public Metadata {
public:
    SystemMetadata();
    ~SystemMetadata() override;
    SystemMetadata(const SystemMetadata&) = delete;
    SystemMetadata& operator=(const SystemMetadata&) = delete;
    SystemMetadata(SystemMetadata&&) noexcept;
    SystemMetadata& operator=(SystemMetadata&&) noexcept;

    std::map<pw_u32_t, std::string> sidMap;      ///< stream id to clock UUID; UUIDs are not empty
    pw_u32_t appVersion = c_currentSavedVersion; ///< format version of the record, packed
    pw_u32_t driverVersion = 0;                  ///< packed as appVersion
    pw_u32_t scuVersion = 0;
    std::string platformName;
    std::string hostName;
    std::string osName;
    std::string osType;
    std::string osVersion;
    float twaClockFreq = 0.0F;        ///< frequency of the default clock, MHz
    pw_u64_t startTSC = 0;            ///< reading of the default clock at collection begin
    pw_u64_t stopTSC = 0;             ///< the same at collection end
    pw_u64_t startTimeval = 0;        ///< collection begin
    pw_u64_t stopTimeval = 0;         ///< collection end
    pw_u16_t pollingInterval = 0;     ///< milliseconds
    bool immediateMode = false;       ///< single readings without sampling over time
    std::vector<std::string> cmdLine; ///< arguments of the collection
    pw_u64_t producedSamples = 0;
    pw_u64_t droppedSamples = 0;
    bool lowOverheadMode = false;
    std::vector<std::pair<std::string, std::string>> platformSpecifiers; ///< (name, value)
    bool hyperVEnabled = false;
    bool vsmEnabled = false;
    bool edramCapable = false;
    pw_u32_t igfxId = 0; ///< PCI device id of the integrated graphics, 0 for none
    std::string driverBuildDate;
    pw_u64_t programStartTimeval = 0;
    pw_u64_t programStopTimeval = 0;
    std::string appBuildDate;
    pw_u32_t continuousQuantum = 0; ///< length of one piece of a continuous collection, seconds; 0 for none
    std::deque<TWClockSync> clockSyncs; ///< readings of other clocks taken together with the default clock
    bool hvciEnabled = false;
    std::string nonNumericVersion;
    std::string buildRef;
    std::string packageType;
    bool vtioEnabled = false;
    std::map<pw_u16_t, _tw_aggregator_info> tafEndpoints; ///< endpoint id to endpoint
    std::vector<PCIDevice> pciDevices;
    std::map<PlatformType, std::unique_ptr<PlatformMetadata>> platformMetadata;

    /// Whether a reader of the saved record would find all of it again: no needed text is empty, and nothing is longer
    /// than its count can tell. Leaves the current topology alone.
    bool survivesSaving() const;

    /// Takes ownership of the object and replaces (deletes) an earlier one of the type; null removes it.
    void setPlatformMetadata(PlatformType type, PlatformMetadata* object);
    /// Null when there is no object of the type.
    PlatformMetadata* getPlatformMetadata(PlatformType type);
    const PlatformMetadata* getPlatformMetadata(PlatformType type) const;

    /// The platform object of the processor; null when there is none, or when what stands under its
    /// type is no CPUMetadata.
    CPUMetadata* getCPUMetadata();
    const CPUMetadata* getCPUMetadata() const;

    /// A time value as "2026-11-21 05:23:51 UTC"; "NA" for 0, which is an unknown time, and for times
    /// after the year 9999.
    static std::string formatTimevalAsString(pw_u64_t timeval);
    /// When the collection began, and when the program was started, in that form.
    std::string getCollectionStartTime() const;
    std::string getProgramStartTime() const;
    /// Seconds from begin to end of the collection: by the time values, or by the default clock where they
    /// are unknown or went backwards; 0 when neither tells.
    double getCollectionDurationSec() const;

    // The headers of a report. What is not known is shown as "NA", or its line is left out where nothing
    // but the processor's object could fill it. Only this record decides what they say, except that a
    // record without synchronised clocks names the default clock of the environment.

    /// A banner between two lines of dashes: product and version; when detailed, also what is known of the
    /// build and of the driver.
    std::string getVersionHeader(bool isDetailed) const;
    /// Command line, times, clock and duration of the collection.
    std::string getCollectionHeader() const;
    /// The machine: system, processor, devices and topology. The S0ix states of a die are those that a
    /// platform object lists in its metadata value "S0IX-SUBSTATES-" + die name: numbers separated by
    /// blanks or commas, so that "0 1" of the die SOC gives "S0i2.0, S0i2.1".
    std::string getSystemHWHeader() const;

protected:
    /// Writes the record in the form of docs/formats/system-record.md, whatever its version says, and
    /// makes its version the one that the process handles. Platform objects that could not be read back
    /// are left out: null, or of another kind than their type.
    void serialize_i(Serializer& out) const override;
    /// Reads the record in place of this one. -1, after a warning, when something is missing that every
    /// collection has. From the sample counts on, what a collection before 2025.3.1 does not hold keeps
    /// its default; a later one must be whole, because its platform objects stand at the end. Afterwards
    /// the entities of the processor topology are those of this record.
    int deserialize_i(Serializer& in, unsigned reserved) override;
};

/// The record as text for people, one item a line.
KRCOMMON_API std::ostream& operator<<(std::ostream& out, const SystemMetadata& system);

} // namespace pwr
