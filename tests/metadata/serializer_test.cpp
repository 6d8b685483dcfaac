#include "common/metadata/serializer.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <deque>
#include <limits>
#include <list>
#include <map>
#include <memory>
#include <set>

namespace {

using pwr::Serializer;
using Bytes = std::vector<char>;
using Names = std::vector<std::string>;

std::string hexOf(const Bytes& bytes) {
    std::string text;
    for (const char byte : bytes) {
        constexpr const char* digits = "0123456789abcdef";
        const auto number = static_cast<unsigned char>(byte);
        text += {digits[number >> 4], digits[number & 15]};
    }
    return text;
}

template <class T> std::string written(const T& value) {
    Serializer out(0);
    out.write(value);
    return hexOf(out.get_buffer());
}

/// Writes, reads back, and reads every shortened copy: each must be a miss that leaves the target alone.
template <class T> void expectRoundTrip(const T& value, const T& untouched) {
    Serializer out(0);
    out.write(value);
    const Bytes bytes = out.get_buffer();
    T target = untouched;
    Serializer in(bytes);
    EXPECT_EQ(bytes.size(), in.read(target));
    EXPECT_EQ(value, target);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        Serializer cut(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)));
        T kept = untouched;
        EXPECT_EQ(0U, cut.read(kept)) << size;
        EXPECT_EQ(untouched, kept) << size;
        Bytes all(size);
        EXPECT_EQ(size, cut.read_from(all.data(), size)) << "a miss consumes nothing";
    }
}

TEST(SerializerTest, primitivesHaveTheirExactBytes) {
    EXPECT_EQ("01", written(true));
    EXPECT_EQ("fe", written(std::int8_t{-2}));
    EXPECT_EQ("0201", written(std::uint16_t{0x0102}));
    EXPECT_EQ("feffffff", written(std::int32_t{-2}));
    EXPECT_EQ("0807060504030201", written(0x0102030405060708ULL));
    EXPECT_EQ("0000c0bf", written(-1.5F));
    EXPECT_EQ("000000000000f8bf", written(-1.5));
    EXPECT_EQ("0000", written(std::string()));
    EXPECT_EQ("03006100ff", written(std::string("a\0\xff", 3)));
    EXPECT_EQ("02006869", written("hi"));
    EXPECT_EQ("02000100ffff", written(std::list<std::int16_t>{1, -1}));
    EXPECT_EQ("0300010001", written(std::vector<bool>{true, false, true}));
    EXPECT_EQ("0200010061010062", written(std::set<std::string>{"b", "a"}));
    EXPECT_EQ("020001000a02000b", written(std::map<std::uint16_t, std::uint8_t>{{2, 11}, {1, 10}}));
    EXPECT_EQ("05010078", written(std::pair<std::uint8_t, std::string>(5, "x")));
    const std::string longText = written(std::string(70000, 'x'));
    EXPECT_EQ(2 * std::size_t{70002}, longText.size());
    EXPECT_EQ("701178", longText.substr(0, 6)) << "the length is cut, the bytes are all there";
    Serializer several(1);
    several.write(std::uint8_t{1}, std::string("ab"), std::uint16_t{3});
    EXPECT_EQ("01020061620300", hexOf(several.get_buffer()));
}

TEST(SerializerTest, valuesAreReadBackWholeOrNotAtAll) {
    expectRoundTrip<bool>(true, false);
    expectRoundTrip<std::uint64_t>(std::numeric_limits<std::uint64_t>::max(), 7);
    expectRoundTrip<float>(std::numeric_limits<float>::denorm_min(), 7);
    expectRoundTrip<Names>({"one", "two", "three"}, {"kept"});
    expectRoundTrip<std::vector<bool>>({true, false}, {true});
    expectRoundTrip<std::deque<std::pair<std::uint16_t, std::string>>>({{1, "a"}, {2, "b"}}, {{9, "z"}});
    expectRoundTrip<std::set<std::string>>({"a", "b"}, {"z"});
    expectRoundTrip<std::map<std::uint32_t, Names>>({{1, {"a"}}, {2, {}}}, {{9, {"z"}}});
}

TEST(SerializerTest, countsOfForeignBytesAreNotTrusted) {
    Serializer in(Bytes{'\0', '\0', '\0', '\0', '\xff', '\xff', '\1', '\0', 'a'});
    Names names{"old"};
    std::map<int, int> numbers{{1, 1}};
    EXPECT_EQ(2U, in.read(names));
    EXPECT_EQ(2U, in.read(numbers));
    EXPECT_TRUE(names.empty() && numbers.empty()) << "empty, not missing";
    names = {"kept"};
    EXPECT_EQ(0U, in.read(names));
    EXPECT_EQ(0U, in.read(numbers));
    EXPECT_EQ(Names{"kept"}, names);
    bool flag = false;
    Serializer odd(Bytes{'\2'});
    EXPECT_EQ(1U, odd.read(flag));
    EXPECT_TRUE(flag);
}

