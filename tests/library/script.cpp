// One deterministic script of calls, the same on every platform, whose results are files in the
// current folder. They are compared byte for byte between the platforms, and between what hosts
// may have set for their threads.
//   library_script SETTINGS LOCALE   with printer.icc and source.icc in the current folder
//     SETTINGS  usual, down, up or zero: how floating-point numbers are rounded; flush: denormal
//               ones are 0; traps: every floating-point exception is one; stack: the thread has
//               a stack of 64 KiB (Linux)
#include <algorithm>
#include <array>
#include <charconv>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <xmmintrin.h>
#if defined(__linux__)
#  include <pthread.h>
#endif

#include "kolink.h"
#include "kolink/precise.h"

namespace {

void require(bool condition, const std::string& what) {
    if (condition) return;
    std::fprintf(stderr, "library_script: %s\n", what.c_str());
    std::exit(1);
}

struct Settings {
    const char* name;
    uint32_t sse;
    uint16_t x87;
};
constexpr Settings kSettings[] = {{"usual", 0x1f80, 0x037f}, {"down", 0x3f80, 0x077f},
                                  {"up", 0x5f80, 0x0b7f},    {"zero", 0x7f80, 0x0f7f},
                                  {"flush", 0x9fc0, 0x007f}, {"traps", 0x0000, 0x0340}};
Settings settingsOfHost = kSettings[0];
constexpr std::string_view kSmallStack = "stack";

// Its own flags aside, which computing sets.
#if defined(__i386__)
void setX87(uint16_t control) { asm volatile("fnclex\n\tfldcw %0" : : "m"(control)); }
uint16_t x87() {
    uint16_t control;
    asm volatile("fnstcw %0" : "=m"(control));
    return control & 0x0f3f;
}
#else
uint16_t x87Control = 0;
void setX87(uint16_t control) { x87Control = control; }
uint16_t x87() { return x87Control & 0x0f3f; }
#endif

// Around one call of the library, so that the script itself computes as usual.
class HostSettings {
public:
    HostSettings() {
        _mm_setcsr(settingsOfHost.sse);
        setX87(settingsOfHost.x87);
    }
    ~HostSettings() {
        const bool kept =
            (_mm_getcsr() & ~0x3fu) == settingsOfHost.sse && x87() == (settingsOfHost.x87 & 0x0f3f);
        _mm_setcsr(kSettings[0].sse);
        setX87(kSettings[0].x87);
        require(kept, "a call has changed what its host had set");
    }
};

template <class Result, class... Parameters>
Result hosted(Result (*function)(Parameters...), std::type_identity_t<Parameters>... arguments) {
    const HostSettings around;
    return function(arguments...);
}
#include "hosted.inc"  // which makes a call of each function one through hosted

// The distributions of the standard library differ between its makers; the generator does not.
class Random {
public:
    explicit Random(uint32_t seed) : engine_(seed) {}
    int32_t between(int32_t low, int32_t high) {
        const uint32_t span = static_cast<uint32_t>(high) - static_cast<uint32_t>(low) + 1;
        return static_cast<int32_t>(static_cast<uint32_t>(low) + engine_() % span);
    }
    double fraction() { return static_cast<double>(engine_()) / 4294967296.0; }

private:
    std::mt19937 engine_;
};

// Lines of numbers that no locale and no rounding touches: integers, and doubles by their bits.
class Results {
public:
    explicit Results(const char* path) : out_(path, std::ios::binary) {}
    ~Results() {
        out_.flush();
        require(out_.good(), "results cannot be written");
    }
    Results& text(std::string_view value) {
        out_ << value;
        return *this;
    }
    Results& number(int64_t value) {
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        out_.write(digits, end - digits).put(' ');
        return *this;
    }
    Results& bits(double value) {
        uint64_t word;
        std::memcpy(&word, &value, sizeof word);
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, word, 16).ptr;
        out_.write(digits, end - digits).put(' ');
        return *this;
    }
    void endLine() { out_.put('\n'); }
    void raw(const int32_t* values, size_t count) {
        out_.write(reinterpret_cast<const char*>(values),
                   static_cast<std::streamsize>(count * sizeof *values));
    }

private:
    std::ofstream out_;
};

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void writeFile(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::binary) << content;
}

struct Shape {
    int32_t inputs, outputs, gridPoints, inputEntries, outputEntries;
    uint8_t precision;
};

size_t power(int32_t base, int32_t exponent) {
    size_t result = 1;
    while (exponent-- > 0) result *= static_cast<size_t>(base);
    return result;
}

