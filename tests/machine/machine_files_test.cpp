#include "common/machine_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace pwr;

namespace {

namespace fs = std::filesystem;

class RootFolderTest : public ::testing::Test {
protected:
    RootFolderTest()
        : m_folder(fs::temp_directory_path() / "kr_machine_files" /
                   ::testing::UnitTest::GetInstance()->current_test_info()->name()) {
        fs::remove_all(m_folder);
        fs::create_directories(m_folder);
        write("proc/stat", "cpu 1 2 3\n");
        for (const char* cpu : {"cpu0", "cpu2", "cpu10", "cpufreq"}) {
            write(std::string("sys/") + cpu + "/id", cpu);
        }
        machine = openMachine(m_folder.string(), reason);
    }
    ~RootFolderTest() override {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    void SetUp() override { ASSERT_TRUE(machine) << reason; }

    void write(const std::string& path, const std::string& text) {
        fs::create_directories((m_folder / path).parent_path());
        std::ofstream(m_folder / path, std::ios::binary) << text;
    }

    fs::path m_folder;
    std::string reason;
    std::unique_ptr<MachineFiles> machine;
};

TEST_F(RootFolderTest, isAMachineBelowTheFolder) {
    std::string text = "old";
    EXPECT_EQ(MachineStatus::OK, machine->read("/proc/stat", text));
    EXPECT_EQ("cpu 1 2 3\n", text);
    EXPECT_EQ(MachineStatus::MISSING, machine->read("/proc/none", text));
    EXPECT_EQ("", text);
    EXPECT_NE(MachineStatus::OK, machine->read("/proc", text)) << "a folder is no text";
    std::vector<std::string> names;
    EXPECT_EQ(MachineStatus::OK, machine->list("/sys", names));
    EXPECT_EQ((std::vector<std::string>{"cpu0", "cpu2", "cpu10", "cpufreq"}), names);
    EXPECT_EQ(MachineStatus::MISSING, machine->list("/none", names));
    EXPECT_TRUE(names.empty());
    EXPECT_TRUE(machine->exists("/sys/cpu2"));
    EXPECT_FALSE(machine->exists("/sys/cpu3"));
    EXPECT_TRUE(machine->moments().empty());
}

TEST_F(RootFolderTest, openFileSeesWhatChanges) {
    MachineStatus status = MachineStatus::FAILED;
    const std::unique_ptr<MachineFile> file = machine->open("/proc/stat", status);
    ASSERT_TRUE(file) << toText(status);
    std::string text;
    EXPECT_EQ(MachineStatus::OK, file->read(text));
    const std::string big(100000, 'x');
    for (const std::string& now : {std::string("cpu 4\n"), big, std::string("short")}) {
        write("proc/stat", now);
        EXPECT_EQ(MachineStatus::OK, file->read(text));
        EXPECT_EQ(now, text);
    }
    std::error_code error;
    write("proc/stat.new", "another");
    fs::rename(m_folder / "proc/stat.new", m_folder / "proc/stat", error);
    if (!error) { // some systems keep an open file's name
        EXPECT_EQ(MachineStatus::OK, file->read(text));
        EXPECT_EQ("another", text);
        fs::remove(m_folder / "proc/stat");
        EXPECT_EQ(MachineStatus::MISSING, file->read(text));
        write("proc/stat", "back");
        EXPECT_EQ(MachineStatus::OK, file->read(text));
        EXPECT_EQ("back", text);
    }
    EXPECT_FALSE(machine->open("/proc/none", status));
    EXPECT_EQ(MachineStatus::MISSING, status);
}

TEST_F(RootFolderTest, writingStaysInTheFolderAndMakesNoFile) {
    std::string text;
    EXPECT_EQ(MachineStatus::OK, machine->write("/proc/stat", "7\n"));
    EXPECT_EQ(MachineStatus::OK, machine->read("/proc/stat", text));
    EXPECT_EQ("7\n", text);
    EXPECT_EQ(MachineStatus::MISSING, machine->write("/proc/none", "7\n"));
    EXPECT_FALSE(machine->exists("/proc/none"));
    const fs::path outside = m_folder.string() + "_outside";
    std::ofstream(outside) << "untouched";
    EXPECT_EQ(MachineStatus::DENIED, machine->write("/../" + outside.filename().string(), "7\n"));
    EXPECT_EQ(9U, fs::file_size(outside));
    fs::remove(outside);
}

TEST_F(RootFolderTest, patternsMatchInEachComponent) {
    struct Case {
        const char* pattern;
        std::vector<std::string> found;
    };
    for (const Case& c : {
             Case{"/sys/cpu*/id", {"/sys/cpu0/id", "/sys/cpu2/id", "/sys/cpu10/id", "/sys/cpufreq/id"}},
             {"/sys/c*0", {"/sys/cpu0", "/sys/cpu10"}},
             {"/sys/*u*r*q", {"/sys/cpufreq"}},
             {"/sys/cpu2", {"/sys/cpu2"}},
             {"/sys/cpu*/none", {}},
             {"/none/*/id", {}},
             {"/*/stat", {"/proc/stat"}},
         }) {
        EXPECT_EQ(c.found, matchPaths(*machine, c.pattern)) << c.pattern;
    }
}

TEST(OpenMachine, saysWhyNot) {
    std::string reason;
    EXPECT_FALSE(openMachine("/no/such/place", reason));
    EXPECT_EQ("/no/such/place: no such machine folder or bundle", reason);
    const std::string file = (fs::temp_directory_path() / "kr_no_bundle").string();
    std::ofstream(file) << "hello\n";
    EXPECT_FALSE(openMachine(file, reason));
    EXPECT_EQ(file + ":1: not a machine bundle: the first line must be \"tarnwell-machine 1\"", reason);
    fs::remove(file);
}

TEST(NaturalOrder, comparesDigitRunsAsNumbers) {
    const std::vector<std::string> ordered{"",   "9",    "10",     "a",   "a1", "a01b",
                                           "a2", "a2b1", "a2b010", "a10", "b"};
    for (std::size_t left = 0; left < ordered.size(); ++left) {
        for (std::size_t right = 0; right < ordered.size(); ++right) {
            EXPECT_EQ(left < right, naturalLess(ordered[left], ordered[right]))
                << ordered[left] << " " << ordered[right];
        }
    }
    EXPECT_TRUE(naturalLess("a01", "a1") != naturalLess("a1", "a01")) << "equal numbers still have an order";
}

} // namespace
