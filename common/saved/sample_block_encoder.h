#pragma once

#include "common/export.h"
#include "common/plugin/collection_data.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace pwr::saved {

/// Gathers the readings of one samples block and turns them into columns (docs/formats/samples-block.md).
/// Nothing is lost: the decoder gives back every header, value, text and missing value, in the order of add().
///
/// References: a block alone must tell where each of its columns begins, which is most of the bytes of a quiet
/// machine. With a reference, which holds all values at one moment, it tells only what is different. A caller that
/// wants this calls makeReference() after finish(), stores the payload before the next block, and once more a little
/// later in case that one place is damaged. Every block that follows needs the reference and nothing else.
class KRCOMMON_API SampleBlockEncoder {
public:
    /// A block is finished before it holds more values, or readings, than this; decoders refuse larger ones.
    static constexpr std::uint64_t MAX_VALUES = std::uint64_t{4} << 20;
    /// Values, readings and eight bytes of text for each byte of a payload: decoders do no more work for a byte, so a
    /// block in which hardly anything happens is filled up. They also refuse readings with more than 64 MB of text.
    static constexpr std::uint64_t VALUES_PER_BYTE = 1024;

    SampleBlockEncoder();
    SampleBlockEncoder(const SampleBlockEncoder&) = delete;
    SampleBlockEncoder& operator=(const SampleBlockEncoder&) = delete;
    ~SampleBlockEncoder();

    void add(const CollectionData& reading);

    bool isEmpty() const { return readings() == 0; }
    /// Bytes that the readings take now; an upper estimate of what they take in the block.
    std::size_t heldBytes() const;
    std::uint64_t firstTick() const; ///< of the first reading; 0 when there is none
    std::uint64_t readings() const;
    std::uint64_t values() const;

    /// Appends the payload and begins anew. Buffers are kept.
    void finish(std::vector<char>& payload);

    /// Appends the payload of a reference: the last values of all readings so far that were finished. From now on
    /// blocks count from it. Call it between blocks only.
    void makeReference(std::vector<char>& payload);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace pwr::saved
