#pragma once

#include <cstdint>
#include <string>

namespace tarnwell {

/// The line on standard error that shows how far the work is; shown only on a terminal,
/// redrawn at most a few times a second, and wiped when the object goes.
class ProgressLine {
public:
    explicit ProgressLine(bool enabled) : m_enabled(enabled) {}
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine() { clear(); }

    /// @p seconds collected so far, of @p total (0: no end known).
    void show(double seconds, double total, std::uint64_t points, std::uint64_t missed);
    /// Bytes read of a saved collection, @p seconds after the reading began.
    void showReading(double seconds, std::uint64_t done, std::uint64_t all);
    bool isEnabled() const { return m_enabled; }
    void clear();

private:
    bool isDue_i(double seconds);
    void draw_i(std::string line);

    bool m_enabled;
    double m_shownAt = -1.0;
    std::size_t m_width = 0;
};

} // namespace tarnwell
