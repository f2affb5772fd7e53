#include "precise/solve.h"

#include <algorithm>
#include <cmath>

namespace ko::precise {
namespace {

// A pull towards the reference keeps dark colours, where many mixes look alike, from wandering;
// it costs less than 0.001 units where colours can be told apart.
constexpr double kPull = 0.01;
constexpr int kSteps = 16;
constexpr double kGain = 1e-4;      // squared units that another step has to be worth
constexpr double kLastGain = 4e-3;  // below it a step is taken on the slopes' word
constexpr double kNear = 0.04;  // units of L*a*b* from which one step more is enough
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

// h = L D L' of the first n rows in place, the diagonal holding 1 / D; false when a pivot is not
// positive.
bool decompose(double (&h)[4][4], int n) noexcept {
    for (int i = 0; i < n; ++i) {
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

void backSolve(const double (&h)[4][4], int n, double* x) noexcept {
    for (int i = 1; i < n; ++i)
        for (int k = 0; k < i; ++k) x[i] -= h[i][k] * x[k];
    for (int i = 0; i < n; ++i) x[i] *= h[i][i];
    for (int i = n - 2; i >= 0; --i)
        for (int k = i + 1; k < n; ++k) x[i] -= h[k][i] * x[k];
}

class Solver {
public:
    Solver(const Evaluator& forward, const Wish& wish) noexcept
        : forward_(forward), wish_(wish), weights_(weightsFor(wish.lab)), n_(forward.inputs()) {}

    Answer run() noexcept {
        for (int i = 0; i < n_; ++i) {
            const auto at = static_cast<size_t>(i);
            p_[at] = std::clamp(wish_.start[at], wish_.low[at], wish_.high[at]);
        }
        keepTotal(p_);
        evaluate(p_);
        double damping = 1e-6;
        for (int round = 0; round < kSteps; ++round) {
            Colour next{};
            const double predicted = step(damping, next);
            if (!(predicted > kGain)) break;
            if (predicted < kLastGain && damping < 1e-3) {
                finish(next);
                break;
            }
            const Slopes before = at_;
            const Triple residual = residual_;
            const double cost = cost_;
            const Colour kept = p_;
            evaluate(next);
            if (cost_ < cost) {
                p_ = next;
                damping = std::max(damping * 0.1, 1e-6);
                if (cost - cost_ < kGain) break;
                continue;
            }
            at_ = before;
            residual_ = residual;
            cost_ = cost;
            p_ = kept;
            damping = damping < 1 ? 1 : damping * 16;
            if (damping > 1e6) break;
        }
        Answer answer;
        answer.inks = p_;
        answer.distance = std::sqrt(residual_[0] * residual_[0] + residual_[1] * residual_[1] +
                                    residual_[2] * residual_[2]);
        answer.reached = answer.distance < kReached;
        return answer;
    }

private:
    double sumOf(const Colour& inks) const noexcept {
        double sum = 0;
        for (int i = 0; i < n_; ++i) sum += inks[static_cast<size_t>(i)];
        return sum;
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
    void evaluate(const Colour& inks) noexcept {
        at_ = forward_.slopesAt(inks);
        residual_ = weighted(weights_, at_.value[0] - wish_.lab[0], at_.value[1] - wish_.lab[1],
                             at_.value[2] - wish_.lab[2]);
        cost_ = residual_[0] * residual_[0] + residual_[1] * residual_[1] +
                residual_[2] * residual_[2];
        for (int i = 0; i < n_; ++i) {
            const double off = inks[static_cast<size_t>(i)] - aim(i);
            cost_ += pull(i) * off * off;
        }
    }
    // A small step whose result the slopes tell well enough.
    void finish(const Colour& next) noexcept {
        Triple moved{};
        for (size_t row = 0; row < 3; ++row)
            for (size_t ink = 0; ink < static_cast<size_t>(n_); ++ink)
                moved[row] += at_.slopes[row][ink] * (next[ink] - p_[ink]);
        const Triple change = weighted(weights_, moved[0], moved[1], moved[2]);
        for (size_t row = 0; row < 3; ++row) residual_[row] += change[row];
        p_ = next;
    }
    double pull(int ink) const noexcept { return ink == 3 ? wish_.blackWeight : kPull; }
    double aim(int ink) const noexcept {
        return ink == 3 ? wish_.black : wish_.reference[static_cast<size_t>(ink)];
    }

    // The next point: one Gauss-Newton step on the inks that no bound holds, with the total as an
    // equation where it holds. Returns what the step promises to gain.
    double step(double damping, Colour& next) const noexcept {
        double full[4][4] = {}, gradient[4] = {};
        Triple column[4];
        for (int j = 0; j < n_; ++j) {
            const auto at = static_cast<size_t>(j);
            column[j] = weighted(weights_, at_.slopes[0][at], at_.slopes[1][at], at_.slopes[2][at]);
        }
        for (int i = 0; i < n_; ++i) {
            for (int j = 0; j < n_; ++j)
                full[i][j] = column[i][0] * column[j][0] + column[i][1] * column[j][1] +
                             column[i][2] * column[j][2];
            gradient[i] = column[i][0] * residual_[0] + column[i][1] * residual_[1] +
                          column[i][2] * residual_[2] +
                          pull(i) * (p_[static_cast<size_t>(i)] - aim(i));
            full[i][i] += pull(i);
            full[i][i] *= 1 + damping;
        }
        const bool full_ = sumOf(p_) > wish_.total - 1e-9;
        double level = 0;  // of the gradient along the total, when that may hold
        bool free[4] = {};
        for (int i = 0; i < n_; ++i) {
            const auto at = static_cast<size_t>(i);
            const bool atLow = p_[at] <= wish_.low[at] + 1e-12 && gradient[i] > 0;
            const bool atHigh = p_[at] >= wish_.high[at] - 1e-12 && gradient[i] < 0;
            free[i] = wish_.high[at] > wish_.low[at] && !atLow && !atHigh;
        }
        if (full_)  // black may enter where it lets colour out, and so may any ink
            for (int i = 0; i < n_; ++i) {
                const auto at = static_cast<size_t>(i);
                free[i] = wish_.high[at] > wish_.low[at];
            }
        double d[4] = {};
        bool holds = false;
        for (int attempt = 0; attempt < 6; ++attempt) {
            double h[4][4] = {}, x[4] = {}, one[4] = {};
            int index[4], count = 0;
            for (int i = 0; i < n_; ++i)
                if (free[i]) index[count++] = i;
            if (count == 0) break;  // every ink goes to a bound
            double rest[4];
            for (int i = 0; i < count; ++i) {
                rest[i] = -gradient[index[i]];
                for (int j = 0; j < n_; ++j)
                    if (!free[j]) rest[i] -= full[index[i]][j] * d[j];
                for (int j = 0; j < count; ++j) h[i][j] = full[index[i]][index[j]];
                one[i] = 1;
                x[i] = rest[i];
            }
            if (!decompose(h, count)) return 0;
            backSolve(h, count, x);
            double sum = sumOf(p_), already = 0;
            for (int i = 0; i < n_; ++i)
                if (!free[i]) already += d[i];
            sum += already;
            double change = 0;
            for (int i = 0; i < count; ++i) change += x[i];
            holds = sum + change > wish_.total + 1e-12;
            if (holds) {  // subtract what the equation's multiplier takes
                backSolve(h, count, one);
                double inverse = 0;
                for (int i = 0; i < count; ++i) inverse += one[i];
                level = (sum + change - wish_.total) / inverse;
                for (int i = 0; i < count; ++i) x[i] -= level * one[i];
            }
            // The ink that leaves its bounds furthest is held there, and the rest solved again.
            int worst = -1;
            double beyond = 1e-12;
            for (int i = 0; i < count; ++i) {
                const auto at = static_cast<size_t>(index[i]);
                const double value = p_[at] + x[i];
                const double out = std::max(wish_.low[at] - value, value - wish_.high[at]);
                if (out > beyond) {
                    beyond = out;
                    worst = i;
                }
            }
            if (worst < 0) {
                for (int i = 0; i < count; ++i) d[index[i]] = x[i];
                break;
            }
            const auto at = static_cast<size_t>(index[worst]);
            const double value = p_[at] + x[worst];
            d[index[worst]] = (value < wish_.low[at] ? wish_.low[at] : wish_.high[at]) - p_[at];
            free[index[worst]] = false;
        }
        double gain = 0;
        for (int i = 0; i < n_; ++i) {
            const auto at = static_cast<size_t>(i);
            next[at] = std::clamp(p_[at] + d[i], wish_.low[at], wish_.high[at]);
            gain -= gradient[i] * (next[at] - p_[at]);
        }
        keepTotal(next);
        return gain;
    }

    const Evaluator& forward_;
    const Wish& wish_;
    Weights weights_;
    int n_;
    Colour p_{};
    Slopes at_{};
    Triple residual_{};
    double cost_ = 0;
};

}  // namespace

Answer solve(const Evaluator& forward, const Wish& wish) noexcept {
    return Solver(forward, wish).run();
}

std::optional<Colour> solveInside(const Evaluator& forward, const Triple& lab,
                                  const Colour& start) noexcept {
    Colour p = start;
    for (int round = 0; round < 6; ++round) {
        const Slopes at = forward.slopesAt(p);
        const Colour &a = at.slopes[0], &b = at.slopes[1], &c = at.slopes[2];
        const double m0 = b[1] * c[2] - b[2] * c[1];
        const double m1 = b[2] * c[0] - b[0] * c[2];
        const double m2 = b[0] * c[1] - b[1] * c[0];
        const double determinant = a[0] * m0 + a[1] * m1 + a[2] * m2;
        if (!(determinant > kFlat || determinant < -kFlat)) return std::nullopt;
        const double f = 1 / determinant;
        const double inverse[3][3] = {
            {f * m0, f * (a[2] * c[1] - a[1] * c[2]), f * (a[1] * b[2] - a[2] * b[1])},
            {f * m1, f * (a[0] * c[2] - a[2] * c[0]), f * (a[2] * b[0] - a[0] * b[2])},
            {f * m2, f * (a[1] * c[0] - a[0] * c[1]), f * (a[0] * b[1] - a[1] * b[0])}};
        // Two steps with the same slopes: the second one mends what they overlooked.
        Triple off = {lab[0] - at.value[0], lab[1] - at.value[1], lab[2] - at.value[2]};
        for (int half = 0;; ++half) {
            const double square = off[0] * off[0] + off[1] * off[1] + off[2] * off[2];
            for (size_t i = 0; i < 3; ++i) {
                p[i] += inverse[i][0] * off[0] + inverse[i][1] * off[1] + inverse[i][2] * off[2];
                if (!(p[i] >= 0 && p[i] <= 1)) return std::nullopt;
            }
            // Slopes are good to a fifth or so over such a step.
            if (square < kNear * kNear) return p;
            if (half == 1) break;
            const Colour now = forward.at(p);
            off = {lab[0] - now[0], lab[1] - now[1], lab[2] - now[2]};
        }
    }
    return std::nullopt;
}

}  // namespace ko::precise
