#include "precise/transform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace ko::precise {
namespace {

bool hasIntent(const Profile& profile, Intent intent, bool toConnection) noexcept {
    return profile.hasTable(intent, toConnection) || profile.isMatrixShaper();
}

bool isVersion4(const Profile& profile) noexcept { return profile.header().version >= 0x4000000; }

// The black of the perceptual reference medium (ICC.1, version 4).
constexpr Triple kPerceptualBlack = {0.00336, 0.0034731, 0.00287};

Triple neutralBlack(double lightness) noexcept {
    const double limited = lightness > 0 ? std::min(lightness, 50.0) : 0;
    return toXyz({limited, 0, 0});
}

// All inks, or no light, seen through the profile.
Triple darkestColour(const Profile& profile, Intent intent) {
    if (!hasIntent(profile, intent, true)) return {0, 0, 0};
    Problem ignored;
    const auto pipeline = makeToLab(profile, intent, ignored);
    if (!pipeline) return {0, 0, 0};
    const uint32_t space = profile.header().space;
    const double level = space == fourcc("CMYK") || space == fourcc("CMY ") ? 1 : 0;
    return neutralBlack(pipeline->at({level, level, level, level})[0]);
}

Bridge compensation(const Triple& from, const Triple& to) noexcept {
    Bridge bridge;
    if (from == to) return bridge;
    for (size_t at = 0; at < 3; ++at) {
        const double span = from[at] - kD50[at];
        bridge.scale[at] = (to[at] - kD50[at]) / span;
        bridge.offset[at] = -kD50[at] * (to[at] - from[at]) / span;
    }
    return bridge;
}

// Lab through a profile and back: what a colour becomes in print.
std::optional<Pipeline> roundTrip(const Profile& profile, Intent intent) {
    Problem ignored;
    std::optional<Pipeline> there(std::in_place);
    auto last = profile.fromConnection(intent, ignored);
    if (!last) return std::nullopt;
    Bridge bridge;
    if (isVersion4(profile) && intent != Intent::relative)
        bridge = compensation({0, 0, 0}, destinationBlack(profile, intent));
    bridge.addTo(*there, true, profile.connectsInLab());
    there->inputs = 3;
    for (Stage& stage : last->stages) there->add(std::move(stage));
    auto back = makeToLab(profile, Intent::relative, ignored);
    if (!back) return std::nullopt;
    for (Stage& stage : back->stages) there->add(std::move(stage));
    there->outputs = 3;
    return there;
}

Triple blackThroughPerceptual(const Profile& profile) {
    if (!hasIntent(profile, Intent::perceptual, true)) return {0, 0, 0};
    const auto pipeline = roundTrip(profile, Intent::perceptual);
    if (!pipeline) return {0, 0, 0};
    return neutralBlack(pipeline->at({0, 0, 0, 0})[0]);
}

// The smaller root of the parabola that fits the points best, within 0..50.
double rootOfParabola(const std::vector<std::array<double, 2>>& points) {
    if (points.size() < 4) return 0;
    double sx = 0, sx2 = 0, sx3 = 0, sx4 = 0, sy = 0, sxy = 0, sx2y = 0;
    const auto n = static_cast<double>(points.size());
    for (const auto& [x, y] : points) {
        sx += x;
        sx2 += x * x;
        sx3 += x * x * x;
        sx4 += x * x * x * x;
        sy += y;
        sxy += x * y;
        sx2y += x * x * y;
    }
    const double determinant = n * (sx2 * sx4 - sx3 * sx3) - sx * (sx * sx4 - sx3 * sx2) +
                               sx2 * (sx * sx3 - sx2 * sx2);
    if (determinant == 0) return 0;
    const double c = (sy * (sx2 * sx4 - sx3 * sx3) - sx * (sxy * sx4 - sx3 * sx2y) +
                      sx2 * (sxy * sx3 - sx2 * sx2y)) / determinant;
    const double b = (n * (sxy * sx4 - sx3 * sx2y) - sy * (sx * sx4 - sx3 * sx2) +
                      sx2 * (sx * sx2y - sxy * sx2)) / determinant;
    const double a = (n * (sx2 * sx2y - sxy * sx3) - sx * (sx * sx2y - sxy * sx2) +
                      sy * (sx * sx3 - sx2 * sx2)) / determinant;
    if (a < 1e-10 && a > -1e-10) {
        if (b < 1e-10 && b > -1e-10) return 0;
        return std::clamp(-c / b, 0.0, 50.0);
    }
    const double d = b * b - 4 * a * c;
    if (d <= 0) return 0;
    return std::clamp((-b + std::sqrt(d)) / (2 * a), 0.0, 50.0);
}

}  // namespace

void Bridge::addTo(Pipeline& pipeline, bool fromLab, bool toLab) const {
    if (isIdentity()) {
        if (fromLab != toLab) pipeline.addStep(fromLab ? Step::fromLab : Step::toLab);
        return;
    }
    if (fromLab) pipeline.addStep(Step::fromLab);
    Matrix matrix;
    for (size_t at = 0; at < 3; ++at) {
        matrix.rows[at][at] = scale[at];
        matrix.offsets[at] = offset[at];
    }
    pipeline.addMatrix(matrix);
    if (toLab) pipeline.addStep(Step::toLab);
}

