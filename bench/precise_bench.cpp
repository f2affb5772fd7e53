// kolink_precise_bench FOLDER SOURCE DESTINATION [SOURCE DESTINATION...]: links of pairs of press
// profiles by this engine and by its peers (linkicc, collink, where they are installed), judged by
// lcms2 in float without its optimisations. One table a pair:
//   colour   CIEDE2000 between the source's colours and what the destination's forward table makes
//            of the link's inks, over 20,000 seeded colours of at most 300 % that the destination
//            reaches with the black of its own tables
//   ramps    second differences of L*a*b* along ten ramps of 256 steps, and how often and how far
//            L* rises where the source's does not
//   black    CIEDE2000 along pure K
//   jump     levels of 255 by which an ink changes between a node of pure K and its neighbours
//            with a step of colour, beyond the step that the source has there
//   s, MiB   processor time of the making; peak of the process that made it, where it is ours
// FOLDER takes the links. Relative colorimetric, 33 points.
// kolink_precise_bench --link SOURCE DESTINATION OUT BITS BLACK METHOD: makes one link, and prints
// its seconds and peak.
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
constexpr int kRounds = 3;           // the best of which counts as a link's time
std::string self;

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

struct Cost {
    double seconds = 0, mebibytes = 0;
};

double jumpAtBlack(const Transform& through) {
    double jump = 0;
    for (int k = 1; k <= 32; ++k) {
        const Inks pure = through.inks(Inks{0, 0, 0, k * 100 / 32.0});
        for (size_t ink = 0; ink < 3; ++ink) {
            Inks tinted = {0, 0, 0, k * 100 / 32.0};
            tinted[ink] = 100 / 32.0;
            const Inks out = through.inks(tinted);
            for (size_t i = 0; i < 4; ++i)
                jump = std::max(jump, std::abs(out[i] - pure[i]) - (i == ink ? tinted[i] : 0));
        }
    }
    return jump * 2.55;
}

void judge(const Pair& pair, const std::string& name, const std::string& path, const Cost& cost) {
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
        char peak[16] = "";
        if (cost.mebibytes > 0) std::snprintf(peak, sizeof peak, "%.0f", cost.mebibytes);
        std::printf(
            "| %s | %.3f / %.3f | %.1f | %.0f | %.3f / %.3f | %d, %.2f | %.2f | %.1f | "
            "%.2f | %s |\n",
            name.c_str(), mean(off), at(off, 0.95),
            100 * static_cast<double>(below) / count, ink / count, mean(bends),
            at(bends, 0.95), reversals, std::max(0.0, worst), mean(black),
            jumpAtBlack(through), cost.seconds, peak);
        std::fflush(stdout);
    }
    cmsCloseProfile(link);
}

// The peak of this process since it began, in MiB.
double peakOfThis() {
    std::FILE* const status = std::fopen("/proc/self/status", "r");
    char line[256];
    double kibibytes = 0;
    while (status && std::fgets(line, sizeof line, status))
        (void)std::sscanf(line, "VmHWM: %lf", &kibibytes);
    if (status) std::fclose(status);
    return kibibytes / 1024;
}

int makeOne(char** arguments) {
    KoPreciseError error{};
    const std::clock_t start = std::clock();
    KoPreciseProfile* const from = koPreciseOpenProfile(arguments[0], &error);
    KoPreciseProfile* const to = koPreciseOpenProfile(arguments[1], &error);
    KoPreciseOptions options;
    koPreciseInitOptions(&options);
    options.bits = std::atoi(arguments[3]);
    options.black = std::atoi(arguments[4]);
    options.method = std::atoi(arguments[5]);
    KoPreciseLink* const link = koPreciseMakeLink(from, to, nullptr, &options, &error);
    KoPreciseFileOptions file{};
    file.size = sizeof file;
    const int32_t saved = koPreciseSaveLink(link, arguments[2], &file, &error);
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    koPreciseReleaseLink(link);
    koPreciseReleaseProfile(from);
    koPreciseReleaseProfile(to);
    if (!saved) std::fprintf(stderr, "%s\n", error.text);
    else std::printf("%f %f\n", seconds, peakOfThis());
    return saved ? 0 : 1;
}

// Each link in a process of its own, whose memory is the link's alone; the best time of three.
void ours(const Pair& pair, const std::string& folder, const std::string& files, const char* name,
          int bits, int black, int method) {
    const std::string path = folder + "/ours.icc";
    const std::string command = "'" + self + "' --link " + files + " '" + path + "' " +
                                std::to_string(bits) + " " + std::to_string(black) + " " +
                                std::to_string(method);
    Cost best;
    for (int round = 0; round < kRounds; ++round) {
        std::FILE* const child = popen(command.c_str(), "r");
        Cost cost;
        const bool told = child && std::fscanf(child, "%lf %lf", &cost.seconds, &cost.mebibytes) == 2;
        if (!child || pclose(child) != 0 || !told) return;
        if (round == 0 || cost.seconds < best.seconds) best = cost;
    }
    judge(pair, name, path, best);
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

void peer(const Pair& pair, const std::string& folder, const char* name,
          const std::string& command, int rounds = kRounds) {
    const std::string path = folder + "/peer.icc";
    std::remove(path.c_str());
    Cost best;
    for (int round = 0; round < rounds; ++round) {
        const double before = childSeconds();
        if (std::system((command + " > /dev/null 2>&1").c_str()) != 0) return;
        const double seconds = childSeconds() - before;
        if (round == 0 || seconds < best.seconds) best.seconds = seconds;
    }
    judge(pair, name, path, best);
}

}  // namespace

int main(int count, char** arguments) {
    self = arguments[0];
    if (count == 8 && std::string(arguments[1]) == "--link") return makeOne(arguments + 2);
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
            "L* rises, worst | black | jump | s | MiB |\n"
            "|---|---|--:|--:|---|---|--:|--:|--:|--:|\n");
        const std::string from = "'" + std::string(source) + "' '" + destination + "'";
        ours(pair, folder, from, "precise, plane, 8 bits", 8, KO_PRECISE_BLACK_PLANE, 0);
        ours(pair, folder, from, "precise, plane, 16 bits", 16, KO_PRECISE_BLACK_PLANE, 0);
        ours(pair, folder, from, "precise, match, 8 bits", 8, KO_PRECISE_BLACK_MATCH, 0);
        ours(pair, folder, from, "precise, none, 8 bits", 8, KO_PRECISE_BLACK_NONE, 0);
        ours(pair, folder, from, "precise, none, 16 bits", 16, KO_PRECISE_BLACK_NONE, 0);
        ours(pair, folder, from, "tables alone", 8, KO_PRECISE_BLACK_NONE, 1);
        const std::string to = "'" + folder + "/peer.icc'";
        peer(pair, folder, "linkicc -n 33", "linkicc -t1 -n33 -o " + to + " " + from);
        peer(pair, folder, "linkicc -t 11", "linkicc -t11 -n33 -o " + to + " " + from);
        peer(pair, folder, "linkicc -t 14", "linkicc -t14 -n33 -o " + to + " " + from, 1);
        peer(pair, folder, "collink -r33", "collink -ir -r33 " + from + " " + to);
    }
}
