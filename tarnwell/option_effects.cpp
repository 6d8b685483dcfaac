#include "tarnwell/option_effects.h"

#include "tarnwell/feature_words.h"
#include "tarnwell/option_values.h"
#include "tarnwell/shared_rows.h"

#include <algorithm>

namespace tarnwell {
namespace {

using pwr::usage::Section;

constexpr OwnOption kOwn[] = {
    {Section::GENERAL,
     {.name = "--help-json", .description = "Display all options as JSON, for programs, and end"}},
    {Section::GENERAL, {.name = "--quiet", .description = "No progress line, no word on the saved file"}},
    {Section::COLLECTION,
     {.name = "--save",
      .description =
          "Save the collection here [default <prefix>.twc, or tarnwell-<time>.twc without --output]",
      .arg = "<file>",
      .argType = "file"}},
    {Section::COLLECTION, {.name = "--no-save", .description = "Do not save the collection"}},
    {Section::COLLECTION,
     {.name = "--overwrite", .description = "Replace a file that the collection is to be saved in"}},
    {Section::COLLECTION,
     {.name = "--hardware-config",
      .description = "Hardware description on top of the shipped files; repeat for more",
      .arg = "<file>",
      .argType = "file"}},
    {Section::COLLECTION,
     {.name = "--machine",
      .description = "Read the machine from this root folder or captured bundle [default /]",
      .arg = "<place>",
      .argDefault = "/",
      .argType = "file",
      .notes = "tarnwell doctor --capture makes such a bundle. It is read in its own time: at once."}},
    {Section::COLLECTION, kEndpointsText},
    {Section::COLLECTION,
     {.name = "--poll-processor",
      .description =
          "Read all counters on this logical processor: its number, or <group>:<number> [default any]",
      .arg = "<number>",
      .argDefault = "any",
      .argType = "text"}},
    {Section::POST_PROCESSING,
     {.name = "--output-config",
      .description = "Output configuration in the place of the shipped (or saved) files; repeat for more",
      .arg = "<file>",
      .argType = "file"}},
    {Section::POST_PROCESSING,
     {.name = "--add-output-config",
      .description = "Output configuration on top of those files; repeat for more",
      .arg = "<file>",
      .argType = "file"}},
};

void addResultForm(Settings& settings, const std::string& form) {
    settings.resultForms.push_back(nameOf(form, "a form of results: text, csv or none"));
}

constexpr const char* kConfiguration = "a configuration file";

constexpr OptionEffect kEffects[] = {
    {"--help", nullptr, true},
    {"--version", nullptr, true},
    {"--help-json", nullptr, true},
    {"--log",
     [](Settings& s, const std::string& v) { s.logFile = nameOf(v, "the file to write messages to"); }},
    {"--print-fms", [](Settings& s, const std::string&) { s.printsFms = true; }},
    {"--quiet", [](Settings& s, const std::string&) { s.quiet = true; }},
    {"--feature", addFeature, true},
    {"--no-post-processing", [](Settings& s, const std::string&) { s.reports = false; }},
    {"--max-detail", [](Settings& s, const std::string&) { s.maxDetail = true; }},
    {"--interval", [](Settings& s, const std::string& v) { s.intervalMs = intervalOf(v); }},
    {"--startdelay", [](Settings& s, const std::string& v) { s.startDelaySeconds = delaySecondsOf(v); }},
    {"--time", [](Settings& s, const std::string& v) { s.seconds = collectionSecondsOf(v); }},
    {"--auto-connected-standby",
     [](Settings& s, const std::string&) {
         s.remarks.emplace_back(
             "--auto-connected-standby has no effect: the machine's power state is never changed here; let a "
             "program do that while this collects, as --program \"rtcwake -m freeze -s 60\" does on Linux");
     }},
    {"--program-delay", [](Settings& s, const std::string& v) { s.commandDelaySeconds = delaySecondsOf(v); }},
    {"--polling",
     [](Settings& s, const std::string&) {
         s.remarks.emplace_back(
             "--polling has no effect: counters are always polled on this system; --interval "
             "says how often");
     }},
    {"--program", [](Settings& s, const std::string& v) { s.command = wordsOf(v); }},
    {"--input", [](Settings& s,
                   const std::string& v) { s.inputFile = nameOf(v, "the saved collection to report from"); }},
    {"--output",
     [](Settings& s, const std::string& v) {
         s.outputPrefix = nameOf(v, "what the names of the result files start with");
     }},
    {"--result-slice-range", [](Settings& s, const std::string& v) { s.slice = sliceOf(v); }},
    {"--result", addResultForm, true},
    {"--save",
     [](Settings& s, const std::string& v) { s.saveFile = nameOf(v, "the name of the file to save to"); }},
    {"--no-save", [](Settings& s, const std::string&) { s.saves = false; }},
    {"--overwrite", [](Settings& s, const std::string&) { s.overwrite = true; }},
    {"--hardware-config",
     [](Settings& s, const std::string& v) { s.hardwareConfig.push_back(nameOf(v, kConfiguration)); }, true},
    {"--machine",
     [](Settings& s, const std::string& v) { s.machine = nameOf(v, "a root folder or a captured bundle"); }},
    {"--endpoints", setEndpoints},
    {"--poll-processor", [](Settings& s, const std::string& v) { s.pollProcessor = processorOf(v); }},
    {"--output-config",
     [](Settings& s, const std::string& v) { s.outputConfig.push_back(nameOf(v, kConfiguration)); }, true},
    {"--add-output-config",
     [](Settings& s, const std::string& v) { s.moreOutputConfig.push_back(nameOf(v, kConfiguration)); },
     true},
};

} // namespace

std::span<const OwnOption> ownOptions() {
    return kOwn;
}

std::span<const OptionEffect> optionEffects() {
    return kEffects;
}

} // namespace tarnwell
