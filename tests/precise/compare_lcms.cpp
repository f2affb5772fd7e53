// compare_lcms [-v] [--made] PROFILE... [--alone PROFILE...]: every profile to Lab and to a pair of others, every
// intent, against lcms2 in float without its optimisations. Prints what differs; fails when the
// mean CIEDE2000 passes 0.03 or the worst 0.3. Profiles behind --alone are compared to Lab only:
// lcms2 rounds to 16 bits before and behind each grid and sampled curve, which curves as steep as
// theirs make larger than that. --made adds profiles of every kind that lcms2 writes: curves and
// parametric ones with a matrix, mft1, mft2, mAB and mBA, with L*a*b* and XYZ connections, both
// versions, RGB, CMYK and grey.
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

struct Made {
    std::string name;
    std::vector<uint8_t> bytes;
    bool paired = true;
};

using Profiled = std::unique_ptr<void, decltype([](void* profile) { cmsCloseProfile(profile); })>;

Made saved(std::string name, const Profiled& profile) {
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile.get(), nullptr, &size);
    std::vector<uint8_t> bytes(size);
    if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &size)) bytes.clear();
    return {std::move(name), std::move(bytes), true};
}

using ToneCurve = std::unique_ptr<cmsToneCurve, decltype([](cmsToneCurve* curve) { cmsFreeToneCurve(curve); })>;

// The five functions of ICC.1, near a screen's; 0 is a sampled curve.
ToneCurve curveOf(int kind) {
    static constexpr double kParameters[5][7] = {{1.8},
                                                 {2.2, 0.95, 0.05},
                                                 {2.2, 0.94, 0.05, 0.01},
                                                 {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045},
                                                 {2.4, 0.94582, 0.05, 0.07, 0.04, 0.01, 0.010115}};
    if (kind > 0) return ToneCurve(cmsBuildParametricToneCurve(nullptr, kind, kParameters[kind - 1]));
    std::vector<uint16_t> table(256);
    for (size_t at = 0; at < table.size(); ++at)
        table[at] = static_cast<uint16_t>(65535.0 * static_cast<double>(at * at) / (255 * 255));
    return ToneCurve(cmsBuildTabulatedToneCurve16(nullptr, 256, table.data()));
}

// Something like a press, or light, and back; inputs and outputs are 0..65535, L*a*b* or XYZ as
// version 4 tables have them.
struct Shape {
    int inputs, outputs;
};

int blend(const cmsUInt16Number in[], cmsUInt16Number out[], void* given) {
    const Shape& shape = *static_cast<const Shape*>(given);
    for (int ch = 0; ch < shape.outputs; ++ch) {
        double sum = 0, weights = 0;
        for (int other = 0; other < shape.inputs; ++other) {
            const double weight = 1.0 / (1 + (other + ch) % 3), level = in[other] / 65535.0;
            sum += weight * level * (0.7 + 0.3 * level);
            weights += weight;
        }
        const double share = sum / weights;
        out[ch] = static_cast<cmsUInt16Number>(65535 * (0.25 + 0.45 * share));
    }
    return 1;
}

// A table both ways: curves, a grid, curves, and where withMatrix says so M curves and a matrix on
// the side of the connection, which mAB and mBA have and the others lack.
Made madeTable(const std::string& name, cmsColorSpaceSignature space, bool connectsInLab, double version,
               bool withMatrix, int bytesAnEntry) {
    const int channels = static_cast<int>(cmsChannelsOf(space));
    const Profiled profile(cmsCreateProfilePlaceholder(nullptr));
    cmsSetProfileVersion(profile.get(), version);
    cmsSetDeviceClass(profile.get(), cmsSigOutputClass);
    cmsSetColorSpace(profile.get(), space);
    cmsSetPCS(profile.get(), connectsInLab ? cmsSigLabData : cmsSigXYZData);
    cmsWriteTag(profile.get(), cmsSigMediaWhitePointTag, cmsD50_XYZ());
    for (const bool there : {true, false}) {
        Shape shape = {there ? channels : 3, there ? 3 : channels};
        cmsPipeline* const table = cmsPipelineAlloc(nullptr, static_cast<cmsUInt32Number>(shape.inputs),
                                                    static_cast<cmsUInt32Number>(shape.outputs));
        std::vector<ToneCurve> owned;
        const auto curves = [&](int count) {
            std::vector<cmsToneCurve*> all;
            for (int ch = 0; ch < count; ++ch) {
                owned.push_back(curveOf(withMatrix && ch % 2 ? 4 : 0));
                all.push_back(owned.back().get());
            }
            cmsPipelineInsertStage(table, cmsAT_END,
                                   cmsStageAllocToneCurves(nullptr, static_cast<cmsUInt32Number>(count), all.data()));
        };
        const auto matrix = [&] {
            constexpr double kRows[] = {0.9, 0.05, 0.02, 0.03, 0.85, 0.04, 0.02, 0.06, 0.8}, kOffsets[] = {0.01, 0.02, 0.03};
            cmsPipelineInsertStage(table, cmsAT_END, cmsStageAllocMatrix(nullptr, 3, 3, kRows, kOffsets));
        };
        if (!there && withMatrix) {
            curves(3);
            matrix();
        }
        curves(shape.inputs);
        // Grids of version 4 may have other numbers of points on every axis.
        const cmsUInt32Number points[4] = {7, withMatrix ? 5u : 7u, withMatrix ? 9u : 7u, withMatrix ? 4u : 7u};
        cmsStage* const grid = cmsStageAllocCLut16bitGranular(nullptr, points, static_cast<cmsUInt32Number>(shape.inputs),
                                                              static_cast<cmsUInt32Number>(shape.outputs), nullptr);
        cmsStageSampleCLut16bit(grid, blend, &shape, 0);
        cmsPipelineInsertStage(table, cmsAT_END, grid);
        curves(shape.outputs);
        if (there && withMatrix) {
            matrix();
            curves(3);
        }
        cmsPipelineSetSaveAs8bitsFlag(table, bytesAnEntry == 1);
        constexpr cmsTagSignature kTags[2][2] = {{cmsSigBToA0Tag, cmsSigBToA1Tag},
                                                 {cmsSigAToB0Tag, cmsSigAToB1Tag}};
        for (const cmsTagSignature tag : kTags[there])
            if (!cmsWriteTag(profile.get(), tag, table)) std::printf("%s: lcms2 does not write it\n", name.c_str());
        cmsPipelineFree(table);
    }
    return saved(name, profile);
}

