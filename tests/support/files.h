// Files and bytes for tests: a folder that goes with the test, whole-file reading and writing,
// and seeded damage.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace ko::test {

using Bytes = std::vector<uint8_t>;

// A new empty folder, removed with everything in it at the end.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    std::string path(std::string_view name) const;  // of a file in it, in the platform's form
    const std::filesystem::path& folder() const { return folder_; }

private:
    std::filesystem::path folder_;
};

Bytes readFile(const std::string& path);  // empty when it cannot be read
void writeFile(const std::string& path, const Bytes& bytes);
void writeFile(const std::string& path, std::string_view text);
std::string readText(const std::string& path);
bool exists(const std::string& path);
std::string testData(std::string_view name);  // the path of a file in tests/data

void append(Bytes& bytes, std::string_view text);
void append16(Bytes& bytes, uint32_t value);  // big-endian
void append32(Bytes& bytes, uint32_t value);  // big-endian
void put32(Bytes& bytes, size_t at, uint32_t value);

// One damaged variant of a good file: some of bit flips, extreme numbers, cuts, repeats,
// insertions and zeroed runs. The same seed gives the same bytes on every platform.
Bytes mutated(const Bytes& good, uint32_t seed);

// Calls use with every beginning of the file (at most steps of them, the ends always among them).
void forEachTruncation(const Bytes& good, size_t steps, const std::function<void(const Bytes&)>& use);

}  // namespace ko::test
