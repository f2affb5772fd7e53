// Holds a saved link against two readers: the library's own and lcms2.
//   link_check random LINK SEED       1,000 colours: lcms2 against the library's evaluation, and
//                                     against lcms2's own scheme on the nodes that the library reads
//   link_check zeros LINK C|CM|...    all 256 levels of these inks together: the greatest level
//                                     of every other ink, in 1/257 of a level
//   link_check white LINK             the greatest level of white
//   link_check black LINK             how far K leaves its own level, with lcms2 and with our own
//   link_check sequence LINK NAME...  whether lcms2 finds these profiles in its pseq
//   link_check levels INKS            256 lines of four levels, for other programs
//   link_check eightbit IN OUT        a profile's tables A2Bn and B2An, resampled to 8 bits
//   link_check labmatrix IN OUT       a matrix profile that says that it connects to Lab
//   link_check json FILE              whether it is JSON in UTF-8 without control characters
//   link_check xml FILE               whether it is well-formed as far as our pictures use XML
//   link_check damage IN OUT SEED     a copy with some bytes changed and perhaps its end cut off
#include <lcms2.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "kolink.h"

namespace {

using Levels = std::array<int, 4>;  // 0..255

constexpr uint32_t signature(const char (&text)[5]) {
    return static_cast<uint32_t>(text[0]) << 24 | static_cast<uint32_t>(text[1]) << 16 |
           static_cast<uint32_t>(text[2]) << 8 | static_cast<uint32_t>(text[3]);
}

[[noreturn]] void die(const std::string& what) {
    std::fprintf(stderr, "link_check: %s\n", what.c_str());
    std::exit(2);
}

// One link in lcms2, with the ways that programs run it.
class ForeignLink {
public:
    explicit ForeignLink(const char* path) : profile_(cmsOpenProfileFromFile(path, "r")) {
        if (!profile_) die("lcms2 does not open the link");
        bytes_ = transform(TYPE_CMYK_8, 0);
        exactBytes_ = transform(TYPE_CMYK_8, cmsFLAGS_NOOPTIMIZE);
        words_ = transform(TYPE_CMYK_16, 0);
        exactWords_ = transform(TYPE_CMYK_16, cmsFLAGS_NOOPTIMIZE);
    }
    ~ForeignLink() {
        for (const auto handle : {bytes_, exactBytes_, words_, exactWords_}) cmsDeleteTransform(handle);
        cmsCloseProfile(profile_);
    }
    ForeignLink(const ForeignLink&) = delete;

    // Outputs in 1/257 of a level, by each way.
    std::array<Levels, 4> outputs(const Levels& in) const {
        std::array<Levels, 4> all{};
        for (int way = 0; way < 4; ++way) {
            if (way < 2) {
                uint8_t from[4], to[4];
                for (int i = 0; i < 4; ++i) from[i] = static_cast<uint8_t>(in[i]);
                cmsDoTransform(way == 0 ? bytes_ : exactBytes_, from, to, 1);
                for (int i = 0; i < 4; ++i) all[way][i] = to[i] * 257;
            } else {
                uint16_t from[4], to[4];
                for (int i = 0; i < 4; ++i) from[i] = static_cast<uint16_t>(in[i] * 257);
                cmsDoTransform(way == 2 ? words_ : exactWords_, from, to, 1);
                for (int i = 0; i < 4; ++i) all[way][i] = to[i];
            }
        }
        return all;
    }
    // The table as it is, not resampled to a coarser grid for speed.
    std::array<double, 4> exact(const Levels& in) const {
        const Levels out = outputs(in)[3];
        return {out[0] / 257.0, out[1] / 257.0, out[2] / 257.0, out[3] / 257.0};
    }

private:
    cmsHTRANSFORM transform(cmsUInt32Number format, cmsUInt32Number flags) const {
        const auto handle = cmsCreateTransform(profile_, format, nullptr, format, INTENT_PERCEPTUAL,
                                               flags | cmsFLAGS_NOCACHE);
        if (!handle) die("lcms2 makes no transform of the link");
        return handle;
    }
    cmsHPROFILE profile_;
    cmsHTRANSFORM bytes_, exactBytes_, words_, exactWords_;
};

// The same link by the library: its A2B0 table, and the record that hosts convert with.
class OwnLink {
public:
    explicit OwnLink(const char* path) : profile_(jIccLoadHeader(path)), record_(jKoCmykCreateProfile()) {
        if (!profile_ || !record_ || jKoCmykLoadProfile(record_, path) != 1) die("the library does not load the link");
        lut_ = static_cast<IccLut*>(jIccLoadTag(profile_, signature("A2B0")));
        if (!lut_ || jIccLutSetup(lut_) != 1) die("the library does not set up A2B0");
    }
    ~OwnLink() {
        jIccLutClose(lut_);
        jIccRelease(profile_);
        jKoCmykReleaseProfile(record_);
    }
    OwnLink(const OwnLink&) = delete;

