// What a host does with a printer's measurements: fills a device profile and saves it as an ICC
// profile. Instead of a printer and an instrument this program asks a press profile, through
// lcms2, how its patches look.
//   device_profile PRESS.icc OUT.icc
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>

#include <lcms2.h>

#include "kolink.h"

namespace {

using Inks = std::array<int, 4>;  // 0..255 each
using Lab = std::array<double, 3>;

constexpr int kPoints = 9;  // of the measured grid, an axis
int levelOf(int index) { return (index * 255 + 4) / 8; }

// The printer, as the instrument sees it, and as it is interpolated between its patches.
class Printer {
public:
    // Colours relative to the paper, as the tables of a profile hold them.
    bool measure(const char* path) {
        cmsHPROFILE press = cmsOpenProfileFromFile(path, "r");
        cmsHPROFILE lab = cmsCreateLab2Profile(nullptr);
        cmsHTRANSFORM instrument =
            press ? cmsCreateTransform(press, TYPE_CMYK_8, lab, TYPE_Lab_DBL,
                                       INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOOPTIMIZE)
                  : nullptr;
        if (instrument) {
            for (size_t node = 0; node < patches_.size(); ++node) {
                uint8_t inks[4];
                for (int ink = 3, rest = static_cast<int>(node); ink >= 0; --ink, rest /= kPoints)
                    inks[ink] = static_cast<uint8_t>(levelOf(rest % kPoints));
                cmsDoTransform(instrument, inks, patches_[node].data(), 1);
            }
            if (const auto* white =
                    static_cast<cmsCIEXYZ*>(cmsReadTag(press, cmsSigMediaWhitePointTag)))
                white_ = {white->X, white->Y, white->Z};
            cmsDeleteTransform(instrument);
        }
        cmsCloseProfile(lab);
        if (press) cmsCloseProfile(press);
        return instrument != nullptr;
    }

    const Lab& patch(size_t node) const { return patches_[node]; }
    const std::array<double, 3>& white() const { return white_; }
    double blackest() const { return patches_.back()[0]; }

    Lab print(const Inks& inks) const {  // between the sixteen patches around
        int cell[4];
        double share[4];
        for (int ink = 0; ink < 4; ++ink) {
            const double at = inks[ink] * 8 / 255.0;
            cell[ink] = std::min(7, static_cast<int>(at));
            share[ink] = at - cell[ink];
        }
        Lab lab{};
        for (int corner = 0; corner < 16; ++corner) {
            double weight = 1;
            size_t node = 0;
            for (int ink = 0; ink < 4; ++ink) {
                const int upper = corner >> (3 - ink) & 1;
                weight *= upper ? share[ink] : 1 - share[ink];
                node = node * kPoints + static_cast<size_t>(cell[ink] + upper);
            }
            for (int i = 0; i < 3; ++i) lab[i] += weight * patches_[node][i];
        }
        return lab;
    }

private:
    std::array<Lab, KOLINK_DEVICE_NODES> patches_{};
    std::array<double, 3> white_{0.9642, 1.0, 0.8249};
};

double distance2(const Lab& a, const Lab& b) {
    double sum = 0;
    for (int i = 0; i < 3; ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
    return sum;
}

// The inks that come nearest to a colour. Four inks reach most colours in many ways: black is to
// start gently where it gets dark, and 300 percent of ink is enough.
double cost(const Lab& printed, const Lab& wanted, const Inks& inks) {
    const double dark = 1 - wanted[0] / 100, black = 255 * dark * dark * dark;
    const double excess = std::max(0, inks[0] + inks[1] + inks[2] + inks[3] - 3 * 255);
    return distance2(printed, wanted) + 0.005 * (inks[3] - black) * (inks[3] - black) +
           0.001 * excess * excess;
}

Inks inksFor(const Printer& printer, const Lab& wanted) {
    Inks best{};
    double least = 1e30;
    for (int node = 0; node < KOLINK_DEVICE_NODES; ++node) {  // the best patch
        const Inks inks = {levelOf(node / 729), levelOf(node / 81 % 9), levelOf(node / 9 % 9),
                           levelOf(node % 9)};
        const double found = cost(printer.patch(static_cast<size_t>(node)), wanted, inks);
        if (found < least) least = found, best = inks;
    }
    for (int step = 16; step > 0;) {  // then in smaller and smaller steps around it
        bool better = false;
        for (int move = 0; move < 8; ++move) {
            Inks inks = best;
            int& ink = inks[static_cast<size_t>(move / 2)];
            ink = std::clamp(ink + (move % 2 ? step : -step), 0, 255);
            const double found = cost(printer.print(inks), wanted, inks);
            if (found < least) least = found, best = inks, better = true;
        }
        if (!better) step /= 2;
    }
    return best;
}

uint32_t packed(const Inks& inks) {
    return static_cast<uint32_t>(inks[0]) << 24 | static_cast<uint32_t>(inks[1]) << 16 |
           static_cast<uint32_t>(inks[2]) << 8 | static_cast<uint32_t>(inks[3]);
}

uint32_t encoded(const Lab& lab) {
    const auto byte = [](double value) {
        return static_cast<uint32_t>(std::clamp(value, 0.0, 255.0) + 0.5);
    };
    return byte(lab[0] * 255 / 100) | byte(lab[1] + 128) << 8 | byte(lab[2] + 128) << 16;
}

}  // namespace

int main(int argc, char** argv) {
    static Printer printer;
    if (argc != 3 || !printer.measure(argv[1])) {
        std::fprintf(stderr, argc != 3 ? "usage: device_profile PRESS.icc OUT.icc\n"
                                       : "device_profile: the press profile cannot be used\n");
        return argc != 3 ? 2 : 1;
    }
    const std::unique_ptr<DeviceProfile, int32_t (*)(DeviceProfile*)> device(
        jKoDevsCreateProfile(), &jKoDevsReleaseProfile);
    if (!device) return 1;
    std::snprintf(device->description, sizeof device->description, "Simulated measurements");
    for (int i = 0; i < 3; ++i) device->whitePoint[i] = static_cast<float>(printer.white()[i]);
    for (size_t node = 0; node < KOLINK_DEVICE_NODES; ++node)
        device->labGrid[node] = encoded(printer.patch(node));

    double sum = 0;
    int printable = 0;
    for (int node = 0; node < KOLINK_LAB_NODES; ++node) {
        const Lab lab = {node / 289 * 100 / 16.0, node / 17 % 17 * 255 / 16.0 - 128,
                         node % 17 * 255 / 16.0 - 128};
        const Inks inks = inksFor(printer, lab);
        device->toCmyk1[node] = packed(inks);
        const double error = std::sqrt(distance2(printer.print(inks), lab));
        device->gamut[node] = static_cast<uint8_t>(error < 3 ? 0 : std::min(255.0, error * 4));
        if (error < 3) sum += error, ++printable;
        // Perceptual: all lightness between paper and the darkest black, colours drawn in a little.
        const double darkest = printer.blackest();
        device->toCmyk0[node] = packed(inksFor(
            printer, {darkest + lab[0] * (100 - darkest) / 100, lab[1] * 0.9, lab[2] * 0.9}));
    }
    std::printf("%d of %d Lab nodes can be printed, to %.2f on average\n", printable,
                KOLINK_LAB_NODES, sum / printable);
    if (jKoDevsSaveProfile(device.get(), argv[2]) != 1) return 1;
    std::printf("darkest L* %.1f, written to %s\n", printer.blackest(), argv[2]);
    return 0;
}
