#pragma once

#include "common/tw_clock.h"
#include "tarnwell/computation.h"
#include "tarnwell/output_configuration.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace pwr::saved {
class CollectionWriter;
}

namespace tarnwell {

struct Settings;

/// Keeps a collection in a file while it is collected, unless the user does not want that.
/// Failure: a file that cannot be written any more ends nothing. It is told at once and again by hasFailed().
class Saving {
public:
    Saving();
    Saving(const Saving&) = delete;
    Saving& operator=(const Saving&) = delete;
    /// Removes a file that was created for a collection that never began.
    ~Saving();

    /// Creates the file. 0; or an exit code, with what to do about it in @p reason.
    int open(const Settings& settings, std::string& reason);

    /// What the file says before any reading.
    void describe(const ConfigurationTexts& configurations,
                  const std::vector<const pwr::Metadata*>& declarations,
                  const std::vector<AnnouncedMessage>& messages, const pwr::SystemMetadata& system);

    /// Writes that, and the record and the clocks of the begin.
    void begin(const pwr::SystemMetadata& system, const std::vector<pwr::TWClockSync>& moment);
    void save(const std::vector<const CollectionData*>& round);
    /// After a round whose next one comes at @p nextTick: what would be too old then goes to the file.
    void settle(std::uint64_t nextTick);
    /// All clocks at a moment in between.
    void note(std::uint64_t tick, std::uint64_t timeval, const std::vector<pwr::TWClockSync>& moment);
    /// The last words: @p moment holds the clocks of the end.
    void end(const pwr::SystemMetadata& system, const std::vector<pwr::TWClockSync>& moment,
             const std::vector<std::string>& notes);

    bool hasFailed() const { return m_hasFailed; }
    /// "Saved: FILE (1.2 MB)"; "" when there is nothing that was saved whole.
    std::string summary() const;

private:
    void note_i(int result);

    std::unique_ptr<pwr::saved::CollectionWriter> m_writer;
    bool m_hasBegun = false;
    bool m_hasFailed = false;
};

} // namespace tarnwell
