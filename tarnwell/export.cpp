#include "tarnwell/export.h"

#include "common/metadata/system_metadata.h"
#include "common/result_file.h"
#include "tarnwell/complaints.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/sample_lines.h"
#include "tarnwell/settings.h"
#include "tarnwell/shared_rows.h"

#include <cerrno>
#include <cstdio>
#include <optional>

namespace tarnwell {
namespace {

using pwr::saved::CollectionReader;

constexpr std::size_t kBufferedBytes = std::size_t{1} << 16;

/// Where the lines go: a file that appears whole or not at all, or the standard output as it comes.
class LineOutput {
public:
    explicit LineOutput(const std::string& path) {
        if (!path.empty()) {
            m_file.emplace(path);
        }
    }

    void write(const std::string& lines) {
        if (m_file) {
            m_file->write(lines);
        } else if (std::fwrite(lines.data(), 1, lines.size(), stdout) != lines.size()) {
            m_isClosed = true;
            m_isEnough = errno == EPIPE;
        }
    }

    /// Nobody reads on: a closed pipe, a full disk.
    bool hasFailed() const { return m_isClosed || (m_file && !m_file->getError().empty()); }

    int finish(std::string& reason) {
        if (m_file) {
            return m_file->commit(reason);
        }
        if (m_isEnough) {
            return 0;
        }
        if (m_isClosed || std::fflush(stdout) != 0) {
            reason = "the standard output could not be written completely";
            return 1;
        }
        return 0;
    }

private:
    std::optional<pwr::ResultFile> m_file;
    bool m_isClosed = false;
    bool m_isEnough = false; ///< whoever reads has closed the pipe, and wants no more
};

void writeReadings(CollectionReader& reader, SavedMessages& messages, SampleLines& form, LineOutput& output) {
    std::string lines = form.header();
    CollectionData reading;
    pwr::saved::SavedInstances added;
    for (;;) {
        const CollectionReader::Event event = reader.next(reading, added);
        if (event == CollectionReader::Event::READING) {
            form.append(reading, lines);
        } else if (event == CollectionReader::Event::INSTANCES) {
            if (const SavedMessages::Message* message = messages.add(added)) {
                form.add(*message);
            }
        }
        if (lines.size() >= kBufferedBytes || event == CollectionReader::Event::END) {
            output.write(lines);
            lines.clear();
        }
        if (event == CollectionReader::Event::END || output.hasFailed()) {
            return;
        }
    }
}

constexpr CommandOption kOptions[] = {
    kSavedFileRow,
    {.text = {.name = "--csv", .description = "Lines of comma-separated values, with a header"},
     .apply = [](Settings& s, const std::string&) { s.asCsv = true; }},
    {.text = {.name = "--jsonl", .description = "One JSON object a line"},
     .apply = [](Settings& s, const std::string&) { s.asJson = true; }},
    {.text = {.name = "--output",
              .description = "Write to this file instead of the standard output",
              .arg = "<file>",
              .abbreviation = "-o",
              .argType = "file"},
     .apply = [](Settings& s, const std::string& v) { s.outputFile = nameOf(v, "the file to write"); }},
};

} // namespace

std::span<const CommandOption> exportOptions() {
    return kOptions;
}

int runExport(const Settings& settings) {
    const HostEnvironment environment(settings.outputPrefix);
    std::string reason;
    const std::unique_ptr<CollectionReader> reader = CollectionReader::open(settings.inputFile, reason);
    if (reader == nullptr) {
        return fail(ExitCode::FAILED, reason);
    }
    const pwr::SystemMetadata* const system = reader->system();
    if (system == nullptr) {
        return fail(ExitCode::DAMAGED, settings.inputFile +
                                           " has lost what it said of the machine and the clock; see "
                                           "tarnwell verify");
    }
    SavedMessages messages(*reader, *system);
    SampleLines form(settings.asJson ? SampleLines::Form::JSON : SampleLines::Form::CSV, *reader, *system);
    for (const SavedMessages::Message* message : messages.all()) {
        form.add(*message);
    }
    LineOutput output(settings.outputFile);
    writeReadings(*reader, messages, form, output);
    if (output.finish(reason) != 0) {
        return fail(ExitCode::FAILED, reason);
    }
    if (!reader->damage().isWhole() || !messages.problems().empty()) {
        return fail(ExitCode::DAMAGED, settings.inputFile +
                                           " is damaged or was not closed: what is intact was written; see "
                                           "tarnwell verify");
    }
    return toInt(ExitCode::DONE);
}

} // namespace tarnwell
