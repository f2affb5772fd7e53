// Runs a fuzz target over the files of the folders that are its arguments.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    int inputs = 0;
    for (int at = 1; at < argc; ++at)
        for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[at])) {
            if (!entry.is_regular_file()) continue;
            std::ifstream in(entry.path(), std::ios::binary);
            const std::vector<char> bytes(std::istreambuf_iterator<char>(in), {});
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
            ++inputs;
        }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;  // a target that saw nothing has shown nothing
}
