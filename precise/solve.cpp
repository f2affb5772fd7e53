#include "precise/solve.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ko::precise {
namespace {

// A pull towards the reference keeps dark colours, where many mixes look alike, from wandering;
// it costs less than 0.001 units where colours can be told apart.
constexpr double kPull = 0.005;
constexpr int kSteps = 16;
constexpr double kGain = 1e-4;      // squared units that another step has to be worth
constexpr double kLastGain = 2e-3;  // below it a step is taken on the slopes' word
constexpr double kValley = 0.01;  // below it a step that fails is not tried again shorter
constexpr double kNear = 0.04;  // units of L*a*b* from which one step more is enough
constexpr double kFar = 1;      // units from which kept slopes lead astray
constexpr int kUses = 4;        // colours along a row that slopes serve
constexpr double kBlackStep = 0.12;  // of black, over which slopes lead near enough
constexpr int kBlackSteps = 16;
constexpr double kFarFrom = 0.3;  // units from which on a colour is far
constexpr double kFlat = 2000;  // the least volume of a cell's slopes for plain steps

struct Weights {  // rows of a matrix over dL, da, db: lightness, chroma, hue
    double l, c, h, cosine, sine;
};

Weights weightsFor(const Triple& lab) noexcept {
    const double chroma = std::sqrt(lab[1] * lab[1] + lab[2] * lab[2]);
    Weights w{1, 1 / (1 + 0.09 * chroma), 1 / (1 + 0.012 * chroma), 1, 0};
    if (chroma > 1e-9) {
        w.cosine = lab[1] / chroma;
        w.sine = lab[2] / chroma;
    }
    return w;
}

Triple weighted(const Weights& w, double l, double a, double b) noexcept {
    return {w.l * l, w.c * (w.cosine * a + w.sine * b), w.h * (w.cosine * b - w.sine * a)};
}

constexpr int kInks = kMostChannels;
using Square = double[kInks][kInks];

// h = L D L' in place, the diagonal holding 1 / D; false when a pivot is not positive.
inline bool decompose(Square& h) noexcept {
    for (int i = 0; i < kInks; ++i) {
        for (int j = 0; j < i; ++j) {
            double sum = h[i][j];
            for (int k = 0; k < j; ++k) sum -= h[i][k] * h[j][k];
            h[i][j] = sum;  // L times D until the row is whole
        }
        double pivot = h[i][i];
        for (int j = 0; j < i; ++j) {
            const double l = h[i][j] * h[j][j];
            pivot -= h[i][j] * l;
            h[i][j] = l;
        }
        if (!(pivot > 1e-12)) return false;
        h[i][i] = 1 / pivot;
    }
    return true;
}

inline void backSolve(const Square& h, Colour& x) noexcept {
    for (size_t i = 1; i < kInks; ++i)
        for (size_t k = 0; k < i; ++k) x[i] -= h[i][k] * x[k];
    for (size_t i = 0; i < kInks; ++i) x[i] *= h[i][i];
    for (size_t i = kInks - 1; i-- > 0;)
        for (size_t k = i + 1; k < kInks; ++k) x[i] -= h[k][i] * x[k];
}

class Solver {
public:
    Solver(const Evaluator& forward, const Wish& wish) noexcept
        : forward_(forward), wish_(wish), weights_(weightsFor(wish.lab)) {}

    Answer run() noexcept {
        State states[2];
        State *now = &states[0], *next = &states[1];
        for (size_t i = 0; i < kInks; ++i)
            now->inks[i] = std::clamp(wish_.start[i], wish_.low[i], wish_.high[i]);
        keepTotal(now->inks);
        descend(now, next);
        double distance = lengthOf(now->residual);
        if (wish_.farPull > 0 && distance > kFarFrom) {
            const double beyond = distance - kFarFrom;
            farPull_ = wish_.farPull * beyond * beyond;
            descend(now, next);
            distance = lengthOf(now->residual);
        }
        Answer answer;
        answer.inks = now->inks;
        answer.distance = distance;
        answer.reached = answer.distance < kReached;
        return answer;
    }

private:
    struct State {
        Colour inks{};
        Slopes at;
        Triple residual{};
        double cost = 0;
    };

    // From now's inks downhill; now is the lowest point that was found.
    void descend(State*& now, State*& next) const noexcept {
        evaluate(*now);
        double damping = 1e-6;
        for (int round = 0; round < kSteps; ++round) {
            // Far outside a gain of the square means less.
            const double scale = 1 + std::sqrt(now->cost);
            const double predicted = step(*now, damping, next->inks);
            if (!(predicted > kGain * scale)) break;
            if (predicted < kLastGain * scale && damping < 1e-3) {
                finish(*now, next->inks);
                break;
            }
            evaluate(*next);
            if (next->cost < now->cost) {
                const double gain = now->cost - next->cost;
                std::swap(now, next);
                damping = std::max(damping * 0.1, 1e-6);
                if (gain < kGain * scale) break;
                continue;
            }
            // Where cells meet in a valley, steps on either side's word cross it for ever.
            if (predicted < kValley * scale || damping > 1e4) break;
            damping = damping < 1 ? 1 : damping * 16;
        }
    }