    // The finest scale: 16 bits in, 16 bits out.
    std::array<double, 4> fine(const Levels& in) const {
        int32_t values[4];
        for (int i = 0; i < 4; ++i) values[i] = in[i] * 257;
        jIccLutColor16(lut_, values);
        return {values[0] / 256.0, values[1] / 256.0, values[2] / 256.0, values[3] / 256.0};
    }
    // By a scheme that is not the library's but lcms2's: linear along C, and tetrahedra in M, Y, K.
    std::array<double, 4> byTetrahedra(const Levels& in) const {
        int cell[4];
        double part[4];
        for (int i = 0; i < 4; ++i) {
            const double place = in[i] * 32 / 255.0;
            cell[i] = std::min(static_cast<int>(place), 31);
            part[i] = place - cell[i];
        }
        int order[3] = {1, 2, 3};  // from the greatest part to the smallest
        std::stable_sort(order, order + 3, [&](int a, int b) { return part[a] > part[b]; });
        std::array<double, 4> out{};
        for (int upper = 0; upper < 2; ++upper) {
            int at[4] = {cell[0] + upper, cell[1], cell[2], cell[3]};
            double rest = 1;
            for (int corner = 0; corner < 4; ++corner) {
                const double next = corner < 3 ? part[order[corner]] : 0;
                const double weight = (upper ? part[0] : 1 - part[0]) * (rest - next);
                const int node = ((at[0] * 33 + at[1]) * 33 + at[2]) * 33 + at[3];
                for (int ink = 0; ink < 4 && weight != 0; ++ink)
                    out[ink] += weight * static_cast<const uint8_t*>(lut_->clut)[node * 4 + ink];
                if (corner < 3) ++at[order[corner]];
                rest = next;
            }
        }
        return out;
    }
    Levels table(const Levels& in) const {
        int32_t values[4] = {in[0], in[1], in[2], in[3]};
        jIccLutColor(lut_, values);
        return {values[0], values[1], values[2], values[3]};
    }
    Levels record(const Levels& in) const {
        int32_t values[4] = {in[0], in[1], in[2], in[3]};
        jKoCmykCMYKtoCMYK16(record_, values);
        Levels out;
        for (int i = 0; i < 4; ++i) out[i] = (values[i] + 8) / 16;
        return out;
    }

private:
    IccProfile* profile_;
    CmykProfile* record_;
    IccLut* lut_;
};

Levels ramp(std::string_view inks, int level) {
    Levels colour{};
    for (const char ink : inks) {
        const auto at = std::string_view("CMYK").find(ink);
        if (at == std::string_view::npos) die("inks are letters of CMYK");
        colour[at] = level;
    }
    return colour;
}

// The two readers interpolate differently between the nodes (sixteen corners here, tetrahedra
// there), which near the kinks of a real conversion is worth some levels for a few colours in a
// thousand. So: nearly all within 2 levels, and every difference explained by the scheme alone.
int random(const char* path, unsigned seed) {
    const ForeignLink foreign(path);
    const OwnLink own(path);
    std::mt19937 numbers(seed);
    double most = 0, unexplained = 0;
    int within = 0;
    for (int i = 0; i < 1000; ++i) {
        Levels in;
        for (int& level : in) level = static_cast<int>(numbers() % 256);
        const auto theirs = foreign.exact(in), ours = own.fine(in), scheme = own.byTetrahedra(in);
        double difference = 0;
        for (int ink = 0; ink < 4; ++ink) {
            difference = std::max(difference, std::abs(theirs[ink] - ours[ink]));
            unexplained = std::max(unexplained, std::abs(theirs[ink] - scheme[ink]));
        }
        within += difference <= 2;
        most = std::max(most, difference);
    }
    std::printf("%d of 1000 colours within 2 levels, the greatest difference %.2f; with the other's "
                "interpolation %.3f\n", within, most, unexplained);
    return within >= 990 && unexplained <= 0.1 ? 0 : 1;
}

int zeros(const char* path, std::string_view inks) {
    const ForeignLink foreign(path);
    const OwnLink own(path);
    int most = 0;
    for (int level = 0; level < 256; ++level) {
        const Levels in = ramp(inks, level);
        auto all = foreign.outputs(in);
        for (int ink = 0; ink < 4; ++ink) {
            if (inks.find("CMYK"[ink]) != std::string_view::npos) continue;
            for (const Levels& out : all) most = std::max(most, out[ink]);
            most = std::max({most, own.table(in)[ink] * 257, own.record(in)[ink] * 257});
        }
    }
    std::printf("greatest level of another ink: %d of 65535\n", most);
    return most == 0 ? 0 : 1;
}

int black(const char* path) {
    const ForeignLink foreign(path);
    const OwnLink own(path);
    int foreignMost = 0, ownMost = 0;
    for (int level = 0; level < 256; ++level) {
        const Levels in{0, 0, 0, level};
        for (const Levels& out : foreign.outputs(in)) foreignMost = std::max(foreignMost, std::abs(out[3] - level * 257));
        ownMost = std::max(ownMost, std::abs(own.record(in)[3] - level));
    }
    std::printf("K leaves its level by %.2f levels in lcms2, by %d in the library\n", foreignMost / 257.0, ownMost);
    return ownMost == 0 && foreignMost <= 257 ? 0 : 1;
}

int white(const char* path) { return zeros(path, ""); }

int sequence(const char* path, int count, char** names) {
    const cmsHPROFILE profile = cmsOpenProfileFromFile(path, "r");
    if (!profile) die("lcms2 does not open the link");
    const auto* const read = static_cast<const cmsSEQ*>(cmsReadTag(profile, cmsSigProfileSequenceDescTag));
    bool same = read && read->n == static_cast<cmsUInt32Number>(count);
    for (int at = 0; same && at < count; ++at) {
        char text[200] = "";
        cmsMLUgetASCII(read->seq[at].Model, "en", "US", text, sizeof text);
        std::printf("%s\n", text);
        same = std::string_view(text) == names[at];
    }
    cmsCloseProfile(profile);
    return same ? 0 : 1;
}

int levels(std::string_view inks) {
    for (int level = 0; level < 256; ++level) {
        const Levels in = ramp(inks, level);
        std::printf("%d %d %d %d\n", in[0], in[1], in[2], in[3]);
    }
    return 0;
}

// A table with straight curves, whose nodes are the original's values on the 8-bit scale.
IccLut* inEightBits(IccLut* original, bool toConnectionSpace) {
    const int32_t inputs = original->inputChannels, outputs = original->outputChannels;
    const int32_t grid = toConnectionSpace ? 9 : 33;
    uint32_t nodes = 1;
    for (int32_t i = 0; i < inputs; ++i) nodes *= static_cast<uint32_t>(grid);
    const auto tableBytes = static_cast<uint32_t>(256 * (inputs + outputs));
    const auto size = static_cast<uint32_t>(sizeof(IccLut)) + tableBytes + nodes * static_cast<uint32_t>(outputs);
    auto* lut = static_cast<IccLut*>(jMemAlloc(size));
    std::memset(lut, 0, size);
    lut->inputChannels = inputs;
    lut->outputChannels = outputs;
    lut->gridPoints = grid;
    lut->matrix[0] = lut->matrix[4] = lut->matrix[8] = 1;
    lut->precision = 1;
    lut->inputEntries = lut->outputEntries = 256;
    auto* bytes = reinterpret_cast<uint8_t*>(lut + 1);
    lut->inputTables = bytes;
    lut->clut = bytes + 256 * inputs;
    lut->outputTables = bytes + 256 * inputs + nodes * static_cast<uint32_t>(outputs);
    for (int32_t i = 0; i < 256 * inputs; ++i) static_cast<uint8_t*>(lut->inputTables)[i] = static_cast<uint8_t>(i);
    for (int32_t i = 0; i < 256 * outputs; ++i) static_cast<uint8_t*>(lut->outputTables)[i] = static_cast<uint8_t>(i);

    jIccLutSetup(original);
    for (uint32_t node = 0; node < nodes; ++node) {
        int32_t values[4];
        uint32_t rest = node;
        for (int32_t axis = inputs - 1; axis >= 0; --axis, rest /= static_cast<uint32_t>(grid)) {
            const auto index = static_cast<int32_t>(rest % static_cast<uint32_t>(grid));
            // Lab in 16 bits has 65280 for the level 255 in 8 bits, inks have 65535.
            values[axis] = index * (toConnectionSpace ? 65535 : 65280) / (grid - 1);
        }
        jIccLutColor16(original, values);
        for (int32_t i = 0; i < outputs; ++i) {
            const int32_t scale = toConnectionSpace ? 256 : 257;
            static_cast<uint8_t*>(lut->clut)[node * static_cast<uint32_t>(outputs) + static_cast<uint32_t>(i)] =
                static_cast<uint8_t>(std::min(255, (values[i] + 128) / scale));
        }
    }
    jIccLutClose(original);
    return lut;
}

int eightbit(const char* from, const char* to) {
    IccProfile* profile = jIccLoadHeader(from);
    if (!profile) die("no profile");
    for (const char* tag : {"A2B0", "A2B1", "A2B2", "B2A0", "B2A1", "B2A2"}) {
        const uint32_t name = static_cast<uint32_t>(tag[0]) << 24 | static_cast<uint32_t>(tag[1]) << 16 |
                              static_cast<uint32_t>(tag[2]) << 8 | static_cast<uint32_t>(tag[3]);
        auto* original = static_cast<IccLut*>(jIccLoadTag(profile, name));
        if (original) jIccBindTag(profile, name, inEightBits(original, tag[0] == 'A'));
    }
    for (const auto name : {signature("desc"), signature("cprt"), signature("wtpt")}) (void)jIccLoadTag(profile, name);
    const bool done = jIccSaveProfile(profile, to) == 1;
    jIccRelease(profile);
    return done ? 0 : 1;
}

std::string wholeFile(const char* path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) die("cannot read a file");
    return std::string(std::istreambuf_iterator<char>(in), {});
}

