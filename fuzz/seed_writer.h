#pragma once

#include <cstring>
#include <fstream>
#include <ios>
#include <string>
#include <vector>

/// Writes the seeds of a target that knows how to make its own: `fuzz_NAME --seeds FOLDER`.
class SeedWriter {
public:
    explicit SeedWriter(std::string folder) : m_folder(std::move(folder)) {}

    /// The folder to write to, null when the target shall fuzz.
    static const char* folderOf(int argc, char** argv) {
        return argc == 3 && std::strcmp(argv[1], "--seeds") == 0 ? argv[2] : nullptr;
    }

    /// One file: the byte that chooses, then the stream.
    void write(const std::string& name, char choice, const std::vector<char>& stream) const {
        std::ofstream file(m_folder + "/" + name, std::ios::binary);
        file.put(choice);
        file.write(stream.data(), static_cast<std::streamsize>(stream.size()));
    }

private:
    std::string m_folder;
};
