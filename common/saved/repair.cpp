#include "common/metadata/stream_codec.h"
#include "common/saved/block_reader.h"
#include "common/saved/block_writer.h"
#include "common/saved/collection_opener.h"
#include "common/saved/collection_reader.h"
#include "common/saved/payloads.h"

#include "common/platform/file.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>
#include <system_error>

namespace pwr::saved {

namespace {

/// Enough to tell what happened; a badly damaged file may have very many stretches.
constexpr std::size_t c_namedStretches = 20;

/// What the copy says of the original, for whoever reads a report made from it.
std::vector<std::string> linesOf(const DamageReport& damage) {
    std::vector<std::string> lines;
    lines.push_back(
        "Repaired: " + std::to_string(damage.lostBlocks) + " blocks are lost" +
        (damage.isClosed ? "" : "; the collection was not closed, its last second may be missing"));
    for (const Damage& stretch : damage.stretches) {
        if (lines.size() > c_namedStretches) {
            lines.push_back("Repaired: and " + std::to_string(damage.stretches.size() - c_namedStretches) +
                            " more places");
            break;
        }
        lines.push_back("Repaired: left out " + std::to_string(stretch.length) + " bytes at " +
                        std::to_string(stretch.offset) + " (" + stretch.kind + "): " + stretch.reason);
    }
    return lines;
}

/// Reads all of the file as a report would, so that the damage and what can be used of it are known.
int examine(const std::string& from, DamageReport& damage, FileTotals& totals, std::string& error) {
    const auto reader = CollectionReader::open(from, error);
    if (!reader) {
        return 1;
    }
    CollectionData reading;
    SavedInstances added;
    while (reader->next(reading, added) != CollectionReader::Event::END) {}
    damage = reader->damage();
    const CollectionReader::Totals& found = reader->totals();
    totals = {found.readings, found.values, found.blocks, found.lastTick};
    return 0;
}

FileHeader headerOf(ByteSource& source, BlockReader& blocks) {
    FileHeaderBytes bytes{};
    FileHeader header;
    if (source.readAt(0, bytes) == bytes.size() && decode(bytes, header)) {
        return header;
    }
    // The blocks repeat the begin of the identity, and nothing else of it is needed.
    header = FileHeader{};
    BlockHeader first;
    const auto place = blocks.find(c_fileHeaderSize, source.size());
    if (place && blocks.headerAt(*place, first)) {
        stream::storeScalar(header.identity.data(), first.tag);
    }
    return header;
}

/// Blocks keep their running numbers, so that what is missing stays visible as a hole. So does a torn end.
int copyBlocks(BlockReader& blocks, const DamageReport& known, pw_u64_t size, std::set<pw_u32_t>& copied,
               BlockWriter& out) {
    constexpr std::size_t atOnce = std::size_t{4} << 20;
    Block block;
    bool hasEnd = false;
    while (blocks.next(block)) {
        const BlockKind kind = block.header.kind;
        if (kind == BlockKind::END || kind == BlockKind::INDEX) {
            // The new end takes the place of the old one.
            if (!hasEnd) {
                out.continueAt(block.header.sequence - (kind == BlockKind::INDEX ? 1U : 0U));
            }
            hasEnd = true;
            continue;
        }
        if (!block.isUsable) {
            continue;
        }
        out.appendAsIs(block.header, block.stored);
        if (block.header.kind != BlockKind::SAMPLES && block.header.kind != BlockKind::REFERENCE) {
            copied.insert(block.header.sequence);
        }
        if (out.gathered() > atOnce && out.flush() != 0) {
            return 1;
        }
    }
    if (!hasEnd && !known.stretches.empty() &&
        known.stretches.back().offset + known.stretches.back().length >= size) {
        out.continueAt(out.nextSequence() + 1);
    }
    return out.flush();
}

/// A hole that held no readings stays known as such.
void noteLost(const Index& index, const std::set<pw_u32_t>& copied, BlockWriter& out) {
    for (const IndexEntry& entry : index.entries) {
        if (entry.kind != BlockKind::END && !copied.contains(entry.sequence)) {
            out.noteLost(entry);
        }
    }
}

int writeRepaired(const std::string& from, BlockWriter& out, const DamageReport& damage,
                  const FileTotals& totals, std::string& error) {
    const auto source = ByteSource::ofFile(from, error);
    if (!source) {
        return 1;
    }
    DamageLog known; // told already
    BlockReader blocks(*source, known);
    const FileHeader header = headerOf(*source, blocks);
    blocks.setTag(header.tag());
    out.start(header);
    Block block;
    const std::optional<Index> index = readIndex(blocks, source->size(), block);
    std::set<pw_u32_t> copied;
    if (copyBlocks(blocks, known.report(), source->size(), copied, out) == 0 && index) {
        noteLost(*index, copied, out);
    }
    if (!damage.isWhole()) {
        std::vector<char> payload;
        encode(linesOf(damage), payload);
        // Notes are told apart by their running numbers.
        out.append(out.store(BlockKind::NOTES, 0, 0, payload), totals.lastTick);
    }
    if (out.finish(totals) != 0) {
        error = out.error();
        return 1;
    }
    return 0;
}

} // namespace

int repairCollection(const std::string& from, const std::string& to, DamageReport& damage,
                     std::string& error) {
    FileTotals totals;
    BlockWriter out;
    if (examine(from, damage, totals, error) != 0) {
        return 1;
    }
    if (out.create(to, true) != 0) {
        error = out.error();
        return 1;
    }
    if (writeRepaired(from, out, damage, totals, error) == 0) {
        return 0;
    }
    out.close();
    std::error_code ignored;
    std::filesystem::remove(platform::nativePath(to), ignored);
    return 1;
}

} // namespace pwr::saved
