// compare_lcms PROFILE... [--alone PROFILE...]: every profile to Lab and to a pair of others, every
// intent, against lcms2 in float without its optimisations. Prints what differs; fails when the
// mean CIEDE2000 passes 0.03 or the worst 0.3. Profiles behind --alone are compared to Lab only:
// lcms2 rounds to 16 bits before and behind each grid and sampled curve, which curves as steep as
// theirs make larger than that.
#include <lcms2.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "precise/transform.h"

using namespace ko::precise;

namespace {

std::vector<uint8_t> bytesOf(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

cmsUInt32Number formatOf(uint32_t space) {
    switch (space) {
        case ko::fourcc("GRAY"): return TYPE_GRAY_DBL;
        case ko::fourcc("RGB "): return TYPE_RGB_DBL;
        case ko::fourcc("CMYK"): return TYPE_CMYK_DBL;
        case ko::fourcc("Lab "): return TYPE_Lab_DBL;
        case ko::fourcc("XYZ "): return TYPE_XYZ_DBL;
        default: return 0;
    }
}

double scaleOf(uint32_t space) {
    return space == ko::fourcc("CMYK") ? 100 : 1;  // lcms2 has inks in percent
}

struct Measure {
    double sum = 0, worst = 0;
    int count = 0;
    void add(const cmsCIELab& a, const cmsCIELab& b) {
        const double d = cmsCIE2000DeltaE(&a, &b, 1, 1, 1);
        sum += d;
        worst = std::max(worst, d);
        ++count;
    }
    double mean() const { return count ? sum / count : 0; }
};

constexpr cmsUInt32Number kExact = cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE;
bool failed = false, verbose = false;

void report(const std::string& what, const Measure& measure) {
    const bool bad = !(measure.mean() <= 0.03) || !(measure.worst <= 0.3);
    failed |= bad;
    if (bad || verbose)
        std::printf("%s %s: mean %.4f worst %.3f\n", bad ? "not ok -" : "ok -", what.c_str(),
                    measure.mean(), measure.worst);
}

Colour randomColour(std::mt19937& random, uint32_t space) {
    std::uniform_real_distribution<> part(0, 1);
    Colour in{};
    for (double& value : in) value = part(random);
    if (random() % 4 == 0)
        for (double& value : in) value = random() % 3 == 0 ? 0 : random() % 2 == 0 ? 1 : value;
    if (space == ko::fourcc("Lab "))
        in = {in[0] * 100, in[1] * 160 - 80, in[2] * 160 - 80, 0};
    return in;
}

cmsCIELab labOf(const Colour& colour) { return {colour[0], colour[1], colour[2]}; }

}  // namespace

int main(int count, char** arguments) {
    int first = 1;
    if (count > 1 && std::string(arguments[1]) == "-v") verbose = true, first = 2;
    struct Closing {
        void operator()(void* profile) const { cmsCloseProfile(profile); }
    };
    const std::unique_ptr<void, Closing> labSpace(cmsCreateLab2Profile(nullptr));
    const cmsHPROFILE lab = labSpace.get();
    struct Opened {
        const char* path;
        bool paired;
        std::unique_ptr<Profile> ours;
        std::unique_ptr<void, Closing> theirs;
    };
    std::vector<Opened> all;
    bool paired = true;
    for (int at = first; at < count; ++at) {
        if (std::string(arguments[at]) == "--alone") {
            paired = false;
            continue;
        }
        Problem problem;
        const auto bytes = bytesOf(arguments[at]);
        auto ours = Profile::parse(bytes, problem);
        std::unique_ptr<void, Closing> theirs(cmsOpenProfileFromFile(arguments[at], "r"));
        if (!ours || !theirs) {
            std::printf("%s: ours %s, theirs %s\n", arguments[at], ours ? "opens" : problem.text.c_str(),
                        theirs ? "opens" : "refused");
            failed |= !ours && theirs;
            continue;
        }
        all.push_back({arguments[at], paired, std::move(ours), std::move(theirs)});
    }
    std::mt19937 random(1);
    for (const Opened& one : all) {
        const uint32_t space = one.ours->header().space;
        if (!formatOf(space) || one.ours->isLink()) continue;
        for (int intent = 0; intent < 4; ++intent) {
            Problem problem;
            const std::string name = std::string(one.path) + " intent " + std::to_string(intent);
            const auto to = makeToLab(*one.ours, static_cast<Intent>(intent), problem);
            const cmsHTRANSFORM theirs = cmsCreateTransform(
                one.theirs.get(), formatOf(space), lab, TYPE_Lab_DBL, static_cast<cmsUInt32Number>(intent), kExact);
            if (!to != !theirs) {
                std::printf("not ok - %s to Lab: ours %s, theirs %s\n", name.c_str(),
                            to ? "converts" : problem.text.c_str(), theirs ? "converts" : "refused");
                failed |= !to;
            }
            Measure measure;
            if (to && theirs) {
                for (int n = 0; n < 2000; ++n) {
                    const Colour in = randomColour(random, space);
                    Colour scaled = in;
                    for (double& value : scaled) value *= scaleOf(space);
                    cmsCIELab expected;
                    cmsDoTransform(theirs, scaled.data(), &expected, 1);
                    measure.add(labOf(to->at(in)), expected);
                }
                report(name + " to Lab", measure);
            }
            if (theirs) cmsDeleteTransform(theirs);
        }
    }
    for (const Opened& source : all)
        for (const Opened& destination : all) {
            const uint32_t from = source.ours->header().space, into = destination.ours->header().space;
            if (!formatOf(from) || !formatOf(into) || source.ours->isLink() ||
                destination.ours->isLink() || &source == &destination ||
                !source.paired || !destination.paired)
                continue;
            if (&source != &all[0] && &destination != &all[0] && &source != &all.back() &&
                &destination != &all.back())
                continue;
            for (int mode = 0; mode < 7; ++mode) {
                const int intent = mode % 4;
                const bool bpc = mode > 3;
                Problem problem;
                const auto ours = makeTransform(*source.ours, *destination.ours,
                                                static_cast<Intent>(intent), bpc, problem);
                const cmsHTRANSFORM theirs = cmsCreateTransform(
                    source.theirs.get(), formatOf(from), destination.theirs.get(), formatOf(into),
                    static_cast<cmsUInt32Number>(intent),
                    kExact | (bpc ? cmsFLAGS_BLACKPOINTCOMPENSATION : 0));
                const std::string name = std::string(source.path) + " > " + destination.path +
                                         " intent " + std::to_string(intent) + (bpc ? " bpc" : "");
                if (!ours && theirs) {
                    std::printf("not ok - %s: ours %s\n", name.c_str(), problem.text.c_str());
                    failed = true;
                }
                if (ours && theirs) {
                    const cmsHTRANSFORM look = cmsCreateTransform(
                        destination.theirs.get(), formatOf(into), lab, TYPE_Lab_DBL, 1, kExact);
                    Measure measure;
                    for (int n = 0; look && n < 300; ++n) {
                        Colour in = randomColour(random, from);
                        Colour out = ours->at(in), expected{};
                        for (double& value : in) value *= scaleOf(from);
                        cmsDoTransform(theirs, in.data(), expected.data(), 1);
                        const double scale = scaleOf(into);
                        for (size_t ch = 0; ch < 4 && into != ko::fourcc("Lab "); ++ch) {
                            out[ch] = std::clamp(out[ch], 0.0, 1.0) * scale;
                            expected[ch] = std::clamp(expected[ch], 0.0, scale);
                        }
                        cmsCIELab a, b;
                        cmsDoTransform(look, out.data(), &a, 1);
                        cmsDoTransform(look, expected.data(), &b, 1);
                        measure.add(a, b);
                    }
                    report(name, measure);
                    if (look) cmsDeleteTransform(look);
                }
                if (theirs) cmsDeleteTransform(theirs);
            }
        }
    return failed;
}
