// Holds the measures of links against lcms2 in float, without its optimisations and its own
// CIEDE2000.
//   quality_judge press OUT GAIN BLACK     a made press profile
//   quality_judge make OUT SOURCE DESTINATION [bits N] [black NAME] [intent N]    a link
//   quality_judge LINK SOURCE DESTINATION  judges; fails beyond 0.02 in a mean, 0.2 in a worst
#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "precise/link_file.h"
#include "quality/quality.h"
#include "tests/precise/press.h"

using namespace ko;
using namespace ko::quality;

namespace {

[[noreturn]] void die(const std::string& what) {
    std::fprintf(stderr, "quality_judge: %s\n", what.c_str());
    std::exit(2);
}

std::vector<uint8_t> bytesOf(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeBytes(const char* path, const std::vector<uint8_t>& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

std::unique_ptr<precise::Profile> profileAt(const char* path) {
    precise::Problem problem;
    auto profile = precise::Profile::parse(bytesOf(path), problem);
    if (!profile) die(std::string(path) + ' ' + problem.text);
    return profile;
}

int makeLink(int count, char** arguments) {
    precise::LinkOptions options;
    for (int at = 5; at + 1 < count; at += 2) {
        const std::string key = arguments[at], value = arguments[at + 1];
        if (key == "bits") options.bits = std::atoi(value.c_str());
        else if (key == "intent") options.intent = static_cast<precise::Intent>(std::atoi(value.c_str()));
        else if (key == "black" && value == "none") options.black = precise::Black::none;
        else if (key == "black" && value == "match") options.black = precise::Black::match;
        else die("no option " + key + ' ' + value);
    }
    precise::Problem problem;
    int32_t part = 0;
    const auto link = precise::makeLink(*profileAt(arguments[3]), *profileAt(arguments[4]), nullptr, options,
                                        problem, part);
    if (!link) die(problem.text);
    writeBytes(arguments[2], precise::linkFile(*link, {}, problem));
    return 0;
}

cmsUInt32Number formatOf(uint32_t space) {
    return space == fourcc("CMYK") ? TYPE_CMYK_DBL : space == fourcc("RGB ") ? TYPE_RGB_DBL : TYPE_GRAY_DBL;
}

// lcms2 has inks in percent.
double scaleOf(uint32_t space) { return space == fourcc("CMYK") ? 100 : 1; }

class Way {
public:
    Way(cmsHPROFILE from, uint32_t inSpace, cmsHPROFILE to, uint32_t outSpace, cmsUInt32Number intent)
        : inScale_(scaleOf(inSpace)), outScale_(outSpace ? scaleOf(outSpace) : 1),
          handle_(cmsCreateTransform(from, formatOf(inSpace), to, outSpace ? formatOf(outSpace) : TYPE_Lab_DBL,
                                     intent, cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE)) {
        if (!handle_) die("lcms2 makes no transform");
    }
    ~Way() { cmsDeleteTransform(handle_); }
    Way(const Way&) = delete;
    Colour at(Colour in) const {
        for (double& value : in) value *= inScale_;
        Colour out{};
        cmsDoTransform(handle_, in.data(), out.data(), 1);
        for (double& value : out) value /= outScale_;
        return out;
    }

private:
    double inScale_, outScale_;
    cmsHTRANSFORM handle_;
};

bool failed = false;
void compare(const char* what, double ours, double theirs, double tolerance) {
    const bool good = std::abs(ours - theirs) <= tolerance;
    failed |= !good;
    std::printf("%s - %s: %.4f here, %.4f by lcms2\n", good ? "ok" : "not ok", what, ours, theirs);
}

int judge(char** arguments) {
    const auto bytes = bytesOf(arguments[1]);
    const auto link = profileAt(arguments[1]), source = profileAt(arguments[2]), destination = profileAt(arguments[3]);
    precise::Problem problem;
    int32_t part = 0;
    auto subject = Subject::open(*link, precise::Nodes::even, problem);
    if (!subject || !subject->judgeBy(*source, *destination, subject->facts().intent, false, problem, part))
        die(problem.text);
    const Findings findings = measure(*subject, bytes);
    const LinkFacts& facts = subject->facts();

    const cmsHPROFILE linkFile = cmsOpenProfileFromFile(arguments[1], "r");
    const cmsHPROFILE sourceFile = cmsOpenProfileFromFile(arguments[2], "r");
    const cmsHPROFILE destinationFile = cmsOpenProfileFromFile(arguments[3], "r");
    const cmsHPROFILE lab = cmsCreateLab2Profile(nullptr);
    const Way through(linkFile, facts.sourceSpace, nullptr, facts.destinationSpace, 0);
    const Way seen(sourceFile, facts.sourceSpace, lab, 0, static_cast<cmsUInt32Number>(facts.intent));
    const Way printed(destinationFile, facts.destinationSpace, lab, 0, INTENT_RELATIVE_COLORIMETRIC);

    std::vector<double> de00, de76, reachable;
    double ink = 0, sumOff = 0, worstOff = 0;
    for (const JudgedColour& colour : findings.colour->colours) {
        Colour out = through.at(colour.in);
        for (double& value : out) value = std::clamp(value, 0.0, 1.0);
        const Colour a = seen.at(colour.in), b = printed.at(out);
        const cmsCIELab wanted = {a[0], a[1], a[2]}, there = {b[0], b[1], b[2]};
        de00.push_back(cmsCIE2000DeltaE(&wanted, &there, 1, 1, 1));
        de76.push_back(cmsDeltaE(&wanted, &there));
        if (colour.reachable()) reachable.push_back(de00.back());
        ink += out[0] + out[1] + out[2] + out[3];
        const double off = std::abs(colour.difference - de00.back());
        sumOff += off;
        worstOff = std::max(worstOff, off);
    }
    const auto count = static_cast<double>(de00.size());
    const Spread theirs = spreadOf(de00), theirs76 = spreadOf(de76), theirsReachable = spreadOf(reachable);
    const Spread& ours = findings.colour->group("all").difference;
    const Spread& ours76 = findings.colour->group("all").difference76;
    const Spread& oursReachable = findings.colour->group("reachable").difference;
    compare("CIEDE2000, mean", ours.mean, theirs.mean, 0.02);
    compare("CIEDE2000, 95 %", ours.p95, theirs.p95, 0.05);
    compare("CIEDE2000, worst", ours.worst, theirs.worst, 0.2);
    compare("CIE 1976, mean", ours76.mean, theirs76.mean, 0.02);
    compare("CIE 1976, worst", ours76.worst, theirs76.worst, 0.2);
    compare("reachable, mean", oursReachable.mean, theirsReachable.mean, 0.02);
    compare("reachable, worst", oursReachable.worst, theirsReachable.worst, 0.2);
    compare("one colour's difference, mean", sumOff / count, 0, 0.02);
    compare("one colour's difference, worst", worstOff, 0, 0.2);
    if (subject->toInk()) compare("mean ink, percent", findings.ink.mean * 100, ink / count * 100, 0.02);
    for (const PureRamp& ramp : findings.purity.ramps) {
        double foreign = 0;
        for (int level = 0; level < 256; ++level) {
            Colour in{};
            for (size_t ch = 0; ch < 4; ++ch)
                if (!subject->fromInk()) in[ch] = 1;
                else if (std::strchr(ramp.inks, "CMYK"[ch])) in[ch] = level / 255.0;
            const Colour out = through.at(in);
            for (size_t ch = 0; ch < 4; ++ch)
                if (!std::strchr(ramp.inks, "CMYK"[ch])) foreign = std::max(foreign, out[ch]);
        }
        compare((std::string("foreign ink in ") + (*ramp.inks ? ramp.inks : "white") + ", percent").c_str(),
                ramp.foreign * 100, foreign * 100, 0.02);
    }
    for (const cmsHPROFILE file : {linkFile, sourceFile, destinationFile, lab}) cmsCloseProfile(file);
    return failed;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string what = count > 1 ? arguments[1] : "";
    if (what == "press" && count == 5) {
        writeBytes(arguments[2], test::pressProfileBytes({.gain = std::atof(arguments[3]), .blackLightness = std::atof(arguments[4])}));
        return 0;
    }
    if (what == "make" && count >= 5) return makeLink(count, arguments);
    if (count == 4) return judge(arguments);
    die("usage: see the head of judge.cpp");
}
