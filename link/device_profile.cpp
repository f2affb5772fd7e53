#include "link/device_profile.h"

#include <cstring>
#include <string>

#include "frame/text.h"
#include "icc/icc.h"
#include "resources/texts.h"

namespace ko::link {
namespace {

constexpr char kMarker[] = "_KOLINK_10J\n";  // by which the library knows its own profiles
constexpr char kCopyright[] = "No copyright, use freely";
constexpr double kD50[3] = {0.9642, 1.0, 0.8249};
constexpr int32_t kDevicePoints = 9, kLabPoints = 17;

// Tags are bound one after the other; without memory for one the profile is not complete.
class TagBinder {
public:
    explicit TagBinder(IccProfile& profile) noexcept : profile_(profile) {}
    bool complete() const noexcept { return complete_; }

    void text(uint32_t signature, std::string_view value) noexcept {
        auto block = allocateBlock<char>(value.size() + 1);
        if (block) {
            std::memcpy(block.get(), value.data(), value.size());
            block.get()[value.size()] = '\0';
        }
        bind(signature, std::move(block));
    }
    void xyz(uint32_t signature, const float (&value)[3]) noexcept {
        auto block = allocateBlock<float>(sizeof value);
        if (block) std::memcpy(block.get(), value, sizeof value);
        bind(signature, std::move(block));
    }
    // An 8-bit table with identity matrix and curves; fill writes the grid.
    template <class Fill>
    void lut(uint32_t signature, int32_t inputs, int32_t outputs, int32_t gridPoints,
             Fill fill) noexcept {
        auto block = icc::makeLut({inputs, outputs, gridPoints, 1});
        if (block) {
            identity(block->inputTables, inputs);
            fill(static_cast<uint8_t*>(block->clut));
            identity(block->outputTables, outputs);
        }
        bind(signature, std::move(block));
    }

private:
    template <class T>
    void bind(uint32_t signature, Block<T> block) noexcept {
        if (!icc::bindBlock(profile_, signature, std::move(block))) complete_ = false;
    }
    static void identity(void* tables, int32_t channels) noexcept {
        auto* entry = static_cast<uint8_t*>(tables);
        for (int32_t at = 0; at < channels * 256; ++at) entry[at] = static_cast<uint8_t>(at);
    }

    IccProfile& profile_;
    bool complete_ = true;
};

// The darkest colour that was measured.
void blackPoint(const DeviceProfile& profile, float (&xyz)[3]) noexcept {
    const uint32_t lab = profile.labGrid[KOLINK_DEVICE_NODES - 1];
    double colour[3] = {static_cast<double>(lab & 255), static_cast<double>(lab >> 8 & 255),
                        static_cast<double>(lab >> 16 & 255)};
    icc::labDecode(colour, 1);
    icc::labToXyz(colour, kD50);
    for (size_t i = 0; i < 3; ++i) xyz[i] = static_cast<float>(colour[i]);
}

void bindInks(TagBinder& tags, uint32_t signature,
              const uint32_t (&words)[KOLINK_LAB_NODES]) noexcept {
    tags.lut(signature, 3, 4, kLabPoints, [&](uint8_t* grid) {
        for (const uint32_t word : words) {
            const uint32_t reversed = icc::revLong(word);  // the first ink comes first
            std::memcpy(grid, &reversed, 4);
            grid += 4;
        }
    });
}

}  // namespace

Block<DeviceProfile> createDeviceProfile() noexcept {
    auto profile = allocateBlock<DeviceProfile>(sizeof(DeviceProfile));
    if (profile) initDeviceProfile(*profile);
    return profile;
}

void initDeviceProfile(DeviceProfile& profile) noexcept {
    std::memset(&profile, 0, sizeof profile);
    copyText(profile.name, texts::kUntitled);
}

bool saveDeviceProfile(DeviceProfile& profile, const Path& path) {
    if (!path) return false;
    const icc::ProfilePtr icc = icc::create(icc::kCreatePrinter);
    if (!icc) return true;  // hosts have always been told so

    path.copyTo(profile.path);  // also when the writing fails
    TagBinder tags(*icc);
    tags.text(fourcc("cprt"), kCopyright);
    tags.text(fourcc("desc"), std::string(kMarker).append(textIn(profile.description)));
    tags.xyz(fourcc("wtpt"), profile.whitePoint);
    float black[3];
    blackPoint(profile, black);
    tags.xyz(fourcc("bkpt"), black);
    tags.lut(fourcc("gamt"), 3, 1, kLabPoints,
             [&](uint8_t* grid) { std::memcpy(grid, profile.gamut, sizeof profile.gamut); });
    tags.lut(fourcc("A2B0"), 4, 3, kDevicePoints, [&](uint8_t* grid) {
        for (const uint32_t lab : profile.labGrid)
            for (uint32_t shift = 0; shift < 24; shift += 8)
                *grid++ = static_cast<uint8_t>(lab >> shift);
    });
    bindInks(tags, fourcc("B2A0"), profile.toCmyk0);
    bindInks(tags, fourcc("B2A1"), profile.toCmyk1);

    // A profile that lacks a tag is not written: it would replace a good one.
    return tags.complete() && icc::saveDeviceProfile(icc.get(), path);
}

}  // namespace ko::link
