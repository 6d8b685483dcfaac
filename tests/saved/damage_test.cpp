#include "tests/saved/collection_fixture.h"

#include "common/saved/file_format.h"

#include <algorithm>

namespace tests {

namespace {

/// Where blocks begin.
std::vector<std::size_t> blocksOf(const std::vector<char>& bytes) {
    std::vector<std::size_t> places;
    const auto& mark = pwr::saved::c_blockMark;
    const auto isSame = [](char left, unsigned char right) {
        return static_cast<unsigned char>(left) == right;
    };
    for (auto at = bytes.begin();; ++at) {
        at = std::search(at, bytes.end(), mark.begin(), mark.end(), isSame);
        if (at == bytes.end()) {
            return places;
        }
        places.push_back(static_cast<std::size_t>(at - bytes.begin()));
    }
}

} // namespace

TEST_F(CollectionTest, everyFlippedBitIsNoticedAndCostsNoMoreThanItsBlock) {
    std::vector<char> damaged = collection(1);
    const Told whole = told(damaged);
    ASSERT_TRUE(whole.damage.isWhole());
    std::size_t shortest = whole.readings.size();
    for (std::size_t bit = 0; bit < damaged.size() * 8; ++bit) {
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        const Told now = told(damaged);
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        ASSERT_EQ("", now.error) << bit;
        ASSERT_FALSE(now.damage.isWhole()) << bit;
        ASSERT_EQ(1U, now.damage.stretches.size()) << bit;
        ASSERT_LE(now.damage.stretches[0].offset, bit / 8);
        ASSERT_LE(whole.readings.size(), now.readings.size() + 2) << "one block is two readings";
        ASSERT_TRUE(std::ranges::includes(whole.readings, now.readings)) << bit;
        const bool isLost = now.readings.size() < whole.readings.size();
        ASSERT_EQ(isLost, now.damage.lostTicks > 0) << bit;
        const bool isLastLost = isLost && now.readings.back() != whole.readings.back();
        ASSERT_EQ(isLost && !isLastLost ? 1 : 0, std::ranges::count(now.gaps, 1)) << bit;
        ASSERT_EQ(isLost ? now.instances : whole.instances, now.instances) << bit;
        ASSERT_EQ(whole.facts, now.facts) << bit << ": the copies have it";
        shortest = std::min(shortest, now.readings.size());
    }
    EXPECT_LT(shortest, whole.readings.size());
}

TEST_F(CollectionTest, everyTruncationIsNoticedAndLeavesWhatIsBefore) {
    const std::vector<char> all = collection(2);
    const Told whole = told(all);
    std::size_t readings = 0;
    for (std::size_t size = 0; size < all.size(); ++size) {
        const Told now = told({all.begin(), all.begin() + static_cast<std::ptrdiff_t>(size)});
        if (!now.error.empty()) {
            ASSERT_LE(size, 32U) << now.error;
            continue;
        }
        ASSERT_FALSE(now.damage.isWhole()) << size;
        ASSERT_TRUE(now.damage.stretches.empty() || now.damage.stretches[0].reason == "cut short") << size;
        ASSERT_GE(now.readings.size(), readings) << size;
        ASSERT_TRUE(std::equal(now.readings.begin(), now.readings.end(), whole.readings.begin())) << size;
        readings = now.readings.size();
    }
    EXPECT_EQ(whole.readings.size(), readings);
}

TEST_F(CollectionTest, blocksThatAreGoneOrRepeatedOrBytesThatCameAreNoticed) {
    const std::vector<char> all = collection(3);
    const Told whole = told(all);
    const std::vector<std::size_t> places = blocksOf(all);
    for (std::size_t i = 0; i + 1 < places.size(); ++i) {
        const auto begin = all.begin() + static_cast<std::ptrdiff_t>(places[i]);
        const auto end = all.begin() + static_cast<std::ptrdiff_t>(places[i + 1]);
        std::vector<char> gone(all.begin(), begin);
        gone.insert(gone.end(), end, all.end());
        std::vector<char> repeated(all.begin(), end);
        repeated.insert(repeated.end(), begin, all.end());
        std::vector<char> grown = all;
        grown.insert(grown.begin() + (end - all.begin()) - 1, 3, 'x');
        for (const auto& bytes : {gone, repeated, grown}) {
            const Told now = told(bytes);
            EXPECT_FALSE(now.damage.isWhole()) << i;
            EXPECT_LE(whole.readings.size(), now.readings.size() + 2) << i;
            EXPECT_TRUE(std::ranges::includes(whole.readings, now.readings)) << i;
        }
    }
}

/// Whatever two blocks are hit, a message's first reading behind lost ones says so.
TEST_F(CollectionTest, twoDamagesTogetherHideNoGap) {
    const std::vector<char> all = collection(4);
    const Told whole = told(all);
    const std::vector<std::size_t> places = blocksOf(all);
    const auto inHeader = [](std::size_t place) { return place + 20; };
    const auto inPayload = [](std::size_t place) { return place + 45; };
    for (std::size_t i = 0; i < 4 * places.size() * places.size(); ++i) {
        const std::size_t first = places[i / 4 % places.size()];
        const std::size_t second = places[i / 4 / places.size()];
        std::vector<char> damaged = all;
        damaged[(i & 1) != 0 ? inHeader(first) : inPayload(first)] ^= 1;
        damaged[(i & 2) != 0 ? inHeader(second) : inPayload(second)] ^= 2;
        const Told now = told(damaged);
        ASSERT_FALSE(now.damage.isWhole()) << i;
        auto at = whole.readings.begin();
        for (std::size_t j = 0; j < now.readings.size(); ++j, ++at) {
            const auto found = std::find(at, whole.readings.end(), now.readings[j]);
            ASSERT_NE(whole.readings.end(), found) << first << " " << second;
            ASSERT_TRUE(found == at || now.gaps[j] == 1) << first << " " << second << " " << j;
            at = found;
        }
    }
}

TEST_F(CollectionTest, aRepairedFileStillTellsWhatIsMissing) {
    std::vector<char> damaged = collection(3);
    const std::vector<std::size_t> places = blocksOf(damaged);
    const std::string from = m_path + ".damaged";
    const std::string to = m_path + ".repaired";
    for (std::size_t i = 0; i < places.size(); ++i) {
        damaged[places[i] + 45] ^= 1;
        std::ofstream(from, std::ios::binary)
            .write(damaged.data(), static_cast<std::streamsize>(damaged.size()));
        const Told before = told(damaged);
        damaged[places[i] + 45] ^= 1;
        std::filesystem::remove(to);
        pwr::saved::DamageReport damage;
        std::string error;
        ASSERT_EQ(0, pwr::saved::repairCollection(from, to, damage, error)) << error;
        EXPECT_EQ(1U, damage.stretches.size());
        EXPECT_EQ(1, pwr::saved::repairCollection(from, to, damage, error)) << "never over another file";

        const auto reader = CollectionReader::open(to, error);
        ASSERT_TRUE(reader && reader->hasIndex()) << error;
        const Told now = readAll(*reader);
        EXPECT_EQ(before.readings, now.readings);
        EXPECT_EQ(before.gaps, now.gaps);
        EXPECT_TRUE(now.damage.stretches.empty() && now.damage.isClosed);
        const bool isEndOrIndex = i + 2 >= places.size(); // they were written anew
        EXPECT_EQ(isEndOrIndex ? 0U : 1U, now.damage.lostBlocks) << i;
        EXPECT_EQ(before.damage.lostTicks, now.damage.lostTicks);
        EXPECT_TRUE(reader->notes().back().starts_with("Repaired: left out ")) << reader->notes().back();
    }
    std::filesystem::remove(from);
    std::filesystem::remove(to);
}

} // namespace tests
