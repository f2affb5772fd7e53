// The exported function of the CMYK profile dialog. It stands here because the dialog shows colours
// through the front end's conversions.
#include "kolink/profile_dialog.h"

#include <algorithm>
#include <array>
#include <utility>

#include "cmyk/dialog/profile_dialog.h"
#include "frame/boundary.h"
#include "front/front.h"
#include "front/printed_lab.h"

using namespace ko;

namespace {

void display(std::span<const uint32_t> cmyk, std::span<uint32_t> rgb) {
    constexpr size_t kRow = 256;
    uint8_t inks[4 * kRow], screen[3 * kRow];
    for (size_t start = 0; start < cmyk.size(); start += kRow) {
        const size_t count = std::min(kRow, cmyk.size() - start);
        for (size_t at = 0; at < count; ++at)
            for (size_t ink = 0; ink < 4; ++ink)
                inks[4 * at + ink] = static_cast<uint8_t>(cmyk[start + at] >> (24 - 8 * ink));
        front::cmykToRgbRow(inks, static_cast<int32_t>(count), screen);
        for (size_t at = 0; at < count; ++at)
            rgb[start + at] =
                packRgb(screen[3 * at], screen[3 * at + 1], screen[3 * at + 2]);
    }
}

}  // namespace

extern "C" int32_t jKoCmykProfileDlg(HWND owner, char* path) {
    return atBoundary(false, [&] {
        const auto press = front::PrintedLab::ofCurrentLinks();
        cmyk::ColourLab lab;
        if (press)
            lab = [&press](uint32_t word) -> std::optional<cmyk::Lab> {
                std::array<int32_t, 4> levels;
                for (size_t ink = 0; ink < 4; ++ink)
                    levels[ink] = static_cast<int32_t>(word >> (24 - 8 * ink) & 255);
                return press->at(levels);
            };
        return cmyk::editProfile(owner, path, display, std::move(lab));
    });
}
