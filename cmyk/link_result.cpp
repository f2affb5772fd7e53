#include "cmyk/link_result.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace ko::cmyk {
namespace {

constexpr double kFullInk = 4080;

class Conversion {
public:
    explicit Conversion(const CmykProfile& profile)
        : profile_(profile), tables_(std::make_unique<CmykCurveTables>()) {
        makeCurveTables(profile, *tables_);
    }
    Inks at(const Inks& in) const {
        uint8_t levels[4];
        for (size_t ink = 0; ink < 4; ++ink)
            levels[ink] = static_cast<uint8_t>(in[ink] * 255 + 0.5);
        uint16_t out[4];
        row(levels, 1, out);
        return {out[0] / kFullInk, out[1] / kFullInk, out[2] / kFullInk, out[3] / kFullInk};
    }
    void row(const uint8_t* levels, int32_t pixels, uint16_t* out) const {
        linkCmykToCmyk16Row(profile_, *tables_, levels, pixels, out);
    }

private:
    const CmykProfile& profile_;
    std::unique_ptr<CmykCurveTables> tables_;
};

void findMostInk(const Conversion& link, LinkResult& result) {
    constexpr int32_t kRow = kGridPoints * kGridPoints;
    std::vector<uint8_t> in(kRow * 4);
    std::vector<uint16_t> out(kRow * 4);
    int32_t most = -1;
    for (int32_t c = 0; c < kGridPoints; ++c)
        for (int32_t m = 0; m < kGridPoints; ++m) {
            for (int32_t node = 0; node < kRow; ++node) {
                const Cmyk at = {c, m, node / kGridPoints, node % kGridPoints};
                for (size_t ink = 0; ink < 4; ++ink)
                    in[static_cast<size_t>(node) * 4 + ink] =
                        static_cast<uint8_t>(nodeValue(at[ink]));
            }
            link.row(in.data(), kRow, out.data());
            for (size_t at = 0; at < out.size(); at += 4) {
                const int32_t total = out[at] + out[at + 1] + out[at + 2] + out[at + 3];
                if (total <= most) continue;
                most = total;
                for (size_t ink = 0; ink < 4; ++ink) result.mostIn[ink] = in[at + ink] / 255.0;
            }
        }
    result.mostInk = most / kFullInk;
}

}  // namespace

LinkResult resultOf(const CmykProfile& profile) {
    const Conversion link(profile);
    LinkResult result;
    result.white = link.at({0, 0, 0, 0});
    for (size_t ink = 0; ink < 4; ++ink) result.solids[ink] = link.at(kCmykRamps[ink].inks);
    result.full = link.at({1, 1, 1, 1});
    findMostInk(link, result);
    for (size_t at = 0; at < result.ramps.size(); ++at) {
        result.ramps[at] = resultOf(kCmykRamps[at], [&](const Inks& in) { return link.at(in); });
        double& worst =
            at < kPrimaryRamps ? result.foreignInPrimaries : result.foreignInSecondaries;
        if (at < kPureRamps) worst = std::max(worst, result.ramps[at].most);
    }
    return result;
}

}  // namespace ko::cmyk