// A table as the library itself lays it out: record, curves, grid, curves in one block. Curves
// rise with some noise, grid values are anything.
IccLut* makeLut(const Shape& shape, uint32_t seed) {
    const size_t inputSize = static_cast<size_t>(shape.inputs * shape.inputEntries);
    const size_t gridSize =
        power(shape.gridPoints, shape.inputs) * static_cast<size_t>(shape.outputs);
    const size_t outputSize = static_cast<size_t>(shape.outputs * shape.outputEntries);
    const size_t entries = inputSize + gridSize + outputSize;
    auto* lut = static_cast<IccLut*>(
        jMemAlloc(static_cast<uint32_t>(sizeof(IccLut) + entries * shape.precision)));
    require(lut, "no memory for a LUT");

    Random random(seed);
    IccLut record{};
    record.inputChannels = shape.inputs;
    record.outputChannels = shape.outputs;
    record.gridPoints = shape.gridPoints;
    for (int32_t at = 0; at < 9; ++at) record.matrix[at] = at % 4 == 0 ? 1.0f : 0.0f;
    record.precision = shape.precision;
    record.inputEntries = shape.inputEntries;
    record.outputEntries = shape.outputEntries;
    auto* tables = reinterpret_cast<uint8_t*>(lut) + sizeof(IccLut);
    record.inputTables = tables;
    record.clut = tables + inputSize * shape.precision;
    record.outputTables = tables + (inputSize + gridSize) * shape.precision;
    std::memcpy(lut, &record, sizeof record);

    const int32_t top = shape.precision == 1 ? 255 : 65535;
    size_t at = 0;
    const auto put = [&](int32_t value) {
        value = value < 0 ? 0 : value > top ? top : value;
        tables[at * shape.precision] = static_cast<uint8_t>(value);
        if (shape.precision == 2) tables[at * 2 + 1] = static_cast<uint8_t>(value >> 8);
        ++at;
    };
    const auto putCurves = [&](int32_t channels, int32_t count) {
        for (int32_t channel = 0; channel < channels; ++channel)
            for (int32_t entry = 0; entry < count; ++entry)
                put(static_cast<int32_t>(int64_t{entry} * top / (count - 1)) +
                    random.between(-top / 40, top / 40));
    };
    putCurves(shape.inputs, shape.inputEntries);
    for (size_t node = 0; node < gridSize; ++node) put(random.between(0, top));
    putCurves(shape.outputs, shape.outputEntries);
    return lut;
}

void evaluateLuts() {
    constexpr Shape kShapes[] = {
        {4, 4, 9, 256, 256, 1},  {4, 4, 9, 256, 4096, 2}, {3, 3, 17, 256, 256, 1},
        {3, 3, 17, 1000, 2, 2},  {4, 3, 9, 256, 256, 1},  {3, 4, 33, 256, 256, 1},
        {3, 4, 17, 4096, 256, 2}, {1, 1, 2, 256, 256, 1}, {2, 3, 5, 3, 300, 2},
        {4, 1, 2, 256, 256, 1},
    };
    Results out("lut.bin");
    uint32_t seed = 1;
    for (const Shape& shape : kShapes) {
        IccLut* lut = makeLut(shape, seed);
        if (shape.inputs == 3 && shape.outputs == 4)  // one matrix that mixes
            for (float& element : lut->matrix) element = 0.25f + 0.0625f * static_cast<float>(seed);
        require(jIccLutSetup(lut) == 1, "a LUT was refused");
        const int32_t top = shape.precision == 1 ? 255 : 65535;
        Random random(1000 + seed++);
        const int32_t colours = &shape - kShapes < 4 ? 100000 : 20000;
        for (int32_t colour = 0; colour < colours; ++colour) {
            int32_t own[4], wide[4];
            for (int32_t& value : own) value = random.between(-2, top + 2);
            for (int32_t& value : wide) value = random.between(-2, 65537);
            const int32_t ownChannels = jIccLutColor(lut, own);
            const int32_t wideChannels = jIccLutColor16(lut, wide);
            require(ownChannels == shape.outputs && wideChannels == shape.outputs,
                    "a LUT gave another number of channels");
            out.raw(own, 4);
            out.raw(wide, 4);
        }
        jIccLutClose(lut);
        jMemFree(lut);
    }
}

