#include "common/saved/collection_writer.h"

#include "common/metadata/msg_metadata.h"
#include "common/metadata/serializer.h"
#include "common/metadata/system_metadata.h"
#include "common/saved/block_writer.h"
#include "common/saved/instance_numbering.h"
#include "common/saved/payloads.h"
#include "common/saved/sample_block_encoder.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <optional>
#include <span>

namespace pwr::saved {

namespace {

/// A samples block is finished before it gets much larger, and gathered blocks are written before they take more.
constexpr std::size_t c_maxHeld = std::size_t{8} << 20;
/// Records beyond this go into another block, which stays far below a payload's limit.
constexpr std::size_t c_maxTogether = std::size_t{4} << 20;
/// How many samples blocks count from one reference.
constexpr unsigned c_blocksPerReference = 30;

std::vector<char> bytesOf(const SystemMetadata& system) {
    Serializer out(0);
    system.serialize(out);
    return out.get_buffer();
}

/// Told by the contents, not by chance: the same collection by a told clock gives the same file.
std::array<char, 16> identityOf(std::span<const StoredBlock> blocks) {
    pw_u64_t low = 0xCBF29CE484222325;
    pw_u64_t high = 0x9E3779B97F4A7C15;
    for (const StoredBlock& block : blocks) {
        for (const char byte : block.payload) {
            low = (low ^ static_cast<pw_u8_t>(byte)) * 0x100000001B3;
            high = (high ^ (low >> 29)) * 0xD6E8FEB86659FD93;
        }
    }
    std::array<char, 16> identity{};
    stream::storeScalar(identity.data(), high);
    stream::storeScalar(identity.data() + sizeof(high), low);
    return identity;
}

} // namespace

struct CollectionWriter::State {
    BlockWriter file;
    SampleBlockEncoder encoder;
    std::optional<InstanceNumbering> numbering;
    std::vector<Configuration> configurations;
    std::vector<std::vector<char>> declarations;
    std::vector<SavedInstances> newInstances; ///< not in a block yet
    std::vector<StoredBlock> toRepeat;        ///< behind the next samples block
    std::vector<char> payload;
    FileTotals totals;
    pw_u64_t ticksPerSecond = 0;
    std::optional<pw_u64_t> oldestTick; ///< of what is not in the file yet
    pw_u16_t instancesBlocks = 0;
    pw_u16_t moments = 0;
    pw_u16_t notes = 0;
    unsigned blocksByReference = 0;
    bool hasFinished = false;             ///< a samples block, so that there are values to count from
    std::optional<StoredBlock> reference; ///< to be repeated behind the next samples block
    bool isBegun = false;
    bool isEnded = false;

    int check_i(bool isInOrder, const char* call) {
        if (!isInOrder) {
            file.fail(std::string(call) + " out of order");
        }
        return file.error().empty() ? 0 : 1;
    }
    void waiting_i(pw_u64_t tick) {
        if (!oldestTick) oldestTick = tick;
    }
    /// Now, and once more behind the next samples block.
    int keep_i(StoredBlock block, pw_u64_t tick) {
        const int result = file.append(block, tick);
        block.header.flags |= block_flag::COPY;
        block.header.firstTick = tick;
        toRepeat.push_back(std::move(block));
        return result;
    }
    int repeat_i();
    int instances_i(pw_u16_t flags);
    int samples_i();
    int flush_i();
    int begin_i(const SystemMetadata& system);
    int append_i(const CollectionData& reading);
    int end_i(const SystemMetadata& system);
    void makeReference_i();