int labmatrix(const char* from, const char* to) {
    std::string bytes = wholeFile(from);
    if (bytes.size() < 128 || bytes.substr(20, 4) != "XYZ ") return 1;
    bytes.replace(20, 4, "Lab ");
    std::ofstream(to, std::ios::binary) << bytes;
    return 0;
}

int json(const char* path) {
    const std::string text = wholeFile(path);
    const auto steers = [](char c) { return (static_cast<unsigned char>(c) < 0x20 && c != '\n') || c == 0x7f; };
    return nlohmann::json::accept(text) && std::none_of(text.begin(), text.end(), steers) ? 0 : 1;
}

// Elements closed in order, attributes quoted, no bare < or & in text.
int xml(const char* path) {
    const std::string text = wholeFile(path);
    std::vector<std::string> open;
    size_t elements = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte < 0x20 && byte != '\n') die("a control character");
        if (byte == '&' && text.find(';', at) > at + 6) die("a bare &");
        if (byte == '>') die("a bare >");
        if (byte != '<') continue;
        size_t end = at + 1;
        for (bool quoted = false; end < text.size() && (quoted || text[end] != '>'); ++end) {
            if (text[end] == '"') quoted = !quoted;
            if (text[end] == '<') die("< inside an element");
        }
        if (end >= text.size()) die("an element without end");
        const std::string inside = text.substr(at + 1, end - at - 1);
        const std::string name = inside.substr(inside[0] == '/', inside.find_first_of(" \n/", 1) - (inside[0] == '/'));
        if (inside[0] == '/') {
            if (open.empty() || open.back() != name) die("elements cross: " + name);
            open.pop_back();
        } else if (inside[0] != '?' && inside.back() != '/') {
            open.push_back(name);
        }
        ++elements;
        at = end;
    }
    if (!open.empty()) die("not closed: " + open.back());
    return elements > 10 && text.ends_with("</svg>\n") ? 0 : 1;
}

