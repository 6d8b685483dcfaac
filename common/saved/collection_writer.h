#pragma once

#include "common/export.h"
#include "common/plugin/collection_data.h"
#include "common/tw_clock.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace pwr {
class Metadata;
class MsgMetadata;
class SystemMetadata;
} // namespace pwr

namespace pwr::saved {

/// Writes one collection into one file that can be read while it grows and after its writer was killed: what is
/// older than a second is in the file. Nothing that was written is ever changed.
/// Order:   begin(), then readings and moments; addInstances() also later; end().
/// Threads: one at a time. One write to the file a second, none in between.
/// Failure: the first error is kept; later calls do nothing and return 1. Nothing throws.
class KRCOMMON_API CollectionWriter {
public:
    enum class Existing : std::uint8_t { REFUSE, REPLACE };

    /// Creates the file. Null with the reason, path included, in `error`.
    static std::unique_ptr<CollectionWriter> create(const std::string& path, Existing existing,
                                                    std::string& error);
    CollectionWriter(const CollectionWriter&) = delete;
    CollectionWriter& operator=(const CollectionWriter&) = delete;
    /// Without end() before, the file stays as a killed writer leaves it.
    ~CollectionWriter();

    // The preamble, gathered until begin().
    void addConfiguration(const std::string& name, const std::string& text);
    void addDeclaration(const Metadata& declaration);
    /// Further instances of a message may come at any time; the preamble's describe all that a message has then.
    int addInstances(const SystemMetadata& system, const MsgMetadata& message,
                     const MessageInstances& instances, bool isAddition = false);

    /// Writes the preamble with the record as it is now. It is repeated once later in the file.
    int begin(const SystemMetadata& system);

    /// All clocks read at one moment, by the default clock's tick and microseconds since 1970 UTC. The first moment is
    /// the collection's begin.
    int addMoment(std::uint64_t tick, std::uint64_t timeval, const std::vector<TWClockSync>& clocks);
    int append(const CollectionData& reading);
    /// After a round of readings: writes what would be older than a second when the next reading comes at `nextTick`.
    int settle(std::uint64_t nextTick);
    int addNotes(const std::vector<std::string>& lines);

    /// The final record, the totals and the index; closes the file.
    int end(const SystemMetadata& system);

    const std::string& path() const;
    const std::string& error() const; ///< with the path; "" while all is well
    std::uint64_t bytes() const;      ///< size of the file so far

private:
    struct State;
    explicit CollectionWriter(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

} // namespace pwr::saved