std::vector<Made> madeProfiles() {
    std::vector<Made> all;
    const cmsCIExyY white = {0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
    for (int kind = 0; kind <= 5; ++kind)
        for (const double version : {2.1, 4.3}) {
            if (version < 4 && kind > 1) continue;  // para is version 4's
            const ToneCurve curve = curveOf(kind);
            cmsToneCurve* const three[] = {curve.get(), curve.get(), curve.get()};
            const std::string name = "made, curve " + std::to_string(kind) + (version < 4 ? ", version 2" : ", version 4");
            const Profiled rgb(cmsCreateRGBProfile(&white, &primaries, three));
            cmsSetProfileVersion(rgb.get(), version);
            all.push_back(saved(name + ", RGB", rgb));
            const Profiled grey(cmsCreateGrayProfile(cmsD50_xyY(), curve.get()));
            cmsSetProfileVersion(grey.get(), version);
            all.push_back(saved(name + ", grey", grey));
        }
    for (const auto space : {cmsSigCmykData, cmsSigRgbData, cmsSigGrayData}) {
        const std::string name = space == cmsSigCmykData ? ", CMYK" : space == cmsSigRgbData ? ", RGB" : ", grey";
        for (const bool lab : {true, false}) {
            const std::string connection = lab ? ", Lab" : ", XYZ";
            all.push_back(madeTable("made mft2" + name + connection, space, lab, 2.1, false, 2));
            all.push_back(madeTable("made mAB" + name + connection, space, lab, 4.3, true, 2));
            all.push_back(madeTable("made mAB of bytes" + name + connection, space, lab, 4.3, true, 1));
            // lcms2 finds black points in 16 bits, which are coarse in dark XYZ.
            all.back().paired = lab;
        }
        all.push_back(madeTable("made mft1" + name, space, true, 2.1, false, 1));
    }
    return all;
}

}  // namespace

int main(int count, char** arguments) {
    int first = 1;
    bool makes = false;
    for (; first < count && arguments[first][0] == '-'; ++first) {
        verbose |= std::string(arguments[first]) == "-v";
        makes |= std::string(arguments[first]) == "--made";
        if (std::string(arguments[first]) == "--alone") break;
    }
    struct Closing {
        void operator()(void* profile) const { cmsCloseProfile(profile); }
    };
    const std::unique_ptr<void, Closing> labSpace(cmsCreateLab2Profile(nullptr));
    const cmsHPROFILE lab = labSpace.get();
    struct Opened {
        std::string path;
        bool paired;
        std::unique_ptr<Profile> ours;
        std::unique_ptr<void, Closing> theirs;
    };
    std::vector<Opened> all;
    bool paired = true;
    std::vector<Made> made;
    if (makes) made = madeProfiles();
    for (const Made& one : made) {
        Problem problem;
        auto ours = Profile::parse(one.bytes, problem);
        std::unique_ptr<void, Closing> theirs(
            cmsOpenProfileFromMem(one.bytes.data(), static_cast<cmsUInt32Number>(one.bytes.size())));
        if (!ours || !theirs) {
            std::printf("not ok - %s: ours %s, theirs %s\n", one.name.c_str(),
                        ours ? "opens" : problem.text.c_str(), theirs ? "opens" : "refused");
            failed = true;
            continue;
        }
        all.push_back({one.name, one.paired, std::move(ours), std::move(theirs)});
    }
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
            const std::string name = one.path + " intent " + std::to_string(intent);
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