void convertColours() {
    Results out("colour.txt");
    Random random(2);
    const auto put = [&](const double* colour) {
        for (int channel = 0; channel < 3; ++channel) out.bits(colour[channel]);
    };
    for (int32_t colour = 0; colour < 20000; ++colour) {
        const double white[3] = {96.42 + random.fraction(), 100.0, 82.49 - random.fraction()};
        double xyz[3], lab[3] = {random.fraction() * 100, random.fraction() * 256 - 128,
                                 random.fraction() * 256 - 128};
        for (double& value : xyz) value = random.fraction() * (colour % 5 == 0 ? 1.5 : 110.0);
        jIccXYZtoLab(xyz, white);
        put(xyz);
        jIccLabtoXYZ(lab, white);
        put(lab);
        for (int32_t bits : {8, 16}) {
            double value[3] = {random.fraction() * 110 - 5, random.fraction() * 280 - 140,
                               random.fraction() * 280 - 140};
            jIccLabEncode(value, bits);
            put(value);
            jIccLabDecode(value, bits);
            put(value);
            for (double& channel : value) channel = random.fraction() * 2.2 - 0.1;
            jIccXYZEncode(value, bits);
            put(value);
            jIccXYZDecode(value, bits);
            put(value);
        }
        out.endLine();
    }
    for (uint32_t count : {0u, 1u, 2u, 17u, 256u, 4096u}) {
        auto* curve = static_cast<IccCurve*>(
            jMemAlloc(static_cast<uint32_t>(sizeof(IccCurve) + count * sizeof(uint16_t))));
        require(curve, "no memory for a curve");
        curve->count = count;
        for (uint32_t at = 0; at < count; ++at)
            curve->entries[at] = static_cast<uint16_t>(random.between(0, 65535));
        for (int32_t level = -1; level <= 256; ++level) {
            int32_t value = level;
            jIccTrcColor(curve, &value);
            out.number(value);
        }
        out.endLine();
        jMemFree(curve);
    }
}

void drawCurves() {
    Results out("tone.txt");
    Random random(3);
    for (int32_t set = 0; set < 300; ++set) {
        std::vector<TonePoint> points;
        for (int32_t x = random.between(0, 20); x < 256; x += random.between(1, 1 + set / 4))
            points.push_back({x, random.between(-50, 300)});
        const auto count = static_cast<int32_t>(points.size());
        for (int32_t x = -1; x <= 256; ++x)
            out.number(jKoToneGetSplineTone(points.data(), count, x))
                .number(jKoToneGetLinerTone(points.data(), count, x));
        out.endLine();
    }
}

void putTable(Results& out, const ToneCurve& curve) {
    for (int32_t at = 0; at < curve.channelCount * 512; ++at) out.number(curve.table[at]);
    out.endLine();
}

ToneCurve* makeToneCurve(int32_t channels, uint32_t seed) {
    ToneCurve* curve = jKoToneCreateToneCurve(channels);
    require(curve, "no tone curve");
    std::strcpy(curve->title, "script 1.5, 1,5");
    Random random(seed);
    for (int32_t channel = 0; channel < channels; ++channel)
        for (int32_t x = 16; x < 256; x += 16 * random.between(1, 4)) {
            curve->table[channel * 512 + x] = 1;
            curve->table[channel * 512 + 256 + x] = static_cast<int16_t>(random.between(0, 255));
        }
    require(jKoToneEncodeToneCurve(curve, static_cast<int32_t>(seed % 2), 255) == 1, "no encoding");
    return curve;
}

// Numbers as people write them: fractions with a point and with a comma, blanks, signs.
std::string damaged(std::string text, uint32_t seed) {
    Random random(seed);
    constexpr std::string_view kInsertions[] = {".5", ",5", " ", "-", "+", "e1", ";", "\r\n", "9"};
    for (int32_t change = 0; change < 12; ++change)
        text.insert(static_cast<size_t>(random.between(0, static_cast<int32_t>(text.size()))),
                    kInsertions[random.between(0, 8)]);
    return text;
}

void saveAndLoadTones() {
    Results out("tone_files.txt");
    for (uint32_t seed = 10; seed < 30; ++seed) {
        const std::string number = std::to_string(seed);
        ToneCurve* one = makeToneCurve(1, seed);
        ToneCurve* four = makeToneCurve(4, seed);
        ToneCurve* six = makeToneCurve(6, seed);
        DccSettings dcc{600, static_cast<int32_t>(600 * (seed % 3)), 240, 33, six};
        const std::string bkc = number + ".bkc", tnc = number + ".tnc", settings = number + ".dcc";
        require(jKoToneSaveBkcCurve(one, bkc.c_str()) == 1 &&
                jKoToneSaveCmykToneCurve(four, tnc.c_str()) == 1 &&
                jKoToneSaveDcc(&dcc, settings.c_str()) == 1, "a curve was not saved");

        for (const uint32_t damage : {0u, 1u, 2u}) {
            const auto given = [&](const std::string& path) {
                const std::string copy = "d" + std::to_string(damage) + path;
                writeFile(copy,
                          damage == 0 ? readFile(path) : damaged(readFile(path), damage * seed));
                return copy;
            };
            jKoToneLoadBkcCurve(one, given(bkc).c_str());
            jKoToneLoadCmykToneCurve(four, given(tnc).c_str());
            const std::string copy = given(settings);
            jKoToneLoadDcc(&dcc, copy.c_str());
            for (const int32_t value : {dcc.DPIX, dcc.DPIY, dcc.WINK, dcc.LCLM}) out.number(value);
            for (const ToneCurve* curve : {one, four, six}) {
                out.text(curve->title).endLine();
                putTable(out, *curve);
            }
            jKoToneLoadDccCurve(six, copy.c_str());
            Random random(seed);
            for (int32_t colour = 0; colour < 500; ++colour) {
                int32_t cmyk[4];
                jKoToneRGBtoCMYK16(six, static_cast<uint8_t>(random.between(0, 255)),
                                   static_cast<uint8_t>(random.between(0, 255)),
                                   static_cast<uint8_t>(random.between(0, 255)), cmyk);
                for (int32_t& ink : cmyk) {
                    out.number(ink);
                    ink = random.between(-1, 256);
                }
                jKoToneCMYKtoCMYK(four, cmyk);
                for (const int32_t ink : cmyk) out.number(ink);
            }
            out.endLine();
        }
        jKoToneReleaseToneCurve(one);
        jKoToneReleaseToneCurve(four);
        jKoToneReleaseToneCurve(six);
    }
}

