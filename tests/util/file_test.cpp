#include "common/line_reader.h"
#include "common/platform/clock.h"
#include "common/platform/file.h"
#include "common/pw_utils.h"
#include "common/result_file.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <unistd.h>

namespace pwr {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FileTest : public testing::Test {
public:
    FileTest(const FileTest&) = delete;
    FileTest& operator=(const FileTest&) = delete;

protected:
    FileTest() { EXPECT_EQ(0, mkpath(m_root)); }
    ~FileTest() override { std::filesystem::remove_all(platform::nativePath(m_root)); }
    std::string path(const std::string& name) const { return m_root + "/" + name; }
    std::string make(const std::string& name, const std::string& content = "") const {
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(openFileHandle(path(name), "wb"),
                                                                   closeFile);
        EXPECT_NE(nullptr, file) << name;
        EXPECT_EQ(content.size(), std::fwrite(content.data(), 1, content.size(), file.get()));
        return path(name);
    }
    std::vector<std::string> linesOf(const std::string& content) const {
        std::vector<std::string> lines;
        EXPECT_EQ(0, LineReader::get_all_lines(make("lines", content).c_str(), lines));
        return lines;
    }
    static int closeFile(std::FILE* file) { return file == nullptr ? 0 : std::fclose(file); }

private:
    std::string m_root =
        tw_temp_directory_path() + "/kr_util_test_\xc3\xa4_" + std::to_string(platform::performanceCounter());
};

TEST_F(FileTest, linesOfAnyContent) {
    using Lines = std::vector<std::string>;
    EXPECT_EQ(Lines{}, linesOf(""));
    EXPECT_EQ((Lines{"a", "", "b"}), linesOf("a\r\n\nb"));
    EXPECT_EQ((Lines{"a\rb", "c\r"}), linesOf("a\rb\nc\r")); // only before a line feed
    const std::string zeros("\0x\0", 3);
    EXPECT_EQ((Lines{zeros, zeros}), linesOf(zeros + "\n" + zeros));
    // Lines that end at, before and behind the edges of a chunk, with the pair of line ends cut in two.
    for (const std::size_t length : {1021U, 1022U, 1023U, 1024U, 2045U, 2046U, 2047U}) {
        const std::string line(length, 'x');
        EXPECT_EQ((Lines{line, "next"}), linesOf(line + "\r\nnext")) << length;
        EXPECT_EQ((Lines{line, line}), linesOf(line + "\n" + line)) << length;
    }
}

TEST_F(FileTest, linesOfNoFile) {
    std::deque<std::string> lines = {"before"};
    EXPECT_EQ(-1, LineReader::get_all_lines(path("none").c_str(), lines));
    EXPECT_EQ(-1, LineReader::get_all_lines(static_cast<const char*>(nullptr), lines));
    EXPECT_EQ(0, LineReader::get_all_lines(make("one", "1\n").c_str(), lines));
    EXPECT_THAT(lines, ElementsAre("before", "1"));
}

TEST(LineReader, trimsAndStrips) {
    for (const auto& [text, trimmed] : std::vector<std::pair<std::string, std::string>>{
             {" \ta b\r\n", "a b"}, {"   ", "   "}, {"", ""}, {"a", "a"}, {"\va", "\va"}}) {
        EXPECT_EQ(trimmed, LineReader::trim(text));
        std::string inPlace = text;
        LineReader::trim(inPlace);
        EXPECT_EQ(trimmed, inPlace);
    }
    std::string text = "aXbXX";
    LineReader::strip(text, 'X');
    EXPECT_EQ("ab", text);
}

TEST_F(FileTest, foldersAndFiles) {
    EXPECT_EQ(0, mkpath(path("a/b//c/")));
    EXPECT_EQ(0, mkpath(path("a/b")));
    const std::string file = make("a/file", "1");
    EXPECT_EQ(1, mkpath(file + "/below"));
    EXPECT_EQ(1, mkpath(file));
    EXPECT_EQ(1, mkpath(""));
    EXPECT_TRUE(isDir(path("a/b/c")) && tw_dirExists(path("a")) && pw_fileExists(file));
    EXPECT_FALSE(tw_dirExists(file) || pw_fileExists(path("a")) || pw_fileExists(path("none")));

    const std::string newer = make("newer", "22");
    EXPECT_TRUE(platform::renameReplacing(newer, file));
    std::vector<std::string> lines;
    LineReader::get_all_lines(file.c_str(), lines);
    EXPECT_THAT(lines, ElementsAre("22"));
    EXPECT_FALSE(pw_fileExists(newer) || platform::renameReplacing(newer, file));
}

TEST_F(FileTest, resultsAppearWhole) {
    const std::string result = make("result", "old");
    std::string error;
    {
        ResultFile dropped(result);
        dropped.write("new");
        EXPECT_EQ("", dropped.getError());
    }
    EXPECT_EQ(std::vector<std::string>{result}, doGlob(path("*")));
    EXPECT_EQ(0, ResultFile::writeWhole(result, "new", error));
    std::vector<std::string> lines;
    LineReader::get_all_lines(result.c_str(), lines);
    EXPECT_THAT(lines, ElementsAre("new"));
    mkpath(path("folder"));
    EXPECT_EQ(1, ResultFile::writeWhole(path("folder"), "new", error));
    EXPECT_THAT(error, testing::StartsWith(path("folder") + ": "));
    EXPECT_FALSE(pw_fileExists(path("folder.part")));

    std::error_code failure;
    const std::filesystem::path sink = platform::nativePath(path("sink"));
    std::filesystem::create_symlink("/dev/null", sink, failure);
    if (!failure && std::filesystem::is_character_file(sink)) {
        EXPECT_EQ(0, ResultFile::writeWhole(path("sink"), "new", error));
        EXPECT_TRUE(std::filesystem::is_character_file(sink)) << "a device must not become a file";
    }
}

TEST_F(FileTest, descriptorsAndStreams) {
    errno = 0;
    EXPECT_EQ(-1, pw_open(path("none").c_str(), O_RDONLY));
    EXPECT_EQ(ENOENT, errno);
    EXPECT_FALSE(pw_strerror(ENOENT).empty());
    // A stream is led elsewhere and back, as a host does with its standard output.
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(openFileHandle(path("first"), "wb"),
                                                                 closeFile);
    const int second = pw_open(path("second").c_str(), O_WRONLY | O_CREAT | O_TRUNC);
    ASSERT_GE(second, 0);
    EXPECT_EQ(fileno(stream.get()), pw_dup2(second, fileno(stream.get())));
    std::fputs("to the second", stream.get());
    ASSERT_EQ(stream.get(), pw_freopen(path("third").c_str(), "wb", stream.get()));
    std::fputs("to the third", stream.get());
    std::fflush(stream.get());
    std::vector<std::string> lines;
    for (const char* name : {"first", "second", "third"}) {
        LineReader::get_all_lines(path(name).c_str(), lines);
    }
    EXPECT_THAT(lines, ElementsAre("to the second", "to the third"));
    close(second);
}

TEST_F(FileTest, patterns) {
    for (const char* name : {"cpu0", "cpu1", "cpu10", "gpu"}) {
        mkpath(path(name));
        make(std::string(name) + "/freq");
    }
    make(".hidden");
    make("[x]");
    struct Case {
        const char* pattern;
        std::vector<std::string> names;
    };
    for (const Case& c : {
             Case{"cpu*", {"cpu0", "cpu1", "cpu10"}},
             Case{"?pu", {"gpu"}},
             Case{"cpu[1-9]*", {"cpu1", "cpu10"}},
             Case{"cpu[!1]", {"cpu0"}},
             Case{"*p*0/fr?q", {"cpu0/freq", "cpu10/freq"}},
             Case{"*/none", {}},
             Case{"cpu0/freq", {"cpu0/freq"}},
             Case{"none", {}},
             Case{".h*", {".hidden"}},
             Case{"[[]x]", {"[x]"}},
             Case{"*[", {}},
             Case{"*", {"[x]", "cpu0", "cpu1", "cpu10", "gpu"}},
         }) {
        std::vector<std::string> expected;
        for (const std::string& name : c.names) {
            expected.push_back(path(name));
        }
        EXPECT_EQ(expected, doGlob(path(c.pattern))) << c.pattern;
    }
    EXPECT_THAT(doGlob(""), IsEmpty());
    EXPECT_THAT(doGlob(tw_temp_directory_path() + "/"), ElementsAre(tw_temp_directory_path() + "/"));
}

TEST(Paths, namesAndSeparators) {
    const std::string separator(1, PathOps::getPathSeparator());
    EXPECT_EQ("c.cfg", PathOps::getFilenameFromPath("a/b" + separator + "c.cfg"));
    EXPECT_EQ("c", PathOps::getFilenameFromPath("c"));
    EXPECT_EQ("", PathOps::getFilenameFromPath("a/"));
    EXPECT_EQ("a" + separator + "b" + separator + "c", PathOps::normalizePathSeparator("a/b\\c"));
    EXPECT_EQ("", pw_getenv("KR_NO_SUCH_VARIABLE"));
    EXPECT_NE("", pw_getenv("PATH"));
}

} // namespace
} // namespace pwr