TEST(SerializerTest, textsThatCannotBeRead) {
    struct Case {
        const char* name;
        Bytes bytes;
        std::size_t consumed;
        bool isText;
    };
    for (const Case& c :
         {Case{"nothing", {}, 0, false}, Case{"half a length", {'\1'}, 0, false},
          Case{"empty", {'\0', '\0'}, 2, true}, Case{"cut short", {'\3', '\0', 'a', 'b'}, 2, false}}) {
        Serializer in(c.bytes);
        std::string text = "kept";
        EXPECT_EQ(0U, in.read(text)) << c.name;
        EXPECT_EQ("kept", text) << c.name;
        Bytes rest(c.bytes.size() - c.consumed);
        EXPECT_EQ(rest.size(), in.read_from(rest.data(), rest.size())) << c.name;
        in.rewind_read(c.bytes.size());
        EXPECT_EQ(c.isText, in.read_text(text)) << c.name;
        EXPECT_EQ(c.isText ? "" : "kept", text) << c.name;
    }
}

/// The size of the buffer shows in how much can be read.
std::size_t readable(Serializer& serializer) {
    std::size_t count = 0;
    for (char byte = 0; serializer.read(byte) != 0;) {
        ++count;
    }
    serializer.rewind_read(count);
    return count;
}

TEST(SerializerTest, growsByDoubling) {
    struct Case {
        std::size_t initial, written, size;
    };
    for (const Case& c : {Case{0, 0, 0}, Case{0, 1, 128}, Case{0, 128, 128}, Case{0, 129, 256},
                          Case{0, 513, 1024}, Case{3, 4, 6}, Case{3, 7, 12}, Case{1024, 10, 1024}}) {
        Serializer out(c.initial);
        const Bytes source(c.written, 'x');
        out.write_to(source.data(), source.size());
        EXPECT_EQ(c.size, readable(out)) << c.initial << " " << c.written;
        EXPECT_EQ(c.written == 0, out.empty());
        EXPECT_EQ(c.written, out.get_buffer().size());
        EXPECT_EQ(c.written, out.get_buffer().capacity());
    }
}

TEST(SerializerTest, theUnwrittenTailReadsAsZerosUntilItIsCut) {
    Serializer out(64);
    out.write(std::uint32_t{1});
    Bytes all(65);
    EXPECT_EQ(0U, out.read_from(all.data(), 65));
    ASSERT_EQ(64U, out.read_from(all.data(), 64));
    EXPECT_EQ(Bytes(60), Bytes(all.begin() + 4, all.begin() + 64));
    EXPECT_EQ(4U, out.get_buffer().size());
    Names names;
    EXPECT_EQ(0U, readable(out)) << "cut below the reading position";
    EXPECT_EQ(0U, out.read(names));
    EXPECT_FALSE(out.read_text(names.emplace_back()));
    out.rewind_read(62);
    EXPECT_EQ(2U, readable(out));
}

TEST(SerializerTest, savedBytesAreReadableAndOverwrittenFromTheFront) {
    Serializer serializer(Bytes{'a', 'b', 'c'});
    EXPECT_TRUE(serializer.empty());
    serializer.write_to("x", 1);
    serializer.write_to(nullptr, 5);
    serializer.write_to("y", 0);
    Bytes bytes(3);
    EXPECT_EQ(3U, serializer.read_from(bytes.data(), 3));
    EXPECT_EQ((Bytes{'x', 'b', 'c'}), bytes);
    EXPECT_EQ(Bytes{'x'}, serializer.get_buffer());
}

TEST(SerializerTest, rewindsNoFurtherThanWasRead) {
    const pwr::LogCapture log;
    Serializer in(Bytes{'a', 'b', 'c'});
    char byte = 0;
    ASSERT_TRUE(in.read(byte) == 1 && in.read(byte) == 1);
    in.rewind_read(3);
    EXPECT_EQ("WARNING: trying to rewind 3 bytes, but only 2 bytes actually read!\n", log.text());
    in.rewind_read(1);
    EXPECT_EQ(1U, in.read(byte));
    EXPECT_EQ('b', byte);
}

TEST(SerializerTest, copiesBytesIntoAText) {
    const std::unique_ptr<char, decltype(&std::free)> copy(Serializer::read_string("a\0bc", 3), &std::free);
    EXPECT_EQ(std::string("a\0b\0", 4), std::string(copy.get(), 4));
    EXPECT_EQ(nullptr, Serializer::read_string(nullptr, 3));
}

} // namespace
