#include "plugins/collectors/text_files/read_plan.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <utility>

namespace text_files {

namespace {

using pwr::MachineFiles;
using pwr::MachineStatus;

constexpr const char* ONLINE_FILE = "/sys/devices/system/cpu/online";
// Systems let a process have about a thousand open files; other parts of the program need some too.
constexpr std::size_t MAX_HANDLES = 600;
// More processors than any kernel is built for; keeps a strange list from costing memory.
constexpr unsigned MAX_PROCESSORS = 65536;

/// Sets the bits of a list such as "0-3,8"; false when the text is no such list.
bool parseProcessors(std::string_view text, std::vector<bool>& online) {
    std::fill(online.begin(), online.end(), false);
    text = trim(text);
    while (!text.empty()) {
        unsigned first = 0;
        const char* const stop = text.data() + text.size();
        auto [end, error] = std::from_chars(text.data(), stop, first);
        unsigned last = first;
        if (error == std::errc() && end != stop && *end == '-') {
            const auto range = std::from_chars(end + 1, stop, last);
            end = range.ptr;
            error = range.ec;
        }
        if (error != std::errc() || last < first || last >= MAX_PROCESSORS || (end != stop && *end != ',')) {
            return false;
        }
        online.resize(std::max<std::size_t>(online.size(), last + 1));
        std::fill(online.begin() + first, online.begin() + last + 1, true);
        text.remove_prefix(std::min(static_cast<std::size_t>(end - text.data()) + 1, text.size()));
    }
    return !online.empty();
}

} // namespace

ReadPlan::ReadPlan(const MachineFiles& machine, const std::vector<Place>& places, std::size_t& handles)
    : m_machine(machine), m_handles(handles), m_values(places.size()) {
    std::map<std::string, std::size_t> known;
    for (std::size_t slot = 0; slot < places.size(); ++slot) {
        const Place& place = places[slot];
        const auto [entry, isNew] = known.try_emplace(place.path, m_files.size());
        if (isNew) {
            m_files.push_back({place.path, place.processor, nullptr, {}, {}});
        }
        File& file = m_files[entry->second];
        const std::string key = std::to_string(static_cast<int>(place.field.kind)) + place.field.blockKey;
        const auto reader = std::find(file.readerKeys.begin(), file.readerKeys.end(), key);
        const auto index = static_cast<std::size_t>(reader - file.readerKeys.begin());
        if (reader == file.readerKeys.end()) {
            file.readerKeys.push_back(key);
            file.readers.push_back(TextReader::create(place.field.kind));
        }
        file.readers[index]->add(place.field, place.binding, slot, place.type, place.width);
    }
    MachineStatus status = MachineStatus::OK;
    for (File& file : m_files) {
        if (m_handles < MAX_HANDLES) {
            file.handle = m_machine.open(file.path, status);
            m_handles += file.handle ? 1 : 0;
        }
    }
    if (std::any_of(m_files.begin(), m_files.end(), [](const File& file) { return file.processor >= 0; })) {
        m_onlineFile = m_machine.open(ONLINE_FILE, status);
    }
}

ReadPlan::~ReadPlan() {
    m_handles -= static_cast<std::size_t>(std::count_if(
        m_files.begin(), m_files.end(), [](const File& file) { return file.handle != nullptr; }));
}

void ReadPlan::read() {
    for (RawValue& value : m_values) {
        value.kind = RawValue::Kind::MISSING;
    }
    readOnlineProcessors_i();
    for (const File& file : m_files) {
        // The files of an offline processor stay, and their counters stand still: that is no measurement.
        if (!isOnline_i(file.processor)) {
            continue;
        }
        const MachineStatus status =
            file.handle ? file.handle->read(m_text) : m_machine.read(file.path, m_text);
        if (status != MachineStatus::OK) {
            continue;
        }
        for (const std::unique_ptr<TextReader>& reader : file.readers) {
            reader->read(m_text, m_values);
        }
    }
}

int ReadPlan::store(CollectionData& out) const {
    for (const RawValue& value : m_values) {
        int result = 0;
        switch (value.kind) {
        case RawValue::Kind::MISSING: result = out.addMissing(); break;
        case RawValue::Kind::BITS: result = out.add(value.bits); break;
        case RawValue::Kind::TEXT: result = out.addText(value.text); break;
        }
        if (result != 0) {
            return 1;
        }
    }
    return 0;
}

void ReadPlan::readOnlineProcessors_i() {
    if (m_onlineFile &&
        (m_onlineFile->read(m_onlineText) != MachineStatus::OK || !parseProcessors(m_onlineText, m_online))) {
        m_online.clear();
    }
}

bool ReadPlan::isOnline_i(int processor) const {
    if (processor < 0 || m_online.empty()) {
        return true;
    }
    const auto index = static_cast<std::size_t>(processor);
    return index < m_online.size() && m_online[index];
}

} // namespace text_files
