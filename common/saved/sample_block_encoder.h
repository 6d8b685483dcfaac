#pragma once

#include "common/export.h"
#include "common/plugin/collection_data.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace pwr::saved {

/// Gathers the readings of one samples block and turns them into columns (docs/formats/saved-collection.md).
/// Nothing is lost: the decoder gives back every header, value, text and missing value, in the order of add().
class KRCOMMON_API SampleBlockEncoder {
public:
    SampleBlockEncoder();
    SampleBlockEncoder(const SampleBlockEncoder&) = delete;
    SampleBlockEncoder& operator=(const SampleBlockEncoder&) = delete;
    ~SampleBlockEncoder();

    void add(const CollectionData& reading);

    bool isEmpty() const;
    /// Bytes that the readings take now; an upper estimate of what they take in the block.
    std::size_t heldBytes() const;
    std::uint64_t firstTick() const; ///< of the first reading; 0 when there is none
    std::uint64_t readings() const;
    std::uint64_t values() const;

    /// Appends the payload and begins anew. Buffers are kept.
    void finish(std::vector<char>& payload);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace pwr::saved
