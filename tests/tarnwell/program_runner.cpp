#include "tests/tarnwell/program_runner.h"

#include "common/pw_utils.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>

namespace kr_test {
namespace {

namespace fs = std::filesystem;

// The two systems' shells differ in quoting, in the exit code that comes back, and in where things are installed.
const bool kOnWindows = pwr::PathOps::getPathSeparator() == '\\';

std::string quoted(const std::string& text) {
    if (kOnWindows) {
        return '"' + text + '"';
    }
    std::string out = "'";
    for (const char c : text) {
        out += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return out + "'";
}

int exitCodeOf(int status) {
    constexpr int kBitsBelowPosixCode = 8;
    return kOnWindows ? status : (status >> kBitsBelowPosixCode) & 0xFF;
}

fs::path stageFolder() {
    return pwr::pw_getenv("KR_TEST_STAGE");
}

} // namespace

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const fs::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
}

fs::path dataFolder() {
    return pwr::pw_getenv("KR_TEST_DATA");
}

ScratchFolder::ScratchFolder() {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    m_path = fs::path(pwr::tw_temp_directory_path()) /
             (std::string("tarnwell_") + test->test_suite_name() + "_" + test->name());
    fs::remove_all(m_path);
    fs::create_directories(m_path);
    fs::current_path(m_path);
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    fs::current_path(m_path.parent_path(), ignored);
    fs::remove_all(m_path, ignored);
}

void ScratchFolder::fetch(const fs::path& file) const {
    fs::copy_file(dataFolder() / file, m_path / file.filename());
}

std::string ScratchFolder::savedFile() const {
    std::string found;
    for (const auto& entry : fs::directory_iterator(m_path)) {
        if (entry.path().extension() == ".twc") {
            const bool isSecond = !std::exchange(found, entry.path().filename().string()).empty();
            EXPECT_FALSE(isSecond) << "more than one saved collection";
        }
    }
    return found;
}

fs::path installedProgram() {
    return stageFolder() / "bin" / (kOnWindows ? "tarnwell.exe" : "tarnwell");
}

fs::path installedLibraryFolder() {
    if (kOnWindows) {
        return stageFolder() / "bin";
    }
    for (const auto& entry : fs::recursive_directory_iterator(stageFolder())) {
        if (entry.is_directory() && entry.path().filename() == "plugins") {
            return entry.path().parent_path();
        }
    }
    return {};
}

ProgramResult runProgram(const ScratchFolder& scratch, const std::vector<std::string>& arguments,
                         const std::string& prelude) {
    const fs::path output = scratch.path() / "stdout";
    const fs::path errors = scratch.path() / "stderr";
    std::string command = prelude + quoted(installedProgram().string());
    for (const std::string& argument : arguments) {
        command += ' ' + quoted(argument);
    }
    command += " > " + quoted(output.string()) + " 2> " + quoted(errors.string());
    // The Windows shell strips the first and the last quote of the line it gets.
    const int status = std::system((kOnWindows ? '"' + command + '"' : command).c_str());
    return {exitCodeOf(status), readFile(output), readFile(errors)};
}

} // namespace kr_test