    /// Nothing throws through the interface; memory can be short at any call.
    template <class CALL> int guarded_i(CALL call) {
        try {
            return call();
        } catch (const std::exception& failure) {
            return file.fail(failure.what());
        }
    }
};

int CollectionWriter::State::repeat_i() {
    for (const StoredBlock& block : toRepeat) {
        file.append(block, block.header.firstTick);
    }
    toRepeat.clear();
    return file.error().empty() ? 0 : 1;
}

/// The instances that came since the last block of them.
int CollectionWriter::State::instances_i(pw_u16_t flags) {
    if (instancesBlocks == std::numeric_limits<pw_u16_t>::max()) {
        return file.fail("instances were added too often");
    }
    payload.clear();
    encode(newInstances, payload);
    newInstances.clear();
    return keep_i(file.store(BlockKind::INSTANCES, flags, instancesBlocks++, payload), totals.lastTick);
}

/// Closes the samples block, if one is begun.
int CollectionWriter::State::samples_i() {
    if (encoder.isEmpty()) {
        return file.error().empty() ? 0 : 1;
    }
    const pw_u64_t firstTick = encoder.firstTick();
    totals.readings += encoder.readings();
    totals.values += encoder.values();
    payload.clear();
    encoder.finish(payload);
    hasFinished = true;
    file.append(file.store(BlockKind::SAMPLES, 0, instancesBlocks, payload), firstTick);
    if (reference) {
        file.append(*reference, totals.lastTick);
        reference.reset();
    }
    return repeat_i();
}

void CollectionWriter::State::makeReference_i() {
    if (hasFinished && blocksByReference == 0) {
        payload.clear();
        encoder.makeReference(payload);
        reference = file.store(BlockKind::REFERENCE, 0, 0, payload);
        file.append(*reference, totals.lastTick);
        reference->header.flags |= block_flag::COPY;
    }
    if (hasFinished) {
        blocksByReference = (blocksByReference + 1) % c_blocksPerReference;
    }
}

int CollectionWriter::State::flush_i() {
    oldestTick.reset();
    return file.flush();
}

int CollectionWriter::State::begin_i(const SystemMetadata& system) {
    isBegun = true;
    ticksPerSecond = system.twaClockFreq > 0 ? static_cast<pw_u64_t>(double{system.twaClockFreq} * 1e6) : 0;
    totals.lastTick = system.startTSC;
    std::vector<StoredBlock> blocks;
    blocks.push_back(file.store(BlockKind::SYSTEM, block_flag::PREAMBLE, 0, bytesOf(system)));
    for (std::size_t i = 0; i < configurations.size(); ++i) {
        payload.clear();
        encode(configurations[i], payload);
        blocks.push_back(
            file.store(BlockKind::CONFIGURATION, block_flag::PREAMBLE, static_cast<pw_u16_t>(i), payload));
    }
    std::size_t first = 0;
    pw_u16_t ordinal = 0;
    do {
        std::size_t last = first;
        for (std::size_t size = 0; last < declarations.size() && size < c_maxTogether; ++last) {
            size += declarations[last].size();
        }
        payload.clear();
        encodeRecords(std::span(declarations).subspan(first, last - first), payload);
        blocks.push_back(file.store(BlockKind::DECLARATIONS, block_flag::PREAMBLE, ordinal++, payload));
        first = last;
    } while (first < declarations.size());

    FileHeader header;
    header.identity = identityOf(blocks);
    file.start(header);
    for (StoredBlock& block : blocks) {
        keep_i(std::move(block), system.startTSC);
    }
    instances_i(block_flag::PREAMBLE);
    return flush_i();
}

int CollectionWriter::State::append_i(const CollectionData& reading) {
    const pw_u64_t tick = reading.header().timestamp;
    const bool isFull = encoder.values() + reading.size() > SampleBlockEncoder::MAX_VALUES ||
                        encoder.readings() == SampleBlockEncoder::MAX_VALUES ||
                        encoder.heldBytes() > c_maxHeld;
    const bool isLate =
        ticksPerSecond != 0 && oldestTick && tick > *oldestTick && tick - *oldestTick >= ticksPerSecond;
    if (isFull || isLate) {
        samples_i();
    }
    if (isLate || file.gathered() > c_maxHeld) {
        flush_i();
    }
    if (!newInstances.empty()) {
        instances_i(0);
    }
    if (encoder.isEmpty()) {
        makeReference_i();
    }
    encoder.add(reading);
    waiting_i(tick);
    totals.lastTick = std::max(totals.lastTick, tick);
    return file.error().empty() ? 0 : 1;
}

int CollectionWriter::State::end_i(const SystemMetadata& system) {
    samples_i();
    if (!newInstances.empty()) {
        instances_i(0);
    }
    repeat_i();
    file.append(file.store(BlockKind::SYSTEM, 0, 1, bytesOf(system)), totals.lastTick);
    return file.finish(totals);
}

CollectionWriter::CollectionWriter(std::unique_ptr<State> state) : m_state(std::move(state)) {}

CollectionWriter::~CollectionWriter() = default;

std::unique_ptr<CollectionWriter> CollectionWriter::create(const std::string& path, Existing existing,
                                                           std::string& error) {
    auto state = std::make_unique<State>();
    if (state->file.create(path, existing == Existing::REFUSE) != 0) {
        error = state->file.error();
        return nullptr;
    }
    return std::unique_ptr<CollectionWriter>(new CollectionWriter(std::move(state)));
}

void CollectionWriter::addConfiguration(const std::string& name, const std::string& text) {
    m_state->guarded_i([&] {
        m_state->configurations.emplace_back(name, text);
        return m_state->check_i(!m_state->isBegun, "addConfiguration()");
    });
}

void CollectionWriter::addDeclaration(const Metadata& declaration) {
    m_state->guarded_i([&] {
        std::vector<char>& bytes = m_state->declarations.emplace_back();
        if (!encodeRecord(declaration, bytes)) {
            m_state->declarations.pop_back();
            return m_state->file.fail(
                "a declaration would not be readable again; its texts are too long or empty");
        }
        return m_state->check_i(!m_state->isBegun, "addDeclaration()");
    });
}

int CollectionWriter::addInstances(const SystemMetadata& system, const MsgMetadata& message,
                                   const MessageInstances& instances, bool isAddition) {
    return m_state->guarded_i([&] {
        if (m_state->check_i(!m_state->isEnded, "addInstances()") != 0) {
            return 1;
        }
        if (!m_state->numbering) {
            m_state->numbering.emplace(system);
        }
        const id_config_t id{static_cast<pw_u8_t>(message.getPluginID()),
                             static_cast<pw_u8_t>(message.getMetricID()),
                             static_cast<pw_u8_t>(message.getMsgID())};
        // What was read before belongs to the instances of before.
        const int result = m_state->samples_i();
        m_state->newInstances.push_back(m_state->numbering->describe(id, instances, isAddition));
        if (m_state->isBegun) {
            m_state->waiting_i(m_state->totals.lastTick);
        }
        return result;
    });
}

int CollectionWriter::begin(const SystemMetadata& system) {
    return m_state->guarded_i(
        [&] { return m_state->check_i(!m_state->isBegun, "begin()") != 0 ? 1 : m_state->begin_i(system); });
}

int CollectionWriter::addMoment(std::uint64_t tick, std::uint64_t timeval,
                                const std::vector<TWClockSync>& clocks) {
    return m_state->guarded_i([&] {
        State& state = *m_state;
        if (state.check_i(state.isBegun && !state.isEnded, "addMoment()") != 0) {
            return 1;
        }
        state.payload.clear();
        encode(Moment{tick, timeval, clocks}, state.payload);
        state.waiting_i(tick);
        StoredBlock block = state.file.store(BlockKind::CLOCKS, 0, state.moments++, state.payload);
        return state.hasFinished ? state.file.append(block, tick) : state.keep_i(std::move(block), tick);
    });
}

int CollectionWriter::append(const CollectionData& reading) {
    return m_state->guarded_i([&] {
        return m_state->check_i(m_state->isBegun && !m_state->isEnded, "append()") != 0
                   ? 1
                   : m_state->append_i(reading);
    });
}

int CollectionWriter::settle(std::uint64_t nextTick) {
    return m_state->guarded_i([&] {
        State& state = *m_state;
        if (state.check_i(state.isBegun && !state.isEnded, "settle()") != 0) {
            return 1;
        }
        if (!state.oldestTick || nextTick < *state.oldestTick ||
            nextTick - *state.oldestTick < state.ticksPerSecond) {
            return 0;
        }
        state.samples_i();
        if (!state.newInstances.empty()) {
            state.instances_i(0);
        }
        return state.flush_i();
    });
}

int CollectionWriter::addNotes(const std::vector<std::string>& lines) {
    return m_state->guarded_i([&] {
        State& state = *m_state;
        if (state.check_i(state.isBegun && !state.isEnded, "addNotes()") != 0) {
            return 1;
        }
        state.payload.clear();
        encode(lines, state.payload);
        state.waiting_i(state.totals.lastTick);
        return state.file.append(state.file.store(BlockKind::NOTES, 0, state.notes++, state.payload),
                                 state.totals.lastTick);
    });
}

int CollectionWriter::end(const SystemMetadata& system) {
    return m_state->guarded_i([&] {
        if (m_state->check_i(m_state->isBegun && !m_state->isEnded, "end()") != 0) {
            return 1;
        }
        m_state->isEnded = true;
        return m_state->end_i(system);
    });
}

const std::string& CollectionWriter::path() const {
    return m_state->file.path();
}

const std::string& CollectionWriter::error() const {
    return m_state->file.error();
}

std::uint64_t CollectionWriter::bytes() const {
    return m_state->file.bytes();
}

} // namespace pwr::saved
