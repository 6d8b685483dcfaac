#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace kr_test {

/// What one run of the installed program left behind.
struct ProgramResult {
    int exitCode = -1;
    std::string output;
    std::string errors;
};

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& text);

/// Where test data lies.
std::filesystem::path dataFolder();
/// A fresh folder of its own for a test, and the current one while it is there: programs leave their files in it.
class ScratchFolder {
public:
    ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();
    const std::filesystem::path& path() const { return m_path; }
    /// Copies a file of the test data here.
    void fetch(const std::filesystem::path& file) const;
    /// The one saved collection that was left here; "" when there is none or more than one.
    std::string savedFile() const;

private:
    std::filesystem::path m_path;
};

/// The installed program; its folder holds everything on Windows, elsewhere the library lies in its own.
std::filesystem::path installedProgram();
std::filesystem::path installedLibraryFolder();

/// Runs the installed program through the system's shell, in the scratch folder. @p prelude are shell
/// words in front of it, such as a limit on the size of files.
ProgramResult runProgram(const ScratchFolder& scratch, const std::vector<std::string>& arguments,
                         const std::string& prelude = {});

} // namespace kr_test
