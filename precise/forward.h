// A press's forward table with derivatives, and its inverse table, made ready for many colours.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "precise/four.h"
#include "precise/pipeline.h"

namespace ko::precise {

// Four sampled curves side by side, for one argument each. Floats throughout; arguments are
// limited to 0..1, and the two entries around them blended.
class QuickCurves {
public:
    // The curve of a channel, its values times scale plus offset; the identity where none is set.
    void set(size_t channel, const Curve& curve, double scale, double offset);
    Four at(Four x) const noexcept {
        const Places places = placesOf(x);
        return places.low + places.rest * (places.high - places.low);
    }
    Four at(Four x, Four& slope) const noexcept {
        const Places places = placesOf(x);
        const Four rise = places.high - places.low;
        slope = rise * loaded(last_);
        return places.low + places.rest * rise;
    }

private:
    struct Places {
        Four low, high, rest;
    };
    Places placesOf(Four x) const noexcept {
        const Four position = limited(x) * loaded(last_);
        FourInt index = __builtin_convertvector(position, FourInt);
        index += index > loaded(top_);  // a comparison that holds is -1
        const float *a = entries_[0].data() + index[0], *b = entries_[1].data() + index[1],
                    *c = entries_[2].data() + index[2], *d = entries_[3].data() + index[3];
        return {Four{a[0], b[0], c[0], d[0]}, Four{a[1], b[1], c[1], d[1]},
                position - __builtin_convertvector(index, Four)};
    }
    FourKept last_ = {1, 1, 1, 1};
    FourIntKept top_ = {0, 0, 0, 0};
    std::array<std::vector<float>, 4> entries_ = {{{0, 1}, {0, 1}, {0, 1}, {0, 1}}};
};

// Four inks (or three channels) to L*a*b* with derivatives, and anything to anything without.
// Tables of the common shape - curves, one grid, curves - are evaluated in floats; every other
// pipeline as it is. The two ways agree to 0.001 L*a*b* units.
class Evaluator {
public:
    explicit Evaluator(Pipeline pipeline);

    int inputs() const noexcept { return pipeline_.inputs; }
    int outputs() const noexcept { return pipeline_.outputs; }
    bool isQuick() const noexcept { return quick_; }
    Colour at(const Colour& in) const noexcept;
    Slopes slopesAt(const Colour& in) const noexcept;

    // Where a channel's value stands in its axis. Places can be kept for values that come again;
    // only of a quick evaluator of four channels.
    struct Place {
        uint32_t offset = 0;
        float rest = 0;
    };
    bool hasPlaces() const noexcept { return quick_ && lead_ == 0 && !scaled_ && grid_->inputs == 4; }
    Place placeOf(size_t channel, double value) const noexcept;
    // The grid at a place of the first channel, for many colours that have it in common. nodes
    // keeps its memory from one to the next.
    void slabAt(const Place& first, std::vector<float>& nodes) const;
    // The places of the other three channels.
    Colour inSlab(const std::vector<float>& nodes,
                  const std::array<Place, kMostChannels>& places) const noexcept;

private:
    struct Cell;
    bool prepare();
    template <size_t inputs>
    Cell cellOf(Four x) const noexcept;
    Pipeline pipeline_;
    bool quick_ = false;
    // Before the curves of the table: a scale and an offset, or this many stages of any kind.
    size_t lead_ = 0;
    bool scaled_ = false;
    FourKept leadScale_ = {1, 1, 1, 1}, leadOffset_{};
    QuickCurves in_, out_;
    const Grid* grid_ = nullptr;
    FourKept last_{}, steps_{};  // cells an axis; times the grid's scale
    FourIntKept top_{};
};

}  // namespace ko::precise
