#include "common/saved/collection_reader.h"

#include "common/metadata/metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/saved/collection_opener.h"
#include "common/saved/sample_block_decoder.h"

#include <algorithm>
#include <deque>
#include <map>

namespace pwr::saved {

namespace {

/// How many blocks behind a samples block are searched for the copy of the reference that it needs.
constexpr int c_copyDistance = 8;

} // namespace

/// The pass over all blocks, in their order.
struct CollectionReader::State {
    State(std::unique_ptr<ByteSource> bytes, std::string name)
        : opener(std::move(bytes), std::move(name)), blocks(opener.blocks()), catalog(opener.catalog()),
          damage(opener.damage()) {}

    CollectionOpener opener;
    BlockReader& blocks;
    Catalog& catalog;
    DamageLog& damage;

    Totals totals;
    Block block;
    Block copy;
    SampleBlockDecoder decoder;
    std::deque<SavedInstances> added; ///< to be given next
    pw_u16_t givenInstances = 0;      ///< blocks of instances
    bool isReading = false;           ///< the pass has begun
    bool isInSamples = false;         ///< the decoder has readings left, maybe
    bool isAtEnd = false;
    FileTotals counted;

    // What was lost since the last intact reading.
    bool areSamplesLost = false;
    bool isCopyDue = false; ///< the copy of a reference comes next
    pw_u32_t usedReference = 0;
    std::optional<pw_u64_t> lastTick; ///< of the intact samples blocks so far
    /// Losses so far, and up to which of them a message's readings were marked.
    pw_u32_t gaps = 0;
    std::map<std::pair<id_config_t, pw_u16_t>, pw_u32_t> markedGaps;

    // For comparing the index with the file.
    pw_u64_t listedSeen = 0;
    bool isIndexWrong = false;
    pw_u64_t endOffset = 0;