int damage(const char* from, const char* to, unsigned seed) {
    std::string bytes = wholeFile(from);
    std::mt19937 numbers(seed);
    // Half of the changes fall on the beginning, where headers and counts are.
    for (unsigned i = 0; i < 1 + seed % 12 && !bytes.empty(); ++i) {
        const size_t range = numbers() % 2 ? bytes.size() : std::min<size_t>(bytes.size(), 400);
        const size_t at = numbers() % range;
        static constexpr unsigned char kExtremes[] = {0x00, 0x01, 0x7f, 0x80, 0xff, 0x1b, '\n'};
        bytes[at] = static_cast<char>(numbers() % 2 ? kExtremes[numbers() % std::size(kExtremes)] : numbers());
    }
    if (seed % 3 == 0) bytes.resize(numbers() % (bytes.size() + 1));
    std::ofstream(to, std::ios::binary) << bytes;
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (what == "random" && argc == 4) return random(argv[2], static_cast<unsigned>(std::atoi(argv[3])));
    if (what == "zeros" && argc == 4) return zeros(argv[2], argv[3]);
    if (what == "white" && argc == 3) return white(argv[2]);
    if (what == "black" && argc == 3) return black(argv[2]);
    if (what == "sequence" && argc > 3) return sequence(argv[2], argc - 3, argv + 3);
    if (what == "levels" && argc == 3) return levels(argv[2]);
    if (what == "eightbit" && argc == 4) return eightbit(argv[2], argv[3]);
    if (what == "labmatrix" && argc == 4) return labmatrix(argv[2], argv[3]);
    if (what == "json" && argc == 3) return json(argv[2]);
    if (what == "xml" && argc == 3) return xml(argv[2]);
    if (what == "damage" && argc == 5) return damage(argv[2], argv[3], static_cast<unsigned>(std::atoi(argv[4])));
    die("usage: see the head of link_check.cpp");
}
