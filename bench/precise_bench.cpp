// kolink_precise_bench FOLDER SOURCE DESTINATION [SOURCE DESTINATION...]: links of pairs of press
// profiles by this engine and by its peers (linkicc, collink, where they are installed), judged by
// lcms2 in float without its optimisations. One table a pair:
//   colour   CIEDE2000 between the source's colours and what the destination's forward table makes
//            of the link's inks, over 20,000 seeded colours of at most 300 % that the destination
//            reaches with the black of its own tables
//   ramps    second differences of L*a*b* along ten ramps of 256 steps, and how often and how far
//            L* rises where the source's does not
//   black    CIEDE2000 along pure K
// FOLDER takes the links. Relative colorimetric, 33 points.
#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "kolink/precise.h"

namespace {

constexpr cmsUInt32Number kExact = cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE;
using Inks = std::array<double, 4>;  // percent

class Transform {
public:
    Transform(cmsHPROFILE from, cmsUInt32Number in, cmsHPROFILE to, cmsUInt32Number out,
              cmsUInt32Number intent = 1)
        : handle_(cmsCreateTransform(from, in, to, out, intent, kExact)) {}
    ~Transform() {
        if (handle_) cmsDeleteTransform(handle_);
    }
    Transform(const Transform&) = delete;
    Transform& operator=(const Transform&) = delete;
    explicit operator bool() const { return handle_; }
    cmsCIELab lab(const Inks& inks) const {
        cmsCIELab lab;
        cmsDoTransform(handle_, inks.data(), &lab, 1);
        return lab;
    }
    Inks inks(const Inks& from) const {
        Inks to;
        cmsDoTransform(handle_, from.data(), to.data(), 1);
        return to;
    }
    Inks inks(const cmsCIELab& lab) const {
        Inks to;
        cmsDoTransform(handle_, &lab, to.data(), 1);
        return to;
    }

private:
    cmsHTRANSFORM handle_;
};

double difference(const cmsCIELab& a, const cmsCIELab& b) { return cmsCIE2000DeltaE(&a, &b, 1, 1, 1); }

// How near the press comes to a colour with the black that its tables choose: damped Newton steps
// by differences.
double nearest(const cmsCIELab& wanted, const Transform& press, const Transform& tables) {
    Inks inks = tables.inks(wanted);
    cmsCIELab now = press.lab(inks);
    double best = difference(wanted, now);
    for (int round = 0; round < 8 && best > 0.02; ++round) {
        double slopes[3][3], m[3][4];
        for (size_t j = 0; j < 3; ++j) {
            Inks moved = inks;
            const double step = moved[j] > 50 ? -0.5 : 0.5;
            moved[j] += step;
            const cmsCIELab there = press.lab(moved);
            slopes[0][j] = (there.L - now.L) / step;
            slopes[1][j] = (there.a - now.a) / step;
            slopes[2][j] = (there.b - now.b) / step;
        }
        const double off[3] = {wanted.L - now.L, wanted.a - now.a, wanted.b - now.b};
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                m[i][j] = i == j ? 1e-3 : 0;
                for (int k = 0; k < 3; ++k) m[i][j] += slopes[k][i] * slopes[k][j];
            }
            m[i][3] = 0;
            for (int k = 0; k < 3; ++k) m[i][3] += slopes[k][i] * off[k];
        }
        for (int i = 0; i < 3; ++i)
            for (int k = 0; k < 3; ++k) {
                if (k == i) continue;
                const double f = m[k][i] / m[i][i];
                for (int j = i; j < 4; ++j) m[k][j] -= f * m[i][j];
            }
        for (int i = 0; i < 3; ++i) {
            const auto at = static_cast<size_t>(i);
            inks[at] = std::clamp(inks[at] + std::clamp(m[i][3] / m[i][i], -20.0, 20.0), 0.0, 100.0);
        }
        now = press.lab(inks);
        const double distance = difference(wanted, now);
        if (!(distance < best)) break;
        best = distance;
    }
    return best;
}

