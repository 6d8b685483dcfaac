#pragma once

#include "common/export.h"
#include "common/plugin/collection_data.h"
#include "common/saved/byte_source.h"
#include "common/saved/damage.h"
#include "common/saved/saved_instances.h"
#include "common/tw_clock.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pwr {
class Metadata;
class SystemMetadata;
} // namespace pwr

namespace pwr::saved {

/// Reads a saved collection: what it says of itself at once (by the index, in a few reads, or by one pass over a file
/// without index), the readings one after the other. Damaged blocks are skipped and told in damage(); the first
/// reading of each message behind a lost block carries the flag GAP. Memory does not grow with the file.
/// Threads: one at a time.
class KRCOMMON_API CollectionReader {
public:
    enum class Event : std::uint8_t { READING, INSTANCES, END };

    /// What the file says of its own size. Exact once the end was reached; before that as the end block says.
    struct Totals {
        std::uint64_t bytes = 0;
        std::uint64_t readings = 0;
        std::uint64_t values = 0;
        std::uint64_t blocks = 0;
        std::uint64_t lastTick = 0;
        std::uint16_t formatMajor = 0; ///< of the file, by its header; 0 when the header is damaged
        std::uint16_t formatMinor = 0;
    };

    /// Null with the reason, path included, in `error`: no such file, not a saved collection, or of a newer format.
    static std::unique_ptr<CollectionReader> open(const std::string& path, std::string& error);
    /// From elsewhere; the name stands in its place in `error`.
    static std::unique_ptr<CollectionReader> open(std::unique_ptr<ByteSource> source, const std::string& name,
                                                  std::string& error);
    CollectionReader(const CollectionReader&) = delete;
    CollectionReader& operator=(const CollectionReader&) = delete;
    ~CollectionReader();

    /// The latest intact record; null when none is. When the end is missing, its end values are filled from the
    /// readings once END was returned. Reading it made its topology the current one.
    SystemMetadata* system();
    const std::vector<std::unique_ptr<Metadata>>& declarations() const; ///< in file order
    const std::vector<SavedInstances>& instances() const;               ///< of the preamble, in file order
    const std::vector<std::pair<std::string, std::string>>& configurations() const; ///< (name, text)
    const std::vector<TWClockSync>& clocks() const;
    const std::vector<std::string>& notes() const;
    const Totals& totals() const;
    const DamageReport& damage() const;
    bool hasIndex() const;
    /// Bytes read from the file so far, for progress and for tests.
    std::uint64_t bytesRead() const;

    /// The next reading, in file order, or instances that came while collecting.
    Event next(CollectionData& reading, SavedInstances& added);

private:
    struct State;
    explicit CollectionReader(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

/// Copies all that is intact into a new, closed file. 0, also for a file that needed none; 1 with the reason. What was
/// left out is in `damage`.
KRCOMMON_API int repairCollection(const std::string& from, const std::string& to, DamageReport& damage,
                                  std::string& error);

} // namespace pwr::saved