// Sets in every printf format, saved, damaged and read again; values of both interpolations.
void calibrate() {
    constexpr const char* kFormats[] = {"%.0f",   "%.3f",  "%.9g",   "%+.6e", "%08.2f",
                                        "%-9.1G", "%#.4g", "% .20f", "%n"};
    Results out("calibration.txt");
    Random random(5);
    const auto put = [&](const CalibCurveSet* set) {
        out.number(set != nullptr);
        if (!set) return out.endLine();
        const CalibChannel* channels = set->channels;
        for (int32_t channel = 0; channel < set->channelCount; ++channel) {
            for (int32_t at = 0; at < channels[channel].toneCount; ++at)
                out.bits(channels[channel].tones[at].x).bits(channels[channel].tones[at].y);
            for (int32_t sample = 0; sample < 500; ++sample)
                out.bits(jKoCalibGetToneValue(set, channel,
                                              static_cast<float>(random.fraction() * set->range)));
            out.endLine();
        }
    };
    for (int32_t turn = 0; turn < 40; ++turn) {
        const char* const format = kFormats[turn % 9];
        CalibCurveSet* set = jKoCalibCreateCurve(1 + turn % 4, turn % 3 == 0 ? 100 : 255, 1000);
        require(set, "no calibration set");
        std::strcpy(set->formatX, format);
        std::strcpy(set->formatY, kFormats[(turn + turn / 9) % 9]);
        set->ctype = 1 + turn % 2;
        for (int32_t channel = 0; channel < set->channelCount; ++channel) {
            jKoCalibSetToneName(set, channel, "1,5",
                                static_cast<uint32_t>(random.between(0, 0xffffff)));
            for (int32_t tone = random.between(0, 40); tone > 0; --tone)
                jKoCalibSetToneValue(set, channel,
                                     static_cast<float>(random.fraction() * set->range),
                                     static_cast<float>(random.fraction() * 1100));
        }
        put(set);
        const std::string path = std::to_string(turn) + ".clb", copy = "d" + path;
        require(jKoCalibSaveCurve(set, path.c_str()) == 1, "a calibration set was not saved");
        jKoCalibReleaseCurve(set);
        writeFile(copy, damaged(readFile(path), static_cast<uint32_t>(turn)));
        for (const std::string& file : {path, copy}) {
            CalibCurveSet* loaded = jKoCalibLoadCurve(file.c_str());
            require(loaded || file == copy, "a calibration set was not loaded");
            put(loaded);
            jKoCalibReleaseCurve(loaded);
        }
    }
}

constexpr uint32_t signature(const char (&text)[5]) {
    uint32_t value = 0;
    for (int at = 0; at < 4; ++at) value = value << 8 | static_cast<uint8_t>(text[at]);
    return value;
}

// A CMYK profile with made-up tables in both directions, relative to a white that is not D50.
void makeProfile(const char* path, const char (&space)[5], uint8_t precision) {
    IccProfile* profile = jIccCreate(4);
    require(profile, "no profile");
    profile->header.connectionSpace = signature(space);
    uint32_t seed = 100;
    for (const char* tag : {"A2B0", "A2B1", "A2B2", "B2A0", "B2A1", "B2A2"}) {
        const bool toDevice = tag[0] == 'B';
        const char name[5] = {tag[0], tag[1], tag[2], tag[3], 0};
        const Shape shape{toDevice ? 3 : 4, toDevice ? 4 : 3, toDevice ? 11 : 5, 256, 256,
                          precision};
        require(jIccBindTag(profile, signature(name), makeLut(shape, seed++)) == 1, "no tag");
    }
    auto* white = static_cast<float*>(jMemAlloc(3 * sizeof(float)));
    require(white, "no memory for a white point");
    const float kWhite[3] = {0.9f, 0.95f, 0.7f};
    std::memcpy(white, kWhite, sizeof kWhite);
    require(jIccBindTag(profile, signature("wtpt"), white) == 1, "no white point");
    require(jIccSaveProfile(profile, path) == 1 && jIccRelease(profile) == 1, "no profile file");
}

