// A press's forward table with derivatives, and its inverse table, made ready for many colours.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "precise/pipeline.h"

namespace ko::precise {

// A sampled curve over floats, whose value and slope cost a multiplication each. Arguments are
// limited to 0..1.
class QuickCurve {
public:
    QuickCurve() = default;
    // The curve, its values times scale plus offset.
    QuickCurve(const Curve& curve, double scale, double offset);
    double at(double x) const noexcept {
        const Place place = placeOf(x);
        return place.entry[0] + place.rest * (place.entry[1] - place.entry[0]);
    }
    double at(double x, double& slope) const noexcept {
        const Place place = placeOf(x);
        const double rise = static_cast<double>(place.entry[1]) - place.entry[0];
        slope = rise * last_;
        return place.entry[0] + place.rest * rise;
    }

private:
    struct Place {
        const float* entry;
        double rest;
    };
    Place placeOf(double x) const noexcept {
        const double position = x > 0 ? x < 1 ? x * last_ : last_ : 0;
        int index = static_cast<int>(position);
        if (index > top_) index = top_;
        return {entries_.data() + index, position - index};
    }
    std::vector<float> entries_;
    double last_ = 0;
    int top_ = 0;
};

// Four inks (or three channels) to L*a*b* with derivatives, and anything to anything without.
// Tables of the common shape - curves, one grid, curves - are evaluated in floats with double
// ends; every other pipeline as it is. The two ways agree to 0.001 L*a*b* units.
class Evaluator {
public:
    explicit Evaluator(Pipeline pipeline);

    int inputs() const noexcept { return pipeline_.inputs; }
    int outputs() const noexcept { return pipeline_.outputs; }
    bool isQuick() const noexcept { return quick_; }
    Colour at(const Colour& in) const noexcept;
    Slopes slopesAt(const Colour& in) const noexcept;

private:
    bool prepare();
    template <size_t inputs, size_t outputs>
    Colour quickAt(const Colour& in) const noexcept;
    template <size_t inputs>
    void quickSlopesAt(const Colour& in, Slopes& result) const noexcept;
    Pipeline pipeline_;
    bool quick_ = false;
    size_t lead_ = 0;  // stages before the curves of the table
    std::array<QuickCurve, kMostChannels> in_, out_;
    const Grid* grid_ = nullptr;
    Colour steps_{};  // cells an axis, times the grid's scale
};

}  // namespace ko::precise
