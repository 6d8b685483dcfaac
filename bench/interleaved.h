#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace bench {

using Nanoseconds = std::chrono::duration<double, std::nano>;

/// Measures several ways of doing one thing in turn, so that a change of the machine's speed meets
/// all of them, and prints the median of each beside its ratio to the first.
class Interleaved {
public:
    explicit Interleaved(std::string title) : m_title(std::move(title)) {}

    /// The function works on `items` items and returns how long that took, set-up left out.
    void add(std::string name, std::size_t items, std::function<Nanoseconds()> run) {
        m_rows.push_back({std::move(name), items, std::move(run), {}});
    }

    /// What stands for all repetitions: the median; or the best, where other programs would take a processor away from
    /// threads that need theirs at the same time.
    enum class Pick : unsigned char { MEDIAN, BEST };

    void report(int repetitions = 7, Pick pick = Pick::MEDIAN) {
        for (int i = 0; i <= repetitions; ++i) {
            for (Row& row : m_rows) {
                const Nanoseconds taken = row.run();
                if (i > 0) { // the first round warms caches and branches up
                    row.perItem.push_back(taken.count() / static_cast<double>(row.items));
                }
            }
        }
        std::printf("%s\n", m_title.c_str());
        const double limit = cost_i(m_rows.front(), pick);
        for (Row& row : m_rows) {
            const double cost = cost_i(row, pick);
            std::printf("  %-44s %9.2f ns  %6.2f x\n", row.name.c_str(), cost, cost / limit);
        }
    }

private:
    struct Row {
        std::string name;
        std::size_t items;
        std::function<Nanoseconds()> run;
        std::vector<double> perItem;
    };

    static double cost_i(Row& row, Pick pick) {
        const std::size_t place = pick == Pick::MEDIAN ? row.perItem.size() / 2 : 0;
        const auto middle = row.perItem.begin() + static_cast<std::ptrdiff_t>(place);
        std::nth_element(row.perItem.begin(), middle, row.perItem.end());
        return *middle;
    }

    std::string m_title;
    std::vector<Row> m_rows;
};

/// Work that counts with all its threads, of which one runs at a time.
inline Nanoseconds processTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// What the calling thread has cost so far. Unlike the time of day it stands still while other programs have the
/// processor, so that ratios hold on a busy machine; it also leaves out what a thread sleeps or hands to others.
inline Nanoseconds threadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// How much processor time the work takes, all of it on this thread. Asking for the time enters the system, which costs
/// nearly a microsecond: as much as short work takes, so what asking just cost is taken off.
template <class Work> Nanoseconds timed(const Work& work) {
    const Nanoseconds before = threadTime();
    const Nanoseconds start = threadTime();
    work();
    return (threadTime() - start) - (start - before);
}

} // namespace bench
