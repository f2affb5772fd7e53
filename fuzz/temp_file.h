// The input of a reader that takes a path: one file for the life of the fuzz target.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

class TempFile {
public:
    TempFile()
        : path_((std::filesystem::temp_directory_path() /
                 ("kolink-fuzz-" + std::to_string(std::random_device()())))
                    .string()) {}
    ~TempFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    // The path of the file, which now holds these bytes.
    const char* with(const uint8_t* data, size_t size) {
        std::ofstream out(path_, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
        return path_.c_str();
    }

private:
    std::string path_;
};
