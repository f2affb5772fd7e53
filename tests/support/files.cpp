#include "tests/support/files.h"

#include <algorithm>
#include <atomic>
#include <fstream>

namespace ko::test {
namespace fs = std::filesystem;

TempFolder::TempFolder() {
    static std::atomic<unsigned> count = 0;
    std::random_device random;  // two test programs may run side by side
    do folder_ = fs::temp_directory_path() /
                 ("kolink-test-" + std::to_string(random()) + '-' + std::to_string(count++));
    while (!fs::create_directories(folder_));
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

std::string TempFolder::path(std::string_view name) const { return (folder_ / name).string(); }

Bytes readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

void writeFile(const std::string& path, const Bytes& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void writeFile(const std::string& path, std::string_view text) {
    writeFile(path, Bytes(text.begin(), text.end()));
}

std::string readText(const std::string& path) {
    const Bytes bytes = readFile(path);
    return std::string(bytes.begin(), bytes.end());
}

bool exists(const std::string& path) { return fs::exists(path); }

std::string testData(std::string_view name) { return std::string(KO_TEST_DATA "/").append(name); }

void append(Bytes& bytes, std::string_view text) { bytes.insert(bytes.end(), text.begin(), text.end()); }

void append16(Bytes& bytes, uint32_t value) {
    bytes.push_back(static_cast<uint8_t>(value >> 8));
    bytes.push_back(static_cast<uint8_t>(value));
}

void append32(Bytes& bytes, uint32_t value) {
    append16(bytes, value >> 16);
    append16(bytes, value & 0xffff);
}

void put32(Bytes& bytes, size_t at, uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes.at(at++) = static_cast<uint8_t>(value >> shift);
}

Bytes mutated(const Bytes& good, uint32_t seed) {
    std::mt19937 random(seed);  // its sequence is fixed by the standard; distributions are not
    const auto below = [&](size_t limit) { return limit == 0 ? 0 : static_cast<size_t>(random() % limit); };
    static constexpr uint8_t kExtremes[] = {0x00, 0x01, 0x7f, 0x80, 0xfe, 0xff, 0x0a, 0x0d, '+', '-', ','};
    Bytes bytes = good;
    for (size_t edits = 1 + below(6); edits > 0; --edits) {
        const size_t at = below(bytes.size() + 1);
        const size_t run = std::min(bytes.size() - at, 1 + below(8));
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        const auto end = begin + static_cast<std::ptrdiff_t>(run);
        switch (below(7)) {
            case 0: if (at < bytes.size()) bytes[at] ^= static_cast<uint8_t>(1u << below(8)); break;
            case 1: std::fill(begin, end, kExtremes[below(std::size(kExtremes))]); break;
            case 2: std::generate(begin, end, [&] { return static_cast<uint8_t>(random()); }); break;
            case 3: bytes.resize(at); break;
            case 4: bytes.erase(begin, end); break;
            case 5: { const Bytes copy(begin, end); bytes.insert(begin, copy.begin(), copy.end()); break; }
            default: bytes.insert(begin, 1 + below(300), kExtremes[below(std::size(kExtremes))]); break;
        }
    }
    return bytes;
}

void forEachTruncation(const Bytes& good, size_t steps, const std::function<void(const Bytes&)>& use) {
    const size_t step = std::max<size_t>(1, good.size() / std::max<size_t>(1, steps));
    for (size_t size = 0; size < good.size(); size += step)
        use(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)));
    use(good);
}

}  // namespace ko::test
