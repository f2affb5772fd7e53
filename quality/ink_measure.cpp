#include "quality/ink_measure.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "frame/platform.h"
#include "icc/icc.h"
#include "icc/lut.h"
#include "precise/solve.h"
#include "quality/difference.h"

namespace ko::quality {
namespace {

constexpr int kLevels = 256;
constexpr int kGreys = 51;
constexpr double kSomeBlack = 0.005;
constexpr double kOtherInks = 0.005;  // of a mix that is looked for as a grey of the source

// The table as the library evaluates it, where it is one that the library knows.
class LibraryTable {
public:
    explicit LibraryTable(std::span<const uint8_t> bytes) {
        const icc::ProfilePtr profile = icc::parseHeader(bytes);
        if (!profile) {
            throwIfShortOfMemory();
            return;
        }
        lut_ = icc::decodeTag(*profile, bytes, fourcc("A2B0"));
        if (lut_.result == icc::TagResult::shortMemory) throw std::bad_alloc();
        auto* const lut = static_cast<IccLut*>(lut_.get());
        if (!lut || lut->inputChannels != 4 || lut->outputChannels != 4 || !icc::isSupportedLut(*lut)) return;
        if (!icc::lutSetup(lut)) throw std::bad_alloc();  // nothing else keeps it from being ready
        ready_ = true;
    }
    ~LibraryTable() {
        if (ready_) icc::lutClose(static_cast<IccLut*>(lut_.get()));
    }
    LibraryTable(const LibraryTable&) = delete;
    explicit operator bool() const noexcept { return ready_; }
    Colour at(const int (&levels)[4]) const noexcept {
        int32_t values[4];
        for (int ch = 0; ch < 4; ++ch) values[ch] = levels[ch] * 257;
        icc::lutColor16(*static_cast<const IccLut*>(lut_.get()), values);
        Colour out;
        for (size_t ch = 0; ch < 4; ++ch) out[ch] = values[ch] / 65535.0;
        return out;
    }

private:
    // A header that the library refuses is another matter.
    static void throwIfShortOfMemory() {
        const uint32_t reason = platform::lastError();
        platform::setLastError(platform::Cause::shortMemory);
        if (reason == platform::lastError()) throw std::bad_alloc();
    }