    static double lengthOf(const Triple& v) noexcept {
        return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    }
    static double sumOf(const Colour& inks) noexcept {
        return (inks[0] + inks[1]) + (inks[2] + inks[3]);
    }
    // Colour goes first, in proportion, then black.
    void keepTotal(Colour& inks) const noexcept {
        const double excess = sumOf(inks) - wish_.total;
        if (!(excess > 0)) return;
        const double colour = inks[0] + inks[1] + inks[2];
        const double share = colour > excess ? (colour - excess) / colour : 0;
        for (size_t i = 0; i < 3; ++i) inks[i] *= share;
        if (share == 0) inks[3] = std::min(inks[3], wish_.total);
    }
    void evaluate(State& state) const noexcept {
        state.at = forward_.slopesAt(state.inks);
        const Colour& seen = state.at.value;
        state.residual = weighted(weights_, seen[0] - wish_.lab[0], seen[1] - wish_.lab[1],
                                  seen[2] - wish_.lab[2]);
        const Triple& off = state.residual;
        state.cost = off[0] * off[0] + off[1] * off[1] + off[2] * off[2];
        for (size_t i = 0; i < kInks; ++i) {
            const double away = state.inks[i] - aim(i);
            state.cost += pull(i) * away * away;
        }
    }
    // A small step whose result the slopes tell well enough.
    void finish(State& state, const Colour& next) const noexcept {
        Triple moved{};
        for (size_t ink = 0; ink < kInks; ++ink)
            for (size_t row = 0; row < 3; ++row)
                moved[row] += state.at.slopes[ink][row] * (next[ink] - state.inks[ink]);
        const Triple change = weighted(weights_, moved[0], moved[1], moved[2]);
        for (size_t row = 0; row < 3; ++row) state.residual[row] += change[row];
        state.inks = next;
    }
    double pull(size_t ink) const noexcept {
        return (ink == 3 ? wish_.blackWeight : kPull) + farPull_;
    }
    double aim(size_t ink) const noexcept { return ink == 3 ? wish_.black : wish_.reference[ink]; }

    // The next point: one Gauss-Newton step on the inks that no bound holds, with the total as an
    // equation where it holds. Returns what the step promises to gain.
    double step(const State& state, double damping, Colour& next) const noexcept {
        const Colour& p = state.inks;
        Square full;
        Colour gradient;
        Triple column[kInks];
        for (size_t j = 0; j < kInks; ++j) {
            const Colour& slopes = state.at.slopes[j];
            column[j] = weighted(weights_, slopes[0], slopes[1], slopes[2]);
        }
        const auto product = [](const Triple& a, const Triple& b) {
            return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
        };
        for (size_t i = 0; i < kInks; ++i) {
            for (size_t j = 0; j <= i; ++j) full[i][j] = product(column[i], column[j]);
            gradient[i] = product(column[i], state.residual) + pull(i) * (p[i] - aim(i));
            full[i][i] = (full[i][i] + pull(i)) * (1 + damping);
        }
        const double sum = sumOf(p);
        // Where the total holds, black may enter where it lets colour out, and so may any ink.
        const bool atTotal = sum > wish_.total - 1e-9;
        bool free[kInks];
        for (size_t i = 0; i < kInks; ++i) {
            const bool atLow = p[i] <= wish_.low[i] + 1e-12 && gradient[i] > 0;
            const bool atHigh = p[i] >= wish_.high[i] - 1e-12 && gradient[i] < 0;
            free[i] = wish_.high[i] > wish_.low[i] && (atTotal || (!atLow && !atHigh));
        }
        Colour d{};
        for (int attempt = 0; attempt < 6; ++attempt) {
            // Inks that are held are equations of their own: their row says nothing of the rest.
            Square h;
            Colour x, one;
            double already = 0;
            int count = 0;
            for (size_t i = 0; i < kInks; ++i) {
                for (size_t j = 0; j < i; ++j) h[i][j] = free[i] && free[j] ? full[i][j] : 0;
                h[i][i] = free[i] ? full[i][i] : 1;
                x[i] = free[i] ? -gradient[i] : 0;
                one[i] = free[i] ? 1 : 0;
                already += free[i] ? 0 : d[i];
                count += free[i];
            }
            if (count == 0) break;  // every ink goes to a bound
            for (size_t i = 0; i < kInks; ++i)
                for (size_t j = 0; j < kInks; ++j)
                    if (free[i] && !free[j]) x[i] -= (i > j ? full[i][j] : full[j][i]) * d[j];
            if (!decompose(h)) return 0;
            backSolve(h, x);
            const double excess = sum + already + sumOf(x) - wish_.total;
            if (excess > 1e-12) {  // subtract what the equation's multiplier takes
                backSolve(h, one);
                const double level = excess / sumOf(one);
                for (size_t i = 0; i < kInks; ++i) x[i] -= level * one[i];
            }
            // The ink that leaves its bounds furthest is held there, and the rest solved again.
            size_t worst = kInks;
            double beyond = 1e-12;
            for (size_t i = 0; i < kInks; ++i) {
                if (!free[i]) continue;
                const double value = p[i] + x[i];
                const double out = std::max(wish_.low[i] - value, value - wish_.high[i]);
                if (out > beyond) {
                    beyond = out;
                    worst = i;
                }
            }
            if (worst == kInks) {
                for (size_t i = 0; i < kInks; ++i)
                    if (free[i]) d[i] = x[i];
                break;
            }
            const bool below = p[worst] + x[worst] < wish_.low[worst];
            d[worst] = (below ? wish_.low[worst] : wish_.high[worst]) - p[worst];
            free[worst] = false;
        }
        double gain = 0;
        for (size_t i = 0; i < kInks; ++i) {
            next[i] = std::clamp(p[i] + d[i], wish_.low[i], wish_.high[i]);
            gain -= gradient[i] * (next[i] - p[i]);
        }
        keepTotal(next);
        return gain;
    }

