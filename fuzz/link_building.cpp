// Links from RGB profiles of any shape to presses of any shape, built whole; rows of pixels
// through them equal single colours.
#include <cstdlib>
#include <cstring>

#include "fuzz/lut_shape.h"
#include "fuzz/temp_file.h"
#include "link/link.h"

namespace {

using ko::fourcc;

bool saveProfile(Shape& shape, const char* path, bool press) {
    const auto profile = ko::icc::create(ko::icc::kCreatePrinter);
    if (!profile) return false;
    const bool xyz = shape.byte() % 2 != 0;
    profile->header.connectionSpace = xyz ? fourcc("XYZ ") : fourcc("Lab ");
    profile->header.colourSpace = press ? fourcc("CMYK") : fourcc("RGB ");
    constexpr uint32_t kTags[2][3] = {{fourcc("A2B0"), fourcc("A2B1"), fourcc("A2B2")},
                                      {fourcc("B2A0"), fourcc("B2A1"), fourcc("B2A2")}};
    const uint32_t tag = kTags[press][shape.between(0, 2)];
    if (!ko::icc::bindBlock(*profile, tag, lutFrom(shape, 3, press ? 4 : 3))) return false;
    return ko::icc::saveProfile(profile.get(), path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static TempFile source, destination;
    const std::string sourcePath = source.with(nullptr, 0), destinationPath = destination.with(nullptr, 0);
    Shape shape(data, size);
    CmsLinkSettings settings{};
    settings.intent = shape.between(0, 3);
    settings.preservation = shape.between(0, 3);
    settings.whiteMode = shape.between(0, 3);
    std::strncpy(settings.sourcePath, sourcePath.c_str(), KOLINK_PATH_SIZE - 1);
    std::strncpy(settings.destinationPath, destinationPath.c_str(), KOLINK_PATH_SIZE - 1);
    if (!saveProfile(shape, settings.sourcePath, false) ||
        !saveProfile(shape, settings.destinationPath, true))
        return 0;
    const auto link = ko::link::combineRgbProfile(settings);
    if (!link) return 0;
    constexpr int32_t kPixels = 40;
    uint8_t input[kPixels * 3];
    uint16_t row[kPixels * 4];
    for (size_t at = 0; at < sizeof input; ++at) input[at] = shape.cell(at);
    ko::link::convertRow(*link, input, kPixels, row);
    for (int32_t pixel = 0; pixel < kPixels; ++pixel) {
        int32_t values[4] = {input[pixel * 3], input[pixel * 3 + 1], input[pixel * 3 + 2], 0};
        ko::link::convert(*link, values);
        for (int32_t ink = 0; ink < 4; ++ink)
            if (values[ink] < 0 || values[ink] > 4080 || values[ink] != row[pixel * 4 + ink])
                std::abort();
    }
    return 0;
}