uint64_t hashOf(const void* bytes, size_t size) {  // FNV-1a
    uint64_t hash = 14695981039346656037u;
    for (size_t at = 0; at < size; ++at)
        hash = (hash ^ static_cast<const uint8_t*>(bytes)[at]) * 1099511628211u;
    return hash;
}

struct Job {
    const char *name, *base, *source, *destination, *black;
    int32_t intent, preservation, whiteMode;
};

void combine() {
    makeProfile("lab8.icc", "Lab ", 1);
    makeProfile("lab16.icc", "Lab ", 2);
    makeProfile("xyz8.icc", "XYZ ", 1);
    makeProfile("xyz16.icc", "XYZ ", 2);
    {
        std::string table(972, '\0');
        Random random(7);
        for (int32_t at = 0; at < KOLINK_CMYK_NODES * 4; ++at)
            table.push_back(static_cast<char>(random.between(0, 255)));
        writeFile("table.lut", table);
        writeFile("table.amt", table.substr(972 - 256));
    }
    constexpr Job kJobs[] = {
        {"real", "", "source.icc", "printer.icc", "", 0, 0, 0},
        {"whole", "printer.icc", "printer.icc", "printer.icc", "10.bkc", 0, 2, 2},
        {"base", "table.lut", "", "", "11.bkc", 0, 1, 1},
        {"amatch", "table.amt", "", "", "", 0, 0, 2},
        {"lab8_xyz8", "", "lab8.icc", "xyz8.icc", "", 0, 0, 0},
        {"lab8_xyz16", "", "lab8.icc", "xyz16.icc", "", 1, 0, 0},
        {"lab16_xyz8", "", "lab16.icc", "xyz8.icc", "", 2, 0, 0},
        {"lab16_lab8", "", "lab16.icc", "lab8.icc", "", 0, 0, 1},
        {"xyz8_lab16", "", "xyz8.icc", "lab16.icc", "", 0, 0, 0},
        {"xyz16_lab8", "", "xyz16.icc", "lab8.icc", "", 1, 0, 0},
        {"xyz16_lab16", "", "xyz16.icc", "lab16.icc", "", 2, 0, 0},
    };
    Results out("combine.txt");
    for (const Job& job : kJobs) {
        CmsLinkSettings settings{};
        std::strcpy(settings.basePath, job.base);
        std::strcpy(settings.sourcePath, job.source);
        std::strcpy(settings.destinationPath, job.destination);
        std::strcpy(settings.blackPath, job.black);
        settings.intent = job.intent;
        settings.preservation = job.preservation;
        settings.whiteMode = job.whiteMode;
        settings.paperC = 3;
        settings.paperM = 5;
        settings.paperY = 17;
        settings.paperK = 1;
        settings.limit = 211;
        CmykProfile* profile = jKoCmykCombineProfile(&settings);
        require(profile, job.name + std::string(" was not combined"));
        out.text(job.name).text(" ");
        out.number(static_cast<int64_t>(hashOf(profile->grid, sizeof profile->grid))).endLine();

        Random random(8);
        for (int32_t colour = 0; colour < 10000; ++colour) {
            int32_t cmyk[4];
            for (int32_t& ink : cmyk) ink = random.between(-1, 256);
            jKoCmykCMYKtoCMYK16(profile, cmyk);
            for (const int32_t ink : cmyk) out.number(ink);
        }
        out.endLine();

        if (&job - kJobs < 2) {  // whole files, and what comes back from them
            std::strcpy(profile->name, job.name);
            for (int32_t curve = 0; curve < 8; ++curve)
                for (int32_t point = 8; point < 64; point += 8 + curve) {
                    profile->curveFlags[curve][point] = 1;
                    profile->curveValues[curve][point] =
                        static_cast<uint8_t>(random.between(0, 255));
                }
            const std::string path = job.name + std::string("_link.icc");
            require(jKoCmykSaveProfile(profile, path.c_str()) == 1, "a link was not saved");
            require(jKoCmykLoadProfile(profile, path.c_str()) == 1, "a link was not loaded");
            out.number(static_cast<int64_t>(hashOf(profile, sizeof *profile))).endLine();
        }
        jKoCmykReleaseProfile(profile);
    }
}

