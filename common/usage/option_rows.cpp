#include "common/usage/option_rows.h"

#include <array>

namespace pwr::usage {
namespace {

constexpr OptionRow kGeneral[] = {
    {.name = "--help", .description = "Display this text and end", .abbreviation = "-h"},
    {.name = "--version", .description = "Display the version and end"},
    {.name = "--log",
     .description = "Write all messages (errors, warnings, notes) to this file, too; a file of that name is "
                    "replaced",
     .arg = "<file>",
     .argType = "file"},
    {.name = "--print-fms",
     .description = "Display the family.model.stepping of the processor and end",
     .notes = "The form in which hardware descriptions name processors."},
};

constexpr OptionRow kCollection[] = {
    {.name = "--feature",
     .description = "Collect (or report) this feature, or group of features, only; repeat for more. Without "
                    "<name>: list what the machine offers",
     .arg = "<name>",
     .abbreviation = "-f",
     .argDefault = "all that the machine offers",
     .argType = "text",
     .notes = "Options of a feature follow its name: <name>:<option>=<value>, each behind a colon."},
    {.name = "--no-post-processing",
     .description = "Collect and save only; report later, with --input",
     .notes = "Leaves the processor to what is measured: no table is computed."},
    {.name = "--max-detail", .description = "Collect what is only wanted at the highest detail, too"},
    {.name = "--interval",
     .description = "Change minimum time between collection points [default 100 ms]",
     .arg = "<milliseconds>",
     .abbreviation = "-i",
     .argDefault = "100",
     .argUnits = "ms",
     .argType = "integer",
     .notes = "1 to 60000."},
    {.name = "--startdelay",
     .description = "Wait before the collection begins [default 0 s]",
     .arg = "<seconds>",
     .argDefault = "0",
     .argUnits = "s",
     .argType = "number"},
    {.name = "--time",
     .description =
         "Collect for so long; with a program: at most so long [default until Ctrl-C, or until the "
         "program ends]",
     .arg = "<seconds>",
     .abbreviation = "-t",
     .argUnits = "s",
     .argType = "number",
     .notes = "0.001 to 31622400 (366 days)."},
    {.name = "--auto-connected-standby",
     .description = "Put the machine into connected standby while collecting [no effect on this system]",
     .notes = "The machine's power state is never changed. Let a program of yours do it while this collects: "
              "--program \"rtcwake -m freeze -s 60\" is one on Linux."},
    {.name = "--program-delay",
     .description = "Start the program so long after the begin of the collection [default 0 s]",
     .arg = "<seconds>",
     .argDefault = "0",
     .argUnits = "s",
     .argType = "number",
     .notes = "The collection then shows the machine before the program, too."},
    {.name = "--polling",
     .description = "Collect by polling only [no effect: counters are always polled on this system]",
     .notes = "How often is --interval's matter."},
    {.name = "--program",
     .description = "Run this command line, and collect while it runs; as -- <command> does",
     .arg = "<command>",
     .argType = "command",
     .notes = "Blanks separate its words; quotes (' or \") keep them together. No shell reads it."},
};

constexpr OptionRow kPostProcessing[] = {
    {.name = "--input",
     .description = "Collect nothing: report from this saved collection",
     .arg = "<file>",
     .argType = "file"},
    {.name = "--output",
     .description =
         "Write the results to files, too: <prefix>.txt, and <prefix>_*.csv for each table [default "
         "TarnwellOutput where --result asks for files]",
     .arg = "<prefix>",
     .abbreviation = "-o",
     .argDefault = "TarnwellOutput",
     .argType = "file",
     .notes = "Without --output and --result nothing but the saved collection is written to files."},
    {.name = "--result-slice-range",
     .description = "Report this span of the collection only, in msec from its begin; either end may be left "
                    "out: 1000-, -5000",
     .arg = "<begin>-<end>",
     .argDefault = "all of it",
     .argUnits = "ms",
     .argType = "text",
     .notes = "The whole collection is saved all the same. A counter's first reading in the span is what its "
              "differences begin with."},
    {.name = "--result",
     .description =
         "Give the results in this form only; repeat for more. text: on the standard output; csv: a "
         "file for each table; none: not at all",
     .arg = "<form>",
     .argDefault = "all forms",
     .argType = "word",
     .validArgs = "text,csv,none"},
};

constexpr const char* kAllBlocks = "Block names separated by \",\".";

constexpr OptionRow kGbe[] = {
    {.name = "gbe-int",
     .description = "Change time between readings of the Ethernet controller [default 1000 ms]",
     .arg = "<milliseconds>",
     .argDefault = "1000",
     .argUnits = "ms",
     .argType = "integer"},
};

constexpr OptionRow kPcie[] = {
    {.name = "pcie-lpm",
     .description = "Time in link power states of PCI Express ports",
     .notes = "Ports that the system lists."},
    {.name = "no-device-filter", .description = "Also devices that have no driver, or are turned off"},
    {.name = "acpi-dstate", .description = "Device power states as the firmware's tables name them"},
};

constexpr OptionRow kCxh[] = {
    {.name = "cxh-int",
     .description = "Change time between readings of the chipset hub [default 5000 ms]",
     .arg = "<milliseconds>",
     .argDefault = "5000",
     .argUnits = "ms",
     .argType = "integer"},
    {.name = "soc-cxh-ip-active",
     .description = "Active time of blocks of the hub in the processor's package",
     .arg = "<blocks>",
     .argDefault = "all",
     .argType = "text",
     .notes = kAllBlocks},
    {.name = "cxh-ip-active",
     .description = "Active time of blocks of the hub",
     .arg = "<blocks>",
     .argDefault = "all",
     .argType = "text",
     .notes = kAllBlocks},
    {.name = "ext-cxh-ip-active",
     .description = "Active time of blocks of an external hub",
     .arg = "<blocks>",
     .argDefault = "all",
     .argType = "text",
     .notes = kAllBlocks},
    {.name = "ioe-cxh-ip-active",
     .description = "Active time of blocks of the I/O extension's hub",
     .arg = "<blocks>",
     .argDefault = "all",
     .argType = "text",
     .notes = kAllBlocks},
    {.name = "pcd-ip-active",
     .description = "Active time of blocks of the platform controller die",
     .arg = "<blocks>",
     .argDefault = "all",
     .argType = "text",
     .notes = kAllBlocks},
    {.name = "lat-limit-ip",
     .description = "Which blocks kept the latency limit low",
     .arg = "<blocks>",
     .argDefault = "all",
     .argType = "text",
     .notes = kAllBlocks},
    {.name = "cxh-ip-lat-limit",
     .description = "Latency limits that blocks of the hub ask for",
     .arg = "<blocks>",
     .argDefault = "all",
     .argType = "text",
     .notes = "The valid ones are those of the running machine.",
     .validArgs = "all"},
};

constexpr OptionRow kTcss[] = {
    {.name = "tcss-ip",
     .description = "Active time of blocks of the Type-C subsystem",
     .arg = "<blocks>",
     .argDefault = "all",
     .argType = "text",
     .notes = kAllBlocks},
    {.name = "disable-iom-wakeup",
     .description = "Do not wake the Type-C subsystem's controller to read it",
     .notes = "What sleeps then gives no value."},
    {.name = "tcss-state-res", .description = "Time in the power states of the Type-C subsystem"},
    {.name = "tcss-pm-dbg",
     .description = "Power management events of the Type-C subsystem's blocks",
     .arg = "<blocks>",
     .argDefault = "all",
     .argType = "text",
     .notes = "The valid ones are those of the running machine.",
     .validArgs = "all"},
};

constexpr OptionGroup kFeatures[] = {{"gbe", kGbe}, {"pcie", kPcie}, {"cxh", kCxh}, {"tcss", kTcss}};

} // namespace

std::span<const OptionRow> generalRows() {
    return kGeneral;
}

std::span<const OptionRow> collectionRows() {
    return kCollection;
}

std::span<const OptionRow> postProcessingRows() {
    return kPostProcessing;
}

std::span<const OptionGroup> featureGroups() {
    return kFeatures;
}

} // namespace pwr::usage
