// ICC files as sources and destinations of links: both profiles opened, a few colours taken
// through them.
#include <cstring>

#include "fuzz/temp_file.h"
#include "link/icc_pair.h"

namespace {

using ko::fourcc;

// A small press that any source can print on.
std::string makePress() {
    const auto profile = ko::icc::create(ko::icc::kCreatePrinter);
    auto lut = ko::icc::makeLut({3, 4, 2, 1});
    if (profile && lut && ko::icc::bindBlock(*profile, fourcc("B2A0"), std::move(lut))) {
        static TempFile file;
        const std::string path = file.with(nullptr, 0);
        ko::icc::saveProfile(profile.get(), path.c_str());
        return path;
    }
    return {};
}

void fill(char (&field)[KOLINK_PATH_SIZE], const std::string& path) {
    std::strncpy(field, path.c_str(), sizeof field - 1);
}

void convert(const CmsLinkSettings& settings, uint32_t colourSpace) {
    const auto pair = ko::link::openPair(settings, colourSpace);
    if (!pair) return;
    for (int32_t i = 0; i < 16; ++i) {
        int32_t values[4] = {i * 4352, 65280 - i * 4352, i % 2 * 65280, i % 4 * 21760};
        if (pair->sourceLut) ko::icc::lutColor16(*pair->sourceLut, values);
        else pair->matrix->toXyz16(values);
        ko::icc::lutColor16(*pair->destinationLut, values);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static TempFile file;
    static const std::string press = makePress();
    CmsLinkSettings settings{};
    fill(settings.sourcePath, file.with(data, size));
    fill(settings.destinationPath, press);
    convert(settings, fourcc("RGB "));
    fill(settings.destinationPath, settings.sourcePath);
    convert(settings, fourcc("CMYK"));
    return 0;
}