struct Pair {
    cmsHPROFILE from, to, lab = cmsCreateLab4Profile(nullptr);
    Transform source{from, TYPE_CMYK_DBL, lab, TYPE_Lab_DBL};
    Transform press{to, TYPE_CMYK_DBL, lab, TYPE_Lab_DBL};
    Transform tables{lab, TYPE_Lab_DBL, to, TYPE_CMYK_DBL};
    std::vector<Inks> colours;
    std::vector<cmsCIELab> wanted;

    Pair(const char* sourcePath, const char* destinationPath)
        : from(cmsOpenProfileFromFile(sourcePath, "r")), to(cmsOpenProfileFromFile(destinationPath, "r")) {
        std::mt19937 random(20261121);
        const auto part = [&] { return static_cast<double>(random()) / 42949672.96; };
        for (int tried = 0; colours.size() < 20000 && tried < 200000; ++tried) {
            Inks inks = {part(), part(), part(), part()};
            if (tried % 4 == 0) inks[3] = 0;
            if (tried % 8 == 1)
                for (size_t i = 0; i < 3; ++i) inks[i] *= 0.15;
            const double total = inks[0] + inks[1] + inks[2] + inks[3];
            if (total > 300)
                for (size_t i = 0; i < 3; ++i) inks[i] *= (300 - inks[3]) / (total - inks[3]);
            const cmsCIELab seen = source.lab(inks);
            if (nearest(seen, press, tables) > 0.2) continue;
            colours.push_back(inks);
            wanted.push_back(seen);
        }
    }
};

constexpr Inks kRamps[] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}, {1, 1, 0, 0}, {1, 0, 1, 0}, {0, 1, 1, 0}, {.75, .68, .68, 0}, {.6, .5, .5, .4}, {.3, .9, .6, .1}};

double at(std::vector<double>& values, double share) {
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, static_cast<size_t>(share * static_cast<double>(values.size())))];
}

double mean(const std::vector<double>& values) {
    double sum = 0;
    for (const double value : values) sum += value;
    return values.empty() ? 0 : sum / static_cast<double>(values.size());
}

void judge(const Pair& pair, const std::string& name, const std::string& path, double seconds) {
    const cmsHPROFILE link = cmsOpenProfileFromFile(path.c_str(), "r");
    if (!link) return;
    {
        const Transform through(link, TYPE_CMYK_DBL, nullptr, TYPE_CMYK_DBL, 0);
        if (!through) return;
        std::vector<double> off, bends, black;
        double ink = 0;
        size_t below = 0;
        for (size_t i = 0; i < pair.colours.size(); ++i) {
            const Inks out = through.inks(pair.colours[i]);
            off.push_back(difference(pair.wanted[i], pair.press.lab(out)));
            below += off.back() < 1;
            ink += out[0] + out[1] + out[2] + out[3];
        }
        int reversals = 0;
        double worst = 0;
        for (const Inks& ramp : kRamps) {
            std::vector<cmsCIELab> seen;
            double top = 1000, own = 1000;
            for (int step = 0; step < 256; ++step) {
                Inks in;
                for (size_t i = 0; i < 4; ++i) in[i] = ramp[i] * step / 2.55;
                seen.push_back(pair.press.lab(through.inks(in)));
                const double lightness = pair.source.lab(in).L;
                // What the source itself rises is the source's.
                const double rise = seen.back().L - top - std::max(0.0, lightness - own);
                if (rise > 0.02) ++reversals;
                worst = std::max(worst, rise);
                top = std::min(top, seen.back().L);
                own = std::min(own, lightness);
            }
            for (size_t i = 1; i < 255; ++i) {
                const double l = seen[i + 1].L - 2 * seen[i].L + seen[i - 1].L;
                const double a = seen[i + 1].a - 2 * seen[i].a + seen[i - 1].a;
                const double b = seen[i + 1].b - 2 * seen[i].b + seen[i - 1].b;
                bends.push_back(std::sqrt(l * l + a * a + b * b));
            }
        }
        for (int k = 0; k <= 255; ++k) {
            const Inks in = {0, 0, 0, k / 2.55};
            black.push_back(difference(pair.source.lab(in), pair.press.lab(through.inks(in))));
        }
        const auto count = static_cast<double>(std::max<size_t>(1, off.size()));
        std::printf("| %s | %.3f / %.3f | %.1f | %.0f | %.3f / %.3f | %d, %.2f | %.2f | %.2f |\n",
                    name.c_str(), mean(off), at(off, 0.95), 100 * static_cast<double>(below) / count,
                    ink / count, mean(bends), at(bends, 0.95), reversals, std::max(0.0, worst),
                    mean(black), seconds);
    }
    cmsCloseProfile(link);
}

