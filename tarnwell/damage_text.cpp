#include "tarnwell/damage_text.h"

#include "tarnwell/number_words.h"

namespace tarnwell {

std::string damageLine(const pwr::saved::Damage& damage) {
    return damage.kind + " at byte " + std::to_string(damage.offset) + ", " + counted(damage.length, "byte") +
           ": " + damage.reason;
}

std::vector<std::string> lossLines(const pwr::saved::CollectionReader& reader, std::uint64_t promised,
                                   double ticksPerSecond) {
    std::vector<std::string> lines;
    const pwr::saved::DamageReport& damage = reader.damage();
    const std::uint64_t found = reader.totals().readings;
    if (damage.lostBlocks > 0 || damage.lostTicks > 0) {
        std::string line = "Lost: " + counted(damage.lostBlocks, "block");
        if (damage.lostTicks > 0 && ticksPerSecond > 0) {
            line +=
                ", " + seconds(static_cast<double>(damage.lostTicks) / ticksPerSecond) + " of the collection";
        }
        // Without the end block nobody knows how many there were.
        line += promised > found ? ", " + counted(promised - found, "reading") : std::string();
        lines.push_back(std::move(line));
    }
    if (!damage.isClosed) {
        lines.emplace_back("The collection was not closed: its last second may be missing");
    }
    return lines;
}

} // namespace tarnwell
