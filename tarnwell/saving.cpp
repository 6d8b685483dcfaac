#include "tarnwell/saving.h"

#include "common/metadata/system_metadata.h"
#include "common/platform/file.h"
#include "common/saved/collection_writer.h"
#include "tarnwell/clock_moments.h"
#include "tarnwell/complaints.h"
#include "tarnwell/number_words.h"
#include "tarnwell/settings.h"

#include <array>
#include <chrono>
#include <filesystem>

namespace tarnwell {
namespace {

constexpr const char* kExtension = ".twc";

/// "tarnwell-20261121-062654", in UTC.
std::string nameOfNow() {
    using namespace std::chrono;
    const sys_time<microseconds> now{microseconds(wallClockMicroseconds())};
    const auto day = floor<days>(now);
    const year_month_day date(day);
    const hh_mm_ss<std::chrono::seconds> time(floor<std::chrono::seconds>(now - day));
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "tarnwell-%04d%02u%02u-%02d%02d%02d",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
    return text.data();
}

std::string fileFor(const Settings& settings) {
    if (!settings.saveFile.empty()) {
        return settings.saveFile;
    }
    if (!settings.outputPrefix.empty()) {
        return settings.outputPrefix + kExtension;
    }
    // Nobody chose this name, so two collections of one second both get one of their own.
    const std::string name = nameOfNow();
    std::string file = name + kExtension;
    for (unsigned number = 2; pwr::platform::pathExists(file); ++number) {
        file = name + "-" + std::to_string(number) + kExtension;
    }
    return file;
}

} // namespace

Saving::Saving() = default;

Saving::~Saving() {
    if (m_writer != nullptr && !m_hasBegun) {
        const std::filesystem::path path = pwr::platform::nativePath(m_writer->path());
        m_writer.reset();
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
}

int Saving::open(const Settings& settings, std::string& reason) {
    if (!settings.saves) {
        return 0;
    }
    const std::string file = fileFor(settings);
    if (!settings.overwrite && pwr::platform::pathExists(file)) {
        reason = file + " exists: give --overwrite to replace it, --save another name, or --no-save";
        return toInt(ExitCode::USAGE);
    }
    using Existing = pwr::saved::CollectionWriter::Existing;
    std::string error;
    m_writer = pwr::saved::CollectionWriter::create(
        file, settings.overwrite ? Existing::REPLACE : Existing::REFUSE, error);
    if (m_writer == nullptr) {
        reason =
            "the collection cannot be saved: " + error + "; give another place with --save, or --no-save";
        return toInt(ExitCode::FAILED);
    }
    return 0;
}

void Saving::describe(const ConfigurationTexts& configurations,
                      const std::vector<const pwr::Metadata*>& declarations,
                      const std::vector<AnnouncedMessage>& messages, const pwr::SystemMetadata& system) {
    if (m_writer == nullptr) {
        return;
    }
    for (const auto& [name, text] : configurations) {
        m_writer->addConfiguration(name, text);
    }
    for (const pwr::Metadata* declaration : declarations) {
        m_writer->addDeclaration(*declaration);
    }
    for (const AnnouncedMessage& message : messages) {
        note_i(m_writer->addInstances(system, *message.message, *message.instances));
    }
}

void Saving::begin(const pwr::SystemMetadata& system, const std::vector<pwr::TWClockSync>& moment) {
    if (m_writer == nullptr) {
        return;
    }
    m_hasBegun = true;
    note_i(m_writer->begin(system));
    note_i(m_writer->addMoment(system.startTSC, system.startTimeval, moment));
}

void Saving::save(const std::vector<const CollectionData*>& round) {
    if (m_writer == nullptr || m_hasFailed) {
        return;
    }
    for (const CollectionData* reading : round) {
        note_i(m_writer->append(*reading));
    }
}

void Saving::settle(std::uint64_t nextTick) {
    if (m_writer != nullptr && !m_hasFailed) {
        note_i(m_writer->settle(nextTick));
    }
}

void Saving::note(std::uint64_t tick, std::uint64_t timeval, const std::vector<pwr::TWClockSync>& moment) {
    if (m_writer != nullptr && !m_hasFailed) {
        note_i(m_writer->addMoment(tick, timeval, moment));
    }
}

void Saving::end(const pwr::SystemMetadata& system, const std::vector<pwr::TWClockSync>& moment,
                 const std::vector<std::string>& notes) {
    if (m_writer == nullptr) {
        return;
    }
    note_i(m_writer->addMoment(system.stopTSC, system.stopTimeval, moment));
    note_i(m_writer->addNotes(notes));
    note_i(m_writer->end(system));
}

std::string Saving::summary() const {
    return m_writer == nullptr || m_hasFailed
               ? std::string()
               : "Saved: " + m_writer->path() + " (" + byteCount(m_writer->bytes()) + ")";
}

void Saving::note_i(int result) {
    if (result != 0 && !m_hasFailed) {
        m_hasFailed = true;
        complain({"the collection is not saved from here on: " + m_writer->error()});
    }
}

} // namespace tarnwell