    const Evaluator& forward_;
    const Wish& wish_;
    Weights weights_;
    double farPull_ = 0;
};

}  // namespace

Answer solve(const Evaluator& forward, const Wish& wish) noexcept {
    return Solver(forward, wish).run();
}

// Rows of the inverse are cross products of the columns; false where they are too flat.
static bool invert(const Slopes& at, std::array<Triple, 3>& inverse) noexcept {
    const Colour &a = at.slopes[0], &b = at.slopes[1], &c = at.slopes[2];
    const auto cross = [](const Colour& x, const Colour& y) -> Triple {
        return {x[1] * y[2] - x[2] * y[1], x[2] * y[0] - x[0] * y[2], x[0] * y[1] - x[1] * y[0]};
    };
    const Triple bc = cross(b, c);
    const double determinant = a[0] * bc[0] + a[1] * bc[1] + a[2] * bc[2];
    if (!(determinant > kFlat || determinant < -kFlat)) return false;
    inverse = {bc, cross(c, a), cross(a, b)};
    const double f = 1 / determinant;
    for (Triple& row : inverse)
        for (double& value : row) value *= f;
    return true;
}

// How inks change with black's, for the look to stay.
static Triple tradeOf(const std::array<Triple, 3>& inverse, const Colour& black) noexcept {
    Triple change;
    for (size_t i = 0; i < 3; ++i)
        change[i] = -(inverse[i][0] * black[0] + inverse[i][1] * black[1] + inverse[i][2] * black[2]);
    return change;
}

Colour mostBlack(const Evaluator& forward, const Triple& lab, const Colour& inks) noexcept {
    InsideSolver follower(forward);
    Colour best = inks;
    double longest = kBlackStep;
    for (int round = 0; round < kBlackSteps && longest > 1e-4; ++round) {
        const Slopes at = forward.slopesAt(best);
        std::array<Triple, 3> inverse;
        if (!invert(at, inverse)) break;
        const Triple change = tradeOf(inverse, at.slopes[3]);
        double step = std::min(longest, 1 - best[3]);
        for (size_t i = 0; i < 3; ++i)
            if (change[i] < 0) step = std::min(step, best[i] / -change[i]);
        if (!(step > 1e-4)) break;
        Colour next = best;
        next[3] += step;
        for (size_t i = 0; i < 3; ++i) next[i] = std::clamp(next[i] + step * change[i], 0.0, 1.0);
        if (const auto inside = follower.solve(lab, next)) {
            best = *inside;
        } else {
            longest = step / 2;  // a bound is nearer than the slopes say
        }
    }
    return best;
}

Colour InsideSolver::withBlack(const Colour& inks, double black) const noexcept {
    const double step = black - inks[3];
    Colour out = inks;
    out[3] = black;
    if (step < kBlackStep && step > -kBlackStep)
        for (size_t i = 0; i < 3; ++i) out[i] = std::clamp(inks[i] + step * trade_[i], 0.0, 1.0);
    return out;
}

std::optional<Colour> InsideSolver::solve(const Triple& lab, const Colour& start) noexcept {
    Colour p = start;
    for (int round = 0; round < 8; ++round) {
        Colour now;
        const bool kept = uses_ > 0;
        --uses_;
        if (kept) {
            now = forward_.at(p);
        } else {
            const Slopes at = forward_.slopesAt(p);
            if (!invert(at, inverse_)) return std::nullopt;
            trade_ = tradeOf(inverse_, at.slopes[3]);
            uses_ = kUses;
            now = at.value;
        }
        const Triple off = {lab[0] - now[0], lab[1] - now[1], lab[2] - now[2]};
        const double square = off[0] * off[0] + off[1] * off[1] + off[2] * off[2];
        if (kept && square > kFar * kFar) {
            uses_ = 0;
            continue;
        }
        for (size_t i = 0; i < 3; ++i) {
            p[i] += inverse_[i][0] * off[0] + inverse_[i][1] * off[1] + inverse_[i][2] * off[2];
            if (!(p[i] >= 0 && p[i] <= 1)) {
                uses_ = 0;
                return std::nullopt;
            }
        }
        // Slopes are good to a fifth or so over such a step.
        if (square < kNear * kNear) return p;
    }
    uses_ = 0;
    return std::nullopt;
}

}  // namespace ko::precise