// A monitor: colorants and one-entry curves, which go through the library's own powers.
void makeMonitor(const char* path) {
    std::string bytes;
    const auto put = [&](uint32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift);
    };
    IccProfile* profile = jIccCreate(2);
    require(profile, "no profile");
    for (int32_t field = 0; field < 4; ++field)
        put(field == 2 ? 0x02100000 : field == 3 ? signature("mntr") : 0);
    put(signature("RGB "));
    put(signature("XYZ "));
    for (int32_t field = 0; field < 3; ++field) put(0);
    put(signature("acsp"));
    for (int32_t field = 0; field < 7; ++field) put(0);
    for (const int32_t value : profile->header.illuminant) put(static_cast<uint32_t>(value));
    bytes.resize(128);
    require(jIccRelease(profile) == 1, "no release");
    put(6);
    const char kTags[6][5] = {"rXYZ", "gXYZ", "bXYZ", "rTRC", "gTRC", "bTRC"};
    for (uint32_t tag = 0; tag < 6; ++tag) {
        put(signature(kTags[tag]));
        put(132 + 72 + tag * 20);
        put(20);
    }
    constexpr uint32_t kColorants[3][3] = {
        {0x6fa2, 0x38f5, 0x0390}, {0x6299, 0xb785, 0x18da}, {0x24a0, 0x0f84, 0xb6cf}};
    for (const auto& colorant : kColorants) {
        put(signature("XYZ "));
        put(0);
        for (const uint32_t value : colorant) put(value);
    }
    for (const uint32_t gamma : {563u, 461u, 333u}) {
        put(signature("curv"));
        put(0);
        put(1);
        put(gamma << 16);
        put(0);
    }
    writeFile(path, bytes);
}

void buildLinks() {
    makeMonitor("monitor.icc");
    struct LinkJob {
        LinkProfile* (*build)(const CmsLinkSettings*);
        const char *source, *destination;
        int32_t intent, preservation, whiteMode;
    };
    constexpr LinkJob kJobs[] = {
        {jKoLinkCombineCmykProfile, "source.icc", "printer.icc", 0, 0, 0},
        {jKoLinkCombineCmykProfile, "printer.icc", "printer.icc", 1, 2, 1},
        {jKoLinkCombineCmykProfile, "lab8.icc", "xyz16.icc", 0, 1, 0},
        {jKoLinkCombineCmykProfile, "xyz16.icc", "lab8.icc", 2, 0, 0},
        {jKoLinkCombineRgbProfile, "monitor.icc", "printer.icc", 0, 0, 1},
        {jKoLinkCombineRgbProfile, "monitor.icc", "xyz8.icc", 1, 2, 0},
    };
    Results out("links.txt");
    Random random(12);
    for (const LinkJob& job : kJobs) {
        CmsLinkSettings settings;
        jCmsInitCms(&settings);
        std::strcpy(settings.sourcePath, job.source);
        std::strcpy(settings.destinationPath, job.destination);
        settings.intent = job.intent;
        settings.preservation = job.preservation;
        settings.whiteMode = job.whiteMode;
        LinkProfile* link = job.build(&settings);
        require(link, job.source + std::string(" made no link"));
        out.text(job.source).text(" ");
        out.number(static_cast<int64_t>(hashOf(link->grid, power(17, link->inputChannels) * 8)))
            .endLine();

        std::vector<uint8_t> input(40000);
        for (uint8_t& level : input) level = static_cast<uint8_t>(random.between(0, 255));
        std::vector<uint16_t> output(input.size() / static_cast<size_t>(link->inputChannels) * 4);
        jKoLinkCOLtoCMYK16Row(link, input.data(), static_cast<int32_t>(output.size() / 4),
                              output.data());
        for (const uint16_t value : output) out.number(value);
        for (int32_t colour = 0; colour < 1000; ++colour) {
            int32_t values[4];
            for (int32_t& value : values) value = random.between(-1, 256);
            jKoLinkCOLtoCMYK16(link, values);
            for (const int32_t value : values) out.number(value);
        }
        out.endLine();
        jKoLinkReleaseProfile(link);
    }
}

void convertForHosts() {
    Results out("front.txt");
    for (int32_t a = 0; a < 256; a += 15)
        for (int32_t b = 0; b < 256; b += 15)
            for (int32_t c = 0; c < 256; c += 15) {
                out.number(jColorRGBtoCMYK(a, b, c)).number(jColorCMYKtoRGB(a, b, c, (a + b) / 2));
                out.number(jColorRGBtoGRAY(a, b, c))
                    .number(jColorCMYKtoGRAY(a, b, c, a / 2))
                    .endLine();
            }
    for (int32_t value = -1; value <= 256; ++value)
        out.number(Value255to100(value)).number(Value100to255(value)).endLine();
}

void saveDevice() {
    DeviceProfile* device = jKoDevsCreateProfile();
    require(device, "no device profile");
    Random random(13);
    std::strcpy(device->description, "measured");
    for (float& value : device->whitePoint) value = static_cast<float>(random.fraction());
    for (uint32_t& lab : device->labGrid) lab = static_cast<uint32_t>(random.between(0, 0xffffff));
    for (uint32_t& inks : device->toCmyk0)
        inks = static_cast<uint32_t>(random.between(0, INT32_MAX - 1));
    for (uint32_t& inks : device->toCmyk1)
        inks = static_cast<uint32_t>(random.between(0, INT32_MAX - 1)) * 2;
    for (uint8_t& gamut : device->gamut) gamut = static_cast<uint8_t>(random.between(0, 255));
    require(jKoDevsSaveProfile(device, "device.icc") == 1, "a device profile was not saved");
    jKoDevsReleaseProfile(device);
}

