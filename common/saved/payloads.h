#pragma once

#include "common/saved/saved_instances.h"
#include "common/tw_clock.h"

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace pwr {
class Metadata;
} // namespace pwr

// The payloads of all blocks but samples, index and end. Each decode() takes foreign bytes: it answers false, and its
// target is undefined, when they are no such payload as a whole; counts cost no more memory than the bytes have.

namespace pwr::saved {

/// Texts of a configuration by its name.
using Configuration = std::pair<std::string, std::string>;

/// All clocks at one moment.
struct Moment {
    pw_u64_t tick = 0;
    pw_u64_t timeval = 0; ///< microseconds since 1970 UTC
    std::vector<TWClockSync> clocks;
};

/// One record behind the other, each with its type in front, behind their count. What cannot be read back later, such
/// as texts that are too long, is told by false.
bool encodeRecord(const Metadata& record, std::vector<char>& bytes);
void encodeRecords(std::span<const std::vector<char>> records, std::vector<char>& payload);
bool decode(std::span<const char> payload, std::vector<std::unique_ptr<Metadata>>& records);

void encode(std::span<const SavedInstances> messages, std::vector<char>& payload);
bool decode(std::span<const char> payload, std::vector<SavedInstances>& messages);

void encode(const Configuration& configuration, std::vector<char>& payload);
bool decode(std::span<const char> payload, Configuration& configuration);

void encode(const Moment& moment, std::vector<char>& payload);
bool decode(std::span<const char> payload, Moment& moment);

void encode(std::span<const std::string> lines, std::vector<char>& payload);
bool decode(std::span<const char> payload, std::vector<std::string>& lines);

} // namespace pwr::saved