    icc::Decoded lut_{nullptr, icc::TagResult::absent};
    bool ready_ = false;
};

bool belongs(const char* inks, size_t ch) noexcept { return std::strchr(inks, "CMYK"[ch]) != nullptr; }

double foreignInk(const char* inks, const Colour& out) noexcept {
    double most = 0;
    for (size_t ch = 0; ch < 4; ++ch)
        if (!belongs(inks, ch)) most = std::max(most, out[ch]);
    return most;
}

double sumOf(const Colour& inks) noexcept { return inks[0] + inks[1] + inks[2] + inks[3]; }

}  // namespace

const PureRamp* PurityReport::ramp(const char* inks) const noexcept {
    for (const PureRamp& one : ramps)
        if (std::strcmp(one.inks, inks) == 0) return &one;
    return nullptr;
}

bool PurityReport::white() const noexcept { return ramp("") && ramp("")->pure(); }
bool PurityReport::black() const noexcept { return ramp("K") && ramp("K")->pure(); }
bool PurityReport::primaries() const noexcept {
    return ramp("C") && ramp("C")->pure() && ramp("M")->pure() && ramp("Y")->pure();
}
bool PurityReport::secondaries() const noexcept {
    return primaries() && ramp("CM")->pure() && ramp("CY")->pure() && ramp("MY")->pure();
}

PurityReport measurePurity(const Subject& subject, std::span<const uint8_t> bytes) {
    PurityReport report;
    if (!subject.toInk()) return report;
    if (!subject.fromInk()) {
        // White of light is all of it; of one channel in grey.
        PureRamp white{""};
        white.foreign = foreignInk("", subject.through({1, 1, 1, 0}));
        white.impureLevels = white.foreign > 0;
        report.ramps.push_back(white);
        return report;
    }
    const LibraryTable library(bytes);
    for (const char* inks : {"", "C", "M", "Y", "K", "CM", "CY", "MY"}) {
        PureRamp ramp{inks};
        ramp.readByLevels = static_cast<bool>(library);
        for (int level = 0; level < kLevels; ++level) {
            Colour in{};
            int levels[4] = {};
            for (size_t ch = 0; ch < 4; ++ch)
                if (belongs(inks, ch)) {
                    in[ch] = level / 255.0;
                    levels[ch] = level;
                }
            const double foreign = foreignInk(inks, subject.through(in));
            ramp.foreign = std::max(ramp.foreign, foreign);
            ramp.impureLevels += foreign > 0;
            if (library)
                ramp.foreignByLevels = std::max(ramp.foreignByLevels, foreignInk(inks, library.at(levels)));
            if (!*inks) break;
        }
        report.ramps.push_back(ramp);
    }
    return report;
}

BlackReport measureBlack(const Subject& subject) {
    BlackReport report;
    report.hasRamp = subject.fromInk() && subject.toInk();
    if (report.hasRamp) {
        std::vector<double> differences;
        for (int level = 0; level < kLevels; ++level) {
            const Colour in = {0, 0, 0, level / 255.0};
            BlackPoint point;
            point.level = in[3];
            point.out = subject.through(in);
            if (subject.seesColours()) {
                const Triple wanted = subject.wanted(in), printed = subject.printed(point.out);
                point.wantedLightness = wanted[0];
                point.lightness = printed[0];
                point.difference = std::min(difference2000(wanted, printed), 1000.0);
                differences.push_back(point.difference);
            }
            if (level * 10 % 255 < 10 && level * 10 / 255 == static_cast<int>(report.ramp.size()))
                report.ramp.push_back(point);
            if (level * 20 < 2 * 255) continue;  // from 10 % on
            const Colour near = subject.through({0.03, 0.02, 0.02, in[3]});
            for (size_t ch = 0; ch < 4; ++ch) {
                const double step = std::abs(near[ch] - point.out[ch]) - 0.03;
                if (step > report.step) {
                    report.step = step;
                    report.stepAt = in[3];
                }
            }
        }
        report.difference = spreadOf(differences);
    }
    if (!subject.seesColours()) return report;
    for (int at = 0; at < kGreys; ++at) {
        GreyPoint grey;
        if (subject.fromInk()) {
            // The mix of C, M and Y that the source itself prints neutral; where it has none any
            // more, the axis ends.
            precise::Wish wish;
            wish.lab = {100.0 - 2 * at, 0, 0};
            const double amount = at / (kGreys - 1.0);
            wish.start = wish.reference = {amount, 0.8 * amount, 0.8 * amount, 0};
            wish.high[3] = 0;
            const precise::Answer answer = precise::solve(subject.source(), wish);
            if (!(answer.distance < kOtherInks * 100)) continue;
            grey.in = answer.inks;
        } else {
            const double light = 1 - at / (kGreys - 1.0);
            grey.in = {light, light, light, 0};
            if (subject.facts().inputs == 1) grey.in = {light, 0, 0, 0};
        }
        grey.out = subject.through(grey.in);
        grey.wanted = subject.wanted(grey.in);
        grey.printed = subject.printed(grey.out);
        const double a = std::abs(grey.printed[1] - grey.wanted[1]);
        const double b = std::abs(grey.printed[2] - grey.wanted[2]);
        report.cast = std::max(report.cast, std::min(std::max(a, b), 1000.0));
        if (report.blackStart < 0 && subject.toInk() && grey.out[3] > kSomeBlack)
            report.blackStart = grey.wanted[0];
        report.greys.push_back(grey);
    }
    return report;
}

InkReport measureInk(const Subject& subject) {
    InkReport report;
    if (!subject.toInk()) return report;
    report.most = subject.nodes().mostInk;
    report.mostAt = subject.nodes().mostAt;
    size_t count = 0;
    for (const auto& set : {chart(subject.facts().sourceSpace), randomColours(subject.facts().sourceSpace)})
        for (const Colour& in : set) {
            const Colour out = subject.through(in);
            for (size_t ch = 0; ch < 4; ++ch) {
                report.means[ch] += out[ch];
                report.peaks[ch] = std::max(report.peaks[ch], out[ch]);
                if (subject.fromInk()) report.sourceMeans[ch] += in[ch];
            }
            if (sumOf(out) > report.most + 1e-6) {  // floats of the evaluation
                report.most = sumOf(out);
                report.mostAt = in;
            }
            ++count;
        }
    for (size_t ch = 0; ch < 4; ++ch) {
        report.means[ch] /= static_cast<double>(count);
        report.sourceMeans[ch] /= static_cast<double>(count);
    }
    report.mean = sumOf(report.means);
    report.sourceMean = sumOf(report.sourceMeans);
    return report;
}

}  // namespace ko::quality