// One table: its text file, itself from that file, colours one by one and the same in a row.
template <size_t Channels, class Table>
void convertThroughTable(Results& out, Table* table, const char* path, uint32_t used,
                         int32_t (*save)(const Table*, const char*),
                         int32_t (*load)(Table*, const char*),
                         int32_t (*convert)(const Table*, int32_t*),
                         void (*convertRow)(const Table*, const uint8_t*, int32_t, uint16_t*)) {
    Random random(14);
    for (uint32_t& node : table->nodes) {
        const auto high = static_cast<uint32_t>(random.between(0, 0xffff));
        node = (high << 16 | static_cast<uint32_t>(random.between(0, 0xffff))) & used;
    }
    const uint64_t before = hashOf(table, sizeof *table);
    require(hosted(save, table, path) == 1 && hosted(load, table, path) == 1,
            "a table was not saved and loaded");
    require(hashOf(table, sizeof *table) == before, "a table came back changed");
    std::vector<uint8_t> input(Channels * 20000);
    for (uint8_t& level : input) level = static_cast<uint8_t>(random.between(0, 255));
    std::vector<uint16_t> row(input.size());
    hosted(convertRow, table, input.data(), 20000, row.data());
    for (size_t at = 0; at < input.size(); at += Channels) {
        int32_t values[4] = {};
        for (size_t k = 0; k < Channels; ++k) values[k] = input[at + k];
        out.number(hosted(convert, table, values));
        for (size_t k = 0; k < Channels; ++k)
            require(values[k] == row[at + k], "a row differs from its colours");
        for (size_t k = 0; k < Channels; ++k) out.number(values[k]);
    }
    out.endLine();
}

void convertThroughTables() {
    Results out("tables.txt");
    CmykLut* cmyk = jKoCmykCreateCmykLut();
    RgbLut* rgb = jKoRgbCreateRgbLut();
    require(cmyk && rgb, "no table");
    convertThroughTable<4>(out, cmyk, "cmyk_table.txt", 0xffffffff, jKoCmykSaveCmykLut,
                           jKoCmykLoadCmykLut, jKoCmykLutCMYKtoCMYK16, jKoCmykLutCMYKtoCMYK16Row);
    convertThroughTable<3>(out, rgb, "rgb_table.txt", 0xffffff, jKoRgbSaveRgbLut, jKoRgbLoadRgbLut,
                           jKoRgbRGBtoRGB16, jKoRgbRGBtoRGB16Row);
    jKoCmykReleaseCmykLut(cmyk);
    jKoRgbReleaseRgbLut(rgb);
}