    void begin_i();
    void take_i();
    void samples_i();
    void instances_i();
    void lost_i();
    bool giveInstances_i(pw_u16_t needed);
    bool findReference_i(pw_u32_t number);
    void compareIndex_i();
    void markGap_i(CollectionData& reading);
    void refuse_i(const std::string& reason);
    void finish_i();
    void closeGap_i(pw_u64_t tick);
    void checkEnd_i();
    void fillSystem_i();
};

void CollectionReader::State::begin_i() {
    isReading = true;
    givenInstances = catalog.preambleInstances();
    blocks.restart();
    damage.report().lostBlocks = 0;
    damage.report().lostTicks = 0;
    counted.blocks = 0;
    if (!catalog.moments().empty()) {
        lastTick = catalog.moments().begin()->second.tick;
    }
}

/// The block's checksums are right, but it is not what it should be.
void CollectionReader::State::refuse_i(const std::string& reason) {
    damage.add(block.offset, block.end() - block.offset, nameOf(block.header.kind), reason);
    ++damage.report().lostBlocks;
    block.isUsable = false;
}

/// Decides whether what is missing before this block, or the block itself, held readings. The index lists all other
/// blocks but the references, whose places follow from the readings: one stands before the first samples block that
/// counts from it, its copy behind that.
void CollectionReader::State::lost_i() {
    const bool isSamples = block.header.kind == BlockKind::SAMPLES;
    pw_u64_t lost = block.lostBefore;
    if (lost > 0) {
        if (const Index* index = opener.index()) {
            lost -= std::min(lost, index->listedWithin(block.header.sequence - block.lostBefore,
                                                       block.header.sequence - 1));
        }
        const pw_u32_t needed =
            isSamples && block.isUsable ? SampleBlockDecoder::referenceOf(block.payload()) : 0;
        if (lost > 0 && isCopyDue) {
            --lost;
        }
        if (lost > 0 && needed != 0 && !decoder.hasReference(needed)) {
            --lost;
        }
    }
    areSamplesLost = areSamplesLost || lost > 0 || (isSamples && !block.isUsable);
}

void CollectionReader::State::compareIndex_i() {
    const Index* const index = opener.index();
    const BlockKind kind = block.header.kind;
    if (index == nullptr || kind == BlockKind::SAMPLES || kind == BlockKind::REFERENCE ||
        kind == BlockKind::INDEX) {
        return;
    }
    const auto& entries = index->entries;
    const auto found = std::ranges::lower_bound(entries, block.header.sequence, {}, &IndexEntry::sequence);
    const IndexEntry actual{kind, block.header.flags, block.header.ordinal, block.header.sequence,
                            block.offset};
    const bool isListed = found != entries.end() && *found == actual;
    listedSeen += isListed ? 1 : 0;
    const bool mayBeOmitted = index->omitted > 0 && found == entries.end();
    isIndexWrong = isIndexWrong || !(isListed || mayBeOmitted);
}

/// Instances that readings from now on need. False when some are lost for good.
bool CollectionReader::State::giveInstances_i(pw_u16_t needed) {
    for (; givenInstances < needed; ++givenInstances) {
        const auto* const messages = catalog.instancesOf(givenInstances);
        if (messages == nullptr) {
            return false;
        }
        added.insert(added.end(), messages->begin(), messages->end());
    }
    return true;
}

bool CollectionReader::State::findReference_i(pw_u32_t number) {
    std::string reason;
    BlockHeader header;
    pw_u64_t offset = block.end();
    for (int i = 0; i < c_copyDistance && blocks.headerAt(offset, header); ++i) {
        if (header.kind == BlockKind::REFERENCE && header.isCopy()) {
            return blocks.readAt(offset, copy, reason) && copy.isUsable &&
                   decoder.addReference(copy.payload(), reason) == 0 && decoder.hasReference(number);
        }
        offset += c_blockHeaderSize + header.length;
    }
    return false;
}

void CollectionReader::State::samples_i() {
    std::string reason;
    const pw_u32_t reference = SampleBlockDecoder::referenceOf(block.payload());
    if (!giveInstances_i(block.header.ordinal)) {
        refuse_i("its instances are lost");
    } else if (reference != 0 && !decoder.hasReference(reference) && !findReference_i(reference)) {
        refuse_i("the values it counts from are lost");
    } else if (decoder.open(block.payload(), reason) != 0) {
        refuse_i(reason);
    }
    if (!block.isUsable) {
        areSamplesLost = true;
        return;
    }
    isCopyDue = reference != 0 && reference != usedReference;
    usedReference = reference;
    closeGap_i(block.header.firstTick);
    lastTick = std::max(lastTick.value_or(0), decoder.lastTick());
    counted.readings += decoder.readings();
    counted.values += decoder.values();
    isInSamples = true;
}

/// The lost readings were taken before this tick.
void CollectionReader::State::closeGap_i(pw_u64_t tick) {
    if (!areSamplesLost) {
        return;
    }
    areSamplesLost = false;
    ++gaps;
    if (lastTick && tick > *lastTick) {
        damage.report().lostTicks += tick - *lastTick;
    }
}

void CollectionReader::State::instances_i() {
    if (!block.header.isCopy() && block.header.ordinal == givenInstances) {
        giveInstances_i(static_cast<pw_u16_t>(givenInstances + 1));
    }
}

void CollectionReader::State::take_i() {
    const BlockKind kind = block.header.kind;
    counted.blocks += kind != BlockKind::END && kind != BlockKind::INDEX ? 1 : 0;
    lost_i();
    isCopyDue = false;
    compareIndex_i();
    if (!block.isUsable) {
        return;
    }
    std::string reason;
    switch (kind) {
    case BlockKind::SAMPLES: samples_i(); return;
    case BlockKind::REFERENCE:
        if (decoder.addReference(block.payload(), reason) != 0) {
            refuse_i(reason);
        }
        return;
    case BlockKind::INDEX: opener.sawIndex(block); return;
    default: break;
    }
    if (kind == BlockKind::END) {
        endOffset = block.offset;
    }
    if (!catalog.add(block)) {
        refuse_i("not what its kind demands");
    } else if (kind == BlockKind::INSTANCES) {
        instances_i();
    }
}

void CollectionReader::State::markGap_i(CollectionData& reading) {
    tw_driver_msg& header = reading.header();
    pw_u32_t& marked = markedGaps[{header.id, header.first_instance}];
    if (marked != gaps) {
        marked = gaps;
        header.flags |= tw_driver_msg_flag::GAP;
    }
}

/// The end of a file must be there, and agree with what came before it.
void CollectionReader::State::checkEnd_i() {
    DamageReport& report = damage.report();
    report.isClosed = catalog.end || opener.index() != nullptr || opener.hasSeenIndex();
    if (report.isClosed && !opener.hasSeenIndex() && report.isWhole()) {
        damage.add(opener.size(), 0, nameOf(BlockKind::INDEX), "cut short");
    }
    if (const Index* index = opener.index(); index != nullptr && report.isWhole()) {
        const auto listed =
            static_cast<pw_u64_t>(std::ranges::count_if(index->entries, [](const IndexEntry& entry) {
                return entry.kind != BlockKind::INDEX && entry.offset != 0;
            }));
        if (isIndexWrong || listedSeen != listed || index->totals != catalog.end) {
            damage.add(opener.indexOffset(), opener.size() - opener.indexOffset(), nameOf(BlockKind::INDEX),
                       "does not agree with the blocks");
        }
    }
    if (catalog.end && report.isWhole() &&
        (catalog.end->readings != counted.readings || catalog.end->values != counted.values)) {
        damage.add(endOffset, c_blockHeaderSize, nameOf(BlockKind::END), "does not agree with the readings");
    }
}

void CollectionReader::State::finish_i() {
    isAtEnd = true;
    if (catalog.end) {
        closeGap_i(catalog.end->lastTick);
    }
    checkEnd_i();
    counted.lastTick = std::max(lastTick.value_or(0), catalog.end ? catalog.end->lastTick : 0);
    totals.readings = counted.readings;
    totals.values = counted.values;
    totals.blocks = counted.blocks;
    totals.lastTick = counted.lastTick;
    totals.bytes = opener.size();
    fillSystem_i();
    damage.sort();
}

/// The record was written at the begin only, so its end is the last reading.
void CollectionReader::State::fillSystem_i() {
    SystemMetadata* const system = catalog.system.get();
    if (system == nullptr || catalog.isSystemFinal) {
        return;
    }
    system->stopTSC = std::max(system->startTSC, counted.lastTick);
    system->producedSamples = counted.values;
    pw_u64_t tick = system->startTSC;
    pw_u64_t timeval = system->startTimeval;
    if (!catalog.moments().empty()) {
        const Moment& moment = catalog.moments().rbegin()->second;
        tick = moment.tick;
        timeval = moment.timeval;
    }
    system->stopTimeval = timeval;
    if (system->twaClockFreq > 0) {
        // Microseconds, as MHz are ticks in one of them; the moment may be later than the last reading.
        const double microseconds = (static_cast<double>(system->stopTSC) - static_cast<double>(tick)) /
                                    static_cast<double>(system->twaClockFreq);
        const double stop = static_cast<double>(timeval) + microseconds;
        constexpr double limit = 9.2e18; // what converts to 64 bits
        system->stopTimeval = stop > 0 && stop < limit ? static_cast<pw_u64_t>(stop) : timeval;
    }
}

CollectionReader::CollectionReader(std::unique_ptr<State> state) : m_state(std::move(state)) {}

CollectionReader::~CollectionReader() = default;

std::unique_ptr<CollectionReader> CollectionReader::open(const std::string& path, std::string& error) {
    auto source = ByteSource::ofFile(path, error);
    return source ? open(std::move(source), path, error) : nullptr;
}

std::unique_ptr<CollectionReader> CollectionReader::open(std::unique_ptr<ByteSource> source,
                                                         const std::string& name, std::string& error) {
    auto state = std::make_unique<State>(std::move(source), name);
    if (state->opener.open(error) != 0) {
        return nullptr;
    }
    const FileTotals totals = state->opener.totals();
    const FileHeader& header = state->opener.header();
    state->totals = {state->opener.size(), totals.readings, totals.values, totals.blocks,
                     totals.lastTick,      header.major,    header.minor};
    return std::unique_ptr<CollectionReader>(new CollectionReader(std::move(state)));
}

CollectionReader::Event CollectionReader::next(CollectionData& reading, SavedInstances& added) {
    State& state = *m_state;
    if (!state.isReading) {
        state.begin_i();
    }
    for (;;) {
        if (!state.added.empty()) {
            added = std::move(state.added.front());
            state.added.pop_front();
            return Event::INSTANCES;
        }
        if (state.isInSamples) {
            if (state.decoder.next(reading)) {
                if (state.gaps > 0) {
                    state.markGap_i(reading);
                }
                return Event::READING;
            }
            state.isInSamples = false;
        }
        if (state.isAtEnd) {
            return Event::END;
        }
        if (state.blocks.next(state.block)) {
            state.take_i();
        } else {
            state.finish_i();
        }
    }
}

SystemMetadata* CollectionReader::system() {
    return m_state->catalog.system.get();
}

const std::vector<std::unique_ptr<Metadata>>& CollectionReader::declarations() const {
    return m_state->catalog.declarations;
}

const std::vector<SavedInstances>& CollectionReader::instances() const {
    return m_state->catalog.instances;
}

const std::vector<std::pair<std::string, std::string>>& CollectionReader::configurations() const {
    return m_state->catalog.configurations;
}

const std::vector<TWClockSync>& CollectionReader::clocks() const {
    return m_state->catalog.clocks;
}

const std::vector<std::string>& CollectionReader::notes() const {
    return m_state->catalog.notes;
}

const CollectionReader::Totals& CollectionReader::totals() const {
    return m_state->totals;
}

const DamageReport& CollectionReader::damage() const {
    return m_state->damage.report();
}

bool CollectionReader::hasIndex() const {
    return m_state->opener.index() != nullptr;
}

std::uint64_t CollectionReader::bytesRead() const {
    return m_state->blocks.bytesRead();
}

} // namespace pwr::saved