void ours(const Pair& pair, const std::string& folder, const char* source, const char* destination,
          const char* name, int32_t bits, int32_t black, int32_t method) {
    KoPreciseError error{};
    const std::clock_t start = std::clock();
    KoPreciseProfile* const from = koPreciseOpenProfile(source, &error);
    KoPreciseProfile* const to = koPreciseOpenProfile(destination, &error);
    KoPreciseOptions options;
    koPreciseInitOptions(&options);
    options.bits = bits;
    options.black = black;
    options.method = method;
    KoPreciseLink* const link = koPreciseMakeLink(from, to, nullptr, &options, &error);
    const std::string path = folder + "/ours.icc";
    KoPreciseFileOptions file{};
    file.size = sizeof file;
    const int32_t saved = koPreciseSaveLink(link, path.c_str(), &file, &error);
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    if (saved) judge(pair, name, path, seconds);
    else std::printf("| %s | %s |\n", name, error.text);
    koPreciseReleaseLink(link);
    koPreciseReleaseProfile(from);
    koPreciseReleaseProfile(to);
}

double childSeconds() {
    std::FILE* const times = std::fopen("/proc/self/stat", "r");
    char text[1024] = {};
    if (times) {
        (void)!std::fread(text, 1, sizeof text - 1, times);
        std::fclose(times);
    }
    long user = 0, system = 0;
    const char* at = std::strrchr(text, ')');
    if (at) std::sscanf(at + 1, " %*c %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %ld %ld", &user, &system);
    return static_cast<double>(user + system) / 100;
}

void peer(const Pair& pair, const std::string& folder, const char* name, const std::string& command) {
    const std::string path = folder + "/peer.icc";
    std::remove(path.c_str());
    const double before = childSeconds();
    if (std::system((command + " > /dev/null 2>&1").c_str()) == 0)
        judge(pair, name, path, childSeconds() - before);
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 4 || count % 2 != 0) {
        std::fprintf(stderr, "usage: kolink_precise_bench FOLDER SOURCE DESTINATION...\n");
        return 2;
    }
    const std::string folder = arguments[1];
    for (int argument = 2; argument + 1 < count; argument += 2) {
        const char *source = arguments[argument], *destination = arguments[argument + 1];
        const Pair pair(source, destination);
        std::printf("\n%s to %s, %zu colours\n\n", source, destination, pair.colours.size());
        std::printf(
            "| 33 points | colour, mean / 95 %% | below 1, %% | ink, %% | ramps, mean / 95 %% | "
            "L* rises, worst | black | s |\n|---|---|--:|--:|---|---|--:|--:|\n");
        ours(pair, folder, source, destination, "precise, plane, 8 bits", 8, KO_PRECISE_BLACK_PLANE, 0);
        ours(pair, folder, source, destination, "precise, plane, 16 bits", 16, KO_PRECISE_BLACK_PLANE, 0);
        ours(pair, folder, source, destination, "precise, match, 8 bits", 8, KO_PRECISE_BLACK_MATCH, 0);
        ours(pair, folder, source, destination, "precise, none, 8 bits", 8, KO_PRECISE_BLACK_NONE, 0);
        ours(pair, folder, source, destination, "precise, none, 16 bits", 16, KO_PRECISE_BLACK_NONE, 0);
        ours(pair, folder, source, destination, "tables alone", 8, KO_PRECISE_BLACK_NONE, 1);
        const std::string from = "'" + std::string(source) + "' '" + destination + "'";
        const std::string to = "'" + folder + "/peer.icc'";
        peer(pair, folder, "linkicc -n 33", "linkicc -t1 -n33 -o " + to + " " + from);
        peer(pair, folder, "linkicc -t 11", "linkicc -t11 -n33 -o " + to + " " + from);
        peer(pair, folder, "linkicc -t 14", "linkicc -t14 -n33 -o " + to + " " + from);
        peer(pair, folder, "collink -r33", "collink -ir -r33 " + from + " " + to);
    }
}