// The second library: transforms, inversions and links of every kind.
void makePrecisely() {
    Results out("precise.txt");
    KoPreciseError error;
    std::array<KoPreciseProfile*, 2> profiles = {koPreciseOpenProfile("printer.icc", &error),
                                                 koPreciseOpenProfile("source.icc", &error)};
    require(profiles[0] && profiles[1], "no profile");
    Random random(12);
    for (int32_t intent = 0; intent < 4; ++intent)
        for (int32_t from = 0; from < 3; ++from) {
            KoPreciseTransform* const transform = koPreciseMakeTransform(
                from == 2 ? nullptr : profiles[static_cast<size_t>(from)],
                from == 1 ? nullptr : profiles[0], intent, intent % 2, &error);
            require(transform, error.text);
            for (int n = 0; n < 200; ++n) {
                std::array<float, 4> in{}, seen{};
                for (float& value : in) value = static_cast<float>(random.fraction());
                if (from == 2) in = {in[0] * 100, in[1] * 160 - 80, in[2] * 160 - 80, 0};
                koPreciseTransformFloats(transform, in.data(), seen.data(), 1);
                for (const float value : seen) out.bits(value);
                out.endLine();
            }
            koPreciseReleaseTransform(transform);
        }
    for (int n = 0; n < 200; ++n) {
        const double lab[3] = {random.fraction() * 100, random.fraction() * 120 - 60,
                               random.fraction() * 120 - 60};
        double inks[4] = {};
        out.bits(koPreciseInvert(profiles[0], lab, n % 2 ? -1 : random.fraction(), 3, inks, &error));
        for (const double ink : inks) out.bits(ink);
        out.endLine();
    }
    struct Case {
        int32_t black, bits, gridPoints, preserve, intent;
        double saveInk, inkLimit;
    };
    constexpr Case kCases[] = {
        {KO_PRECISE_BLACK_PLANE, 8, 33, 0, KO_PRECISE_RELATIVE, 0, KO_PRECISE_LIMIT_PROFILE},
        {KO_PRECISE_BLACK_PLANE, 16, 17, 0, KO_PRECISE_RELATIVE, 60, 240},
        {KO_PRECISE_BLACK_MATCH, 16, 17, 3, KO_PRECISE_ABSOLUTE, 0, KO_PRECISE_LIMIT_NONE},
        {KO_PRECISE_BLACK_NONE, 16, 17, 0, KO_PRECISE_RELATIVE, 0, KO_PRECISE_LIMIT_PROFILE},
        {KO_PRECISE_BLACK_NONE, 16, 9, 0, KO_PRECISE_PERCEPTUAL, 0, KO_PRECISE_LIMIT_PROFILE}};
    int made = 0;
    for (const Case& one : kCases) {
        KoPreciseOptions options;
        koPreciseInitOptions(&options);
        options.black = one.black;
        options.bits = one.bits;
        options.gridPoints = one.gridPoints;
        options.preserve = one.preserve;
        options.intent = one.intent;
        options.saveInk = one.saveInk;
        options.inkLimit = one.inkLimit;
        KoPreciseLink* const link =
            koPreciseMakeLink(profiles[1], profiles[0], nullptr, &options, &error);
        require(link, error.text);
        KoPreciseFileOptions file{};
        file.size = sizeof file;
        file.editable = one.bits == 8;
        const std::string path = "precise-" + std::to_string(++made) + ".icc";
        require(koPreciseSaveLink(link, path.c_str(), &file, &error) == 1, error.text);
        for (int n = 0; n < 200; ++n) {
            std::array<uint16_t, 4> in{}, levels{};
            for (uint16_t& level : in) level = static_cast<uint16_t>(random.between(0, 65535));
            koPreciseLinkRow16(link, in.data(), levels.data(), 1);
            for (const uint16_t level : levels) out.number(level);
            out.endLine();
        }
        // The file as a reader has it, in rows of both widths.
        KoPreciseProfile* const saved = koPreciseOpenProfile(path.c_str(), &error);
        KoPreciseTransform* const read =
            koPreciseMakeTransform(saved, nullptr, KO_PRECISE_RELATIVE, 0, &error);
        require(read, error.text);
        for (int n = 0; n < 200; ++n) {
            std::array<uint16_t, 4> in{}, levels{};
            std::array<uint8_t, 4> bytes{}, seen{}, wanted{};
            for (size_t ch = 0; ch < 4; ++ch) {
                in[ch] = static_cast<uint16_t>(random.between(0, 65535));
                bytes[ch] = static_cast<uint8_t>(in[ch] >> 8);
            }
            koPreciseTransformRow16(read, in.data(), levels.data(), 1);
            koPreciseTransformRow8(read, bytes.data(), seen.data(), 1);
            koPreciseLinkRow8(link, bytes.data(), wanted.data(), 1);
            require(one.bits == 16 || seen == wanted, "a saved link is not the one that was made");
            for (const uint16_t level : levels) out.number(level);
            for (const uint8_t level : seen) out.number(level);
            out.endLine();
        }
        koPreciseReleaseTransform(read);
        koPreciseReleaseProfile(saved);
        koPreciseReleaseLink(link);
    }
    for (KoPreciseProfile* profile : profiles) koPreciseReleaseProfile(profile);
}

void runAll() {
    evaluateLuts();
    convertColours();
    drawCurves();
    saveAndLoadTones();
    calibrate();
    combine();
    buildLinks();
    convertForHosts();
    saveDevice();
    convertThroughTables();
    makePrecisely();
}

void onASmallStack([[maybe_unused]] void (*run)()) {
#if defined(__linux__)
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    require(pthread_attr_setstacksize(&attributes, 64 * 1024) == 0, "no such stack");
    pthread_t thread;
    const auto begin = [](void* all) -> void* {
        reinterpret_cast<void (*)()>(all)();
        return nullptr;
    };
    require(pthread_create(&thread, &attributes, begin, reinterpret_cast<void*>(run)) == 0,
            "no thread");
    pthread_join(thread, nullptr);
#else
    require(false, "stacks are not made small here");
#endif
}

}  // namespace

int main(int argc, char** argv) {
    require(argc == 3, "usage: library_script SETTINGS LOCALE");
    const std::string_view name = argv[1] == kSmallStack ? "usual" : argv[1];
    const auto found = std::find_if(std::begin(kSettings), std::end(kSettings),
                                    [&](const Settings& one) { return one.name == name; });
    require(found != std::end(kSettings), std::string("there are no settings ") + argv[1]);
    settingsOfHost = *found;
    const char* const locale = argv[2];
    require(std::setlocale(LC_ALL, locale), std::string("there is no locale ") + locale);
    const bool comma = std::localeconv()->decimal_point == std::string_view(",");
    require(comma == (std::string_view(locale) != "C"),
            "the decimal sign is not the expected one");
    if (argv[1] == kSmallStack) onASmallStack(runAll);
    else runAll();
    std::puts("done");
}
