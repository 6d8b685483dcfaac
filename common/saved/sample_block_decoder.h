#pragma once

#include "common/export.h"
#include "common/plugin/collection_data.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace pwr::saved {

/// Gives the readings of one samples block back in their order. The payload is foreign: it is checked as a whole in
/// open(), counts are never trusted, and memory stays in proportion to its size.
class KRCOMMON_API SampleBlockDecoder {
public:
    SampleBlockDecoder();
    SampleBlockDecoder(const SampleBlockDecoder&) = delete;
    SampleBlockDecoder& operator=(const SampleBlockDecoder&) = delete;
    ~SampleBlockDecoder();

    /// The number of the reference that a block's payload counts from; 0 when it needs none, also when it is too
    /// damaged to tell. For readers that have to look for a reference's copy.
    static std::uint32_t referenceOf(std::span<const char> payload);

    /// Learns a reference from its payload; the last few are kept. 0; or 1 and the reason in `error`. What open()
    /// made of earlier ones stays.
    int addReference(std::span<const char> payload, std::string& error);
    bool hasReference(std::uint32_t number) const;

    /// Takes a copy of the payload. 0; or 1 and the reason in `error`: no reading is given then.
    int open(std::span<const char> payload, std::string& error);
    /// False at the end.
    bool next(CollectionData& reading);

    std::uint64_t readings() const; ///< of the open block, all of them
    std::uint64_t values() const;
    std::uint64_t lastTick() const; ///< the latest tick of the open block

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace pwr::saved