Triple sourceBlack(const Profile& profile, Intent intent) {
    const uint32_t kind = profile.header().deviceClass;
    if (kind == fourcc("link") || kind == fourcc("abst") || kind == fourcc("nmcl")) return {0, 0, 0};
    if (intent == Intent::absolute) return {0, 0, 0};
    if (isVersion4(profile) && intent != Intent::relative)
        return profile.isMatrixShaper() ? darkestColour(profile, Intent::relative)
                                        : kPerceptualBlack;
    // A press may not be printed with all inks in full; its own black is what its tables make.
    if (intent == Intent::relative && kind == fourcc("prtr") &&
        profile.header().space == fourcc("CMYK"))
        return blackThroughPerceptual(profile);
    return darkestColour(profile, intent);
}

// The foot of the curve that the lightness of a neutral ramp takes in print: a parabola through
// its lower part meets zero there.
Triple destinationBlack(const Profile& profile, Intent intent) {
    const uint32_t kind = profile.header().deviceClass, space = profile.header().space;
    if (kind == fourcc("link") || kind == fourcc("abst") || kind == fourcc("nmcl")) return {0, 0, 0};
    if (intent == Intent::absolute) return {0, 0, 0};
    if (isVersion4(profile) && intent != Intent::relative)
        return profile.isMatrixShaper() ? darkestColour(profile, Intent::relative)
                                        : kPerceptualBlack;
    const bool known = space == fourcc("GRAY") || space == fourcc("RGB ") || space == fourcc("CMYK");
    if (!profile.hasTable(intent, false) || !known) return sourceBlack(profile, intent);

    Triple initial = {0, 0, 0};
    if (intent == Intent::relative) initial = toLab(sourceBlack(profile, intent));
    const auto pipeline = roundTrip(profile, intent);
    if (!pipeline) return {0, 0, 0};
    std::array<double, 256> in, out;
    for (size_t at = 0; at < 256; ++at) {
        in[at] = static_cast<double>(at) * 100 / 255;
        out[at] = pipeline->at({in[at], std::clamp(initial[1], -50.0, 50.0),
                                std::clamp(initial[2], -50.0, 50.0), 0})[0];
    }
    for (size_t at = 254; at > 0; --at) out[at] = std::min(out[at], out[at + 1]);
    const double low = out[0], high = out[255];
    if (!(low < high)) return {0, 0, 0};
    if (intent == Intent::relative) {
        bool straight = true;
        for (size_t at = 0; at < 256; ++at)
            straight &= in[at] <= low + 0.2 * (high - low) || std::abs(in[at] - out[at]) < 4;
        if (straight) return toXyz(initial);
    }
    const double from = intent == Intent::relative ? 0.1 : 0.03;
    const double to = intent == Intent::relative ? 0.5 : 0.25;
    std::vector<std::array<double, 2>> points;
    for (size_t at = 0; at < 256; ++at) {
        const double share = (out[at] - low) / (high - low);
        if (share >= from && share < to) points.push_back({in[at], share});
    }
    if (points.size() < 3) return {0, 0, 0};
    return toXyz({rootOfParabola(points), initial[1], initial[2]});
}

Bridge bridgeBetween(const Profile& source, const Profile& destination, Intent intent,
                     bool compensateBlack) {
    Bridge bridge;
    if (intent == Intent::absolute) {
        const Triple from = source.mediaWhite(), to = destination.mediaWhite();
        for (size_t at = 0; at < 3; ++at) bridge.scale[at] = from[at] / to[at];
        return bridge;
    }
    if (isVersion4(destination) && intent != Intent::relative) compensateBlack = true;
    if (!compensateBlack) return bridge;
    const Triple from = sourceBlack(source, intent), to = destinationBlack(destination, intent);
    return compensation(from, to);
}

std::optional<Pipeline> makeTransform(const Profile& source, const Profile& destination,
                                      Intent intent, bool compensateBlack, Problem& problem) {
    auto first = source.toConnection(intent, problem);
    if (!first) return std::nullopt;
    auto second = destination.fromConnection(intent, problem);
    if (!second) return std::nullopt;
    bridgeBetween(source, destination, intent, compensateBlack)
        .addTo(*first, source.connectsInLab(), destination.connectsInLab());
    for (Stage& stage : second->stages) first->add(std::move(stage));
    first->outputs = second->outputs;
    return first;
}

std::optional<Pipeline> makeToLab(const Profile& profile, Intent intent, Problem& problem) {
    auto pipeline = profile.toConnection(intent, problem);
    if (!pipeline) return std::nullopt;
    Bridge bridge;
    if (intent == Intent::absolute) {
        const Triple white = profile.mediaWhite();
        for (size_t at = 0; at < 3; ++at) bridge.scale[at] = white[at] / kD50[at];
    }
    bridge.addTo(*pipeline, profile.connectsInLab(), true);
    return pipeline;
}

std::optional<Pipeline> makeFromLab(const Profile& profile, Intent intent, Problem& problem) {
    Pipeline whole;
    auto pipeline = profile.fromConnection(intent, problem);
    if (!pipeline) return std::nullopt;
    Bridge bridge;
    if (intent == Intent::absolute) {
        const Triple white = profile.mediaWhite();
        for (size_t at = 0; at < 3; ++at) bridge.scale[at] = kD50[at] / white[at];
    }
    bridge.addTo(whole, true, profile.connectsInLab());
    whole.inputs = 3;
    whole.outputs = pipeline->outputs;
    for (Stage& stage : pipeline->stages) whole.add(std::move(stage));
    return whole;
}

}  // namespace ko::precise
