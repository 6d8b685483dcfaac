#pragma once

#include <cstddef>
#include <cstdint>

namespace pwr {

/// Which writer plug-ins exist in the process: how many are living, and a number that changes with each that is made
/// or destroyed. While all of them are in a stream's set, the set cannot change without one of these changing or its
/// own size; that lets the stream use an array of its plug-ins and still serve exactly the set.
struct WriterCensus {
    std::size_t living = 0;
    std::uint64_t changes = 0;
};

extern WriterCensus g_writerCensus;

} // namespace pwr
