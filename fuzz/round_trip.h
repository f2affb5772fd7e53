// What a reader takes, its writer writes, and the reader takes that too. A first saving may tidy up
// what no writer makes, such as values beyond the scale; from then on the bytes stay the same.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "fuzz/temp_file.h"

inline std::string contentOf(const char* path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// load(path) gives a record that converts to false when the file was refused; save(record, path)
// is whether it was written.
template <class Load, class Save>
void roundTrip(const uint8_t* data, size_t size, Load&& load, Save&& save) {
    static TempFile file;
    const std::string path = file.with(data, size);
    std::string saved[3];
    for (std::string& content : saved) {
        auto record = load(path.c_str());
        if (!record) {
            if (&content == saved) return;  // it is no such file, and need not be one
            std::fputs("what was saved cannot be loaded\n", stderr);
            std::abort();
        }
        if (!save(*record, path.c_str())) {
            std::fputs("what was loaded cannot be saved\n", stderr);
            std::abort();
        }
        content = contentOf(path.c_str());
    }
    if (saved[1] != saved[2]) {
        std::fputs("a later saving differs from the one before\n", stderr);
        std::abort();
    }
}
