#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "common/machine_files.h"
#include "common/plugin/collection_data.h"
#include "plugins/collectors/text_files/expansion.h"
#include "plugins/collectors/text_files/text_reader.h"

namespace text_files {

/// How one message is read: each file once, however many values come from it, into places that were
/// settled when the message was opened. In a steady state a reading allocates nothing.
class ReadPlan {
public:
    /// Opens the files. Every open file costs a handle of the process, so only as many as `handles` says
    /// stay open, which counts them; the others are opened at each reading.
    ReadPlan(const pwr::MachineFiles& machine, const std::vector<Place>& places, std::size_t& handles);
    ~ReadPlan();
    ReadPlan(const ReadPlan&) = delete;
    ReadPlan& operator=(const ReadPlan&) = delete;

    /// Reads all files. What a file, or the processor that it belongs to, does not give is missing.
    void read();
    /// The values of the last reading, one per place.
    const std::vector<RawValue>& values() const { return m_values; }
    /// Appends the values of the last reading to a record; 1 when it takes no more.
    int store(CollectionData& out) const;

private:
    struct File {
        std::string path;
        int processor;
        std::unique_ptr<pwr::MachineFile> handle;
        std::vector<std::unique_ptr<TextReader>> readers;
        std::vector<std::string> readerKeys; // what tells a file's readers apart
    };

    void readOnlineProcessors_i();
    bool isOnline_i(int processor) const;

    const pwr::MachineFiles& m_machine;
    std::size_t& m_handles;
    std::vector<File> m_files;
    std::vector<RawValue> m_values;
    std::string m_text;
    std::unique_ptr<pwr::MachineFile> m_onlineFile; // null: no file of the message belongs to a processor
    std::string m_onlineText;
    std::vector<bool> m_online; // empty: the machine does not tell
};

} // namespace text_files
