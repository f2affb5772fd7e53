#include "tests/fault/scenarios.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "kolink.h"
#include "tests/support/files.h"
#include "tests/support/profiles.h"

namespace ko::fault {
namespace {
using namespace test;

// ---- What is read ----

Bytes randomLut(uint8_t inputs, uint8_t outputs, uint32_t seed, bool wide, uint8_t gridPoints = 5) {
    LutElement lut;
    lut.inputs = inputs;
    lut.outputs = outputs;
    lut.gridPoints = gridPoints;
    lut.wide = wide;
    lut.seed = seed;
    return lut.bytes();
}

Bytes pressProfile(std::string_view connectionSpace, bool wide) {
    return profileBytes({{"A2B0", randomLut(4, 3, 1, wide)},
                         {"A2B1", randomLut(4, 3, 2, wide)},
                         {"A2B2", randomLut(4, 3, 3, wide)},
                         {"B2A0", randomLut(3, 4, 4, wide)},
                         {"B2A1", randomLut(3, 4, 5, wide)},
                         {"B2A2", randomLut(3, 4, 6, wide)},
                         {"gamt", randomLut(3, 1, 7, wide)},
                         {"cprt", textElement("nobody's")},
                         {"desc", descriptionElement("a press")},
                         {"wtpt", xyzElement(0xe000, 0xf000, 0xc000)},
                         {"bkpt", xyzElement(0x100, 0x110, 0x120)}},
                        profileHeader("prtr", "CMYK", connectionSpace));
}

Bytes monitorProfile() {
    return profileBytes({{"desc", descriptionElement("a monitor")},
                         {"wtpt", xyzElement(0xf6d6, 0x10000, 0xd32d)},
                         {"rXYZ", xyzElement(0x6fa2, 0x38f5, 0x0390)},
                         {"gXYZ", xyzElement(0x6299, 0xb785, 0x18da)},
                         {"bXYZ", xyzElement(0x24a0, 0x0f84, 0xb6cf)},
                         {"rTRC", curveElement({563})},
                         {"gTRC", curveElement({461})},
                         {"bTRC", curveElement({0, 9000, 30000, 65535})}},
                        profileHeader("mntr", "RGB ", "XYZ "));
}

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "fault_tests: %s\n", what);
    std::exit(2);
}

void bend(ToneCurve& curve) {
    for (int32_t channel = 0; channel < curve.channelCount; ++channel)
        for (int32_t x = 32; x < 255; x += 48) {
            curve.table[channel * 512 + x] = 1;
            curve.table[channel * 512 + 256 + x] = static_cast<int16_t>(x * 3 / 4 + channel);
        }
    std::strcpy(curve.title, "bent");
    jKoToneEncodeToneCurve(&curve, 0, 255);
}

uint32_t scattered(size_t index) { return static_cast<uint32_t>(index * 2654435761u >> 3); }

void fill(CmykProfile& profile) {
    std::strcpy(profile.name, "a link");
    std::strcpy(profile.comment, "of\r\ntwo lines");
    for (int curve = 0; curve < 8; ++curve) {
        profile.curveFlags[curve][20] = 1;
        profile.curveValues[curve][20] = static_cast<uint8_t>(70 + curve);
    }
    for (size_t node = 0; node < KOLINK_CMYK_NODES; ++node) profile.grid[node] = scattered(node);
}

template <class Table>
void scatter(Table& table) {
    size_t at = 0;
    for (uint32_t& node : table.nodes) node = scattered(at++) & (sizeof table < 20000 ? 0xffffff : ~0u);
}

void fill(DeviceProfile& device) {
    std::strcpy(device.description, "measured");
    for (float& value : device.whitePoint) value = 0.875f;
    size_t at = 0;
    for (uint32_t& lab : device.labGrid) lab = scattered(at++) & 0xffffff;
    for (uint32_t& inks : device.toCmyk0) inks = scattered(at++);
    for (uint32_t& inks : device.toCmyk1) inks = scattered(at++);
    for (uint8_t& gamut : device.gamut) gamut = static_cast<uint8_t>(at++ % 2);
}

}  // namespace

void makeInputs() {
    std::filesystem::create_directories("in");
    std::filesystem::create_directories("list");
    std::filesystem::create_directories("out");
    writeFile("in/press.icc", pressProfile("Lab ", true));
    writeFile("in/press8.icc", pressProfile("XYZ ", false));
    writeFile("in/monitor.icc", monitorProfile());
    writeFile("in/cmyk.icc", profileBytes({{"A2B0", randomLut(4, 4, 8, false, 9)}},
                                          profileHeader("link", "CMYK", "CMYK")));
    writeFile("in/foreign.nqp", "anything");
    for (const char* name : {"a.icc", "b.icc", "c.icm", "d.txt"})
        writeFile(std::string("list/") + name,
                  name[0] == 'b' ? monitorProfile() : pressProfile("Lab ", false));
    for (const bool amatch : {false, true}) {
        Bytes table(amatch ? 256 : 972);
        std::strcpy(reinterpret_cast<char*>(table.data()), "a table");
        for (size_t node = 0; node < KOLINK_CMYK_NODES; ++node) append32(table, scattered(node));
        writeFile(amatch ? "in/table.amt" : "in/table.lut", table);
    }

    ToneCurve* one = jKoToneCreateToneCurve(1);
    ToneCurve* four = jKoToneCreateToneCurve(4);
    ToneCurve* six = jKoToneCreateToneCurve(6);
    CmykProfile* profile = jKoCmykCreateProfile();
    CmykLut* cmyk = jKoCmykCreateCmykLut();
    RgbLut* rgb = jKoRgbCreateRgbLut();
    CalibCurveSet* set = jKoCalibCreateCurve(4, 100, 200);
    require(one && four && six && profile && cmyk && rgb && set, "no memory for the inputs");
    for (ToneCurve* curve : {one, four, six}) bend(*curve);
    DccSettings dcc{600, 1200, 240, 33, six};
    fill(*profile);
    scatter(*cmyk);
    scatter(*rgb);
    for (int32_t x = 5; x < 100; x += 5) jKoCalibSetToneValue(set, x % 4, static_cast<float>(x), 70);
    require(jKoToneSaveBkcCurve(one, "in/curve.bkc") == 1 &&
                jKoToneSaveCmykToneCurve(four, "in/curve.tnc") == 1 &&
                jKoToneSaveDcc(&dcc, "in/printer.dcc") == 1 &&
                jKoCmykSaveProfile(profile, "in/link.icc") == 1 &&
                jKoCmykSaveCmykLut(cmyk, "in/cmyk.txt") == 1 &&
                jKoRgbSaveRgbLut(rgb, "in/rgb.txt") == 1 &&
                jKoCalibSaveCurve(set, "in/set.clb") == 1, "the inputs cannot be written");
    Bytes binary(sizeof *cmyk);
    std::memcpy(binary.data(), cmyk, sizeof *cmyk);
    writeFile("in/cmyk.bin", binary);
    binary.resize(sizeof *rgb);
    std::memcpy(binary.data(), rgb, sizeof *rgb);
    writeFile("in/rgb.bin", binary);
    writeFile("in/plain.clb", "TITLE = plain\r\nCHANNEL = 2\r\nRANGE = 100\r\nLIMIT = 200\r\n"
                              "TONE = 0,0,0\r\nTONE = 50,60,70\r\nTONE = 100,100,100\r\n");
    for (ToneCurve* curve : {one, four, six}) jKoToneReleaseToneCurve(curve);
    jKoCmykReleaseProfile(profile);
    jKoCmykReleaseCmykLut(cmyk);
    jKoRgbReleaseRgbLut(rgb);
    jKoCalibReleaseCurve(set);
}

namespace {

// ---- What is given back ----

uint64_t digestOf(const IccProfile* profile) {
    if (!profile) return 0;
    Digest digest;
    digest.text(profile->path).record(profile->header);
    digest.number(profile->swapBytes).number(profile->tagCount);
    for (int32_t at = 0; at < profile->tagCount; ++at)
        digest.number(profile->tags[at].signature)
            .number(profile->tags[at].offset)
            .number(profile->tags[at].size)
            .number(profile->tags[at].data != nullptr);
    return digest;
}

uint64_t digestOf(const IccLut& lut) {
    Digest digest;
    digest.bytes(&lut, offsetof(IccLut, inputTables));
    size_t nodes = lut.outputChannels;
    for (int32_t axis = 0; axis < lut.inputChannels; ++axis) nodes *= lut.gridPoints;
    digest.bytes(lut.inputTables, size_t{lut.precision} * lut.inputChannels * lut.inputEntries);
    digest.bytes(lut.clut, nodes * lut.precision);
    digest.bytes(lut.outputTables, size_t{lut.precision} * lut.outputChannels * lut.outputEntries);
    return digest;
}

uint64_t digestOf(const ToneCurve* curve) {
    if (!curve) return 0;
    return Digest()
        .text(curve->title)
        .text(curve->path)
        .bytes(curve->table, size_t{1024} * curve->channelCount);
}

uint64_t digestOf(const DccSettings& dcc) {
    return Digest()
        .number(dcc.DPIX)
        .number(dcc.DPIY)
        .number(dcc.WINK)
        .number(dcc.LCLM)
        .number(static_cast<int64_t>(digestOf(dcc.curves)));
}

uint64_t digestOf(const CalibCurveSet* set) {
    if (!set) return 0;
    const size_t size = 548 + size_t{2088} * set->channelCount;
    Digest digest;
    digest.text(set->title).text(set->desc).text(set->path);
    const auto* bytes = reinterpret_cast<const uint8_t*>(set);
    digest.bytes(bytes + offsetof(CalibCurveSet, channelCount), 4 * sizeof(int32_t));
    digest.text(set->formatX).text(set->formatY);
    for (int32_t channel = 0; channel < set->channelCount; ++channel) {
        const CalibChannel& one = *(&set->channels[0] + channel);
        digest.text(one.name).number(one.lrgb).number(one.toneCount);
        digest.bytes(one.tones, sizeof one.tones);
    }
    return digest.number(static_cast<int64_t>(size));
}

uint64_t digestOf(const CmykProfile* profile) {
    if (!profile) return 0;
    return Digest()
        .text(profile->name)
        .text(profile->path)
        .text(profile->comment)
        .record(profile->curveValues)
        .record(profile->curveFlags)
        .record(profile->grid);
}

template <class Table>
uint64_t digestOfTable(const Table* table) {
    return table ? uint64_t{Digest().record(table->nodes)} : 0;
}

uint64_t digestOf(const LinkProfile* link) {
    if (!link) return 0;
    size_t nodes = 4;
    for (int32_t axis = 0; axis < link->inputChannels; ++axis) nodes *= link->gridPoints;
    return Digest()
        .text(link->name)
        .text(link->path)
        .text(link->comment)
        .number(link->inputChannels)
        .number(link->gridPoints)
        .record(link->curveValues)
        .record(link->curveFlags)
        .bytes(link->grid, nodes * sizeof(uint16_t));
}

uint64_t digestOf(const DeviceProfile* device) {
    return device ? uint64_t{Digest().record(*device)} : 0;
}

// The conversions of a host, through whatever links there are.
uint64_t digestOfConversions() {
    Digest digest;
    for (int32_t a = 0; a < 256; a += 51)
        for (int32_t b = 0; b < 256; b += 51)
            digest.number(jColorRGBtoCMYK(a, b, 99))
                .number(jColorCMYKtoRGB(a, b, 99, 40))
                .number(jColorRGBtoGRAY(a, b, 1))
                .number(jColorCMYKtoGRAY(a, b, 1, 2));
    return digest;
}

// ---- Scenarios ----

class Table {
public:
    std::vector<Scenario> all;

    // A function that makes something: null is its failure.
    template <class Make, class Release>
    void makes(std::string name, Make make, Release release) {
        add(std::move(name), [=](Run& run) {
            auto* made = run.underFaults(make);
            Result result{made != nullptr, digestOfMade(made)};
            if (made) release(made);
            return result;
        });
    }

    // A function that fills a record of the host. prepare makes the record in a state of its own,
    // so that it shows what a failure has changed.
    template <class Prepare, class Load, class Release, class DigestOf>
    void loads(std::string name, const char* path, Prepare prepare, Load load, Release release,
               DigestOf digest) {
        const auto on = [=](const char* file) {
            return [=](Run& run) {
                auto* record = prepare();
                const uint64_t before = digest(record);
                const int32_t answer = run.underFaults([&] { return load(record, file); });
                const uint64_t after = digest(record);
                Result result{answer == 1, after, after == before ? 0 : after};
                release(record);
                return result;
            };
        };
        Scenario scenario;
        scenario.name = std::move(name);
        scenario.run = on(path);
        scenario.missing = on("in/nothing.there");
        all.push_back(std::move(scenario));
    }

    // A function that writes a record of the host to a file: once where there is none, once over
    // an old one.
    template <class Prepare, class Save, class Release, class DigestOf>
    void saves(std::string name, const char* path, Prepare prepare, Save save, Release release,
               DigestOf digest) {
        for (const bool overOld : {false, true}) {
            Scenario scenario;
            scenario.name = name + (overOld ? " over an old file" : " where there is none");
            scenario.output = path;
            scenario.overOld = overOld;
            scenario.run = [=](Run& run) {
                auto* record = prepare();
                const uint64_t before = digest(record);
                const int32_t answer = run.underFaults([&] { return static_cast<int32_t>(save(record, path)); });
                const uint64_t after = digest(record);
                Result result{answer == 1, after, after == before ? 0 : after};
                release(record);
                return result;
            };
            all.push_back(std::move(scenario));
        }
    }

    void add(std::string name, std::function<Result(Run&)> run) {
        Scenario scenario;
        scenario.name = std::move(name);
        scenario.run = std::move(run);
        all.push_back(std::move(scenario));
    }

private:
    template <class Made>
    static uint64_t digestOfMade(const Made* made) {
        if constexpr (std::is_same_v<Made, CmykLut> || std::is_same_v<Made, RgbLut>)
            return digestOfTable(made);
        else
            return digestOf(made);
    }
};

CmsLinkSettings settingsOf(const char* base, const char* source, const char* destination,
                           const char* black, int32_t intent = 0, int32_t preservation = 0,
                           int32_t whiteMode = 0) {
    CmsLinkSettings settings;
    jCmsInitCms(&settings);
    std::strcpy(settings.basePath, base);
    std::strcpy(settings.sourcePath, source);
    std::strcpy(settings.destinationPath, destination);
    std::strcpy(settings.blackPath, black);
    settings.intent = intent;
    settings.preservation = preservation;
    settings.whiteMode = whiteMode;
    settings.paperC = 3;
    settings.paperY = 9;
    return settings;
}

void addMemory(Table& table) {
    table.add("jMemAlloc", [](Run& run) {
        void* block = run.underFaults([] { return jMemAlloc(1000); });
        if (block) std::memset(block, 1, 1000);
        const Result result{block != nullptr, 1};
        jMemFree(block);
        return result;
    });
}

// A profile with every tag that can be bound, made anew.
IccProfile* boundProfile(uint32_t flags) {
    IccProfile* profile = jIccCreate(flags);
    require(profile, "no profile");
    const auto put = [](IccLut* lut) {
        auto* bytes = static_cast<uint8_t*>(lut->clut);
        bytes[0] = 7;
        return lut;
    };
    if (flags == 4) {
        for (const uint32_t tag : {signature("A2B0"), signature("A2B1"), signature("A2B2")})
            jIccBindTag(profile, tag, put(hostLut(4, 3, 3, 1)));
        for (const uint32_t tag : {signature("B2A0"), signature("B2A1"), signature("B2A2")})
            jIccBindTag(profile, tag, put(hostLut(3, 4, 3, 2)));
        jIccBindTag(profile, signature("gamt"), hostLut(3, 1, 3, 1));
        const float white[3] = {0.9f, 1.0f, 0.8f};
        jIccBindTag(profile, signature("wtpt"), hostBlock(white, sizeof white));
    } else {
        jIccBindTag(profile, signature("A2B0"), put(hostLut(4, 4, 5, 1)));
    }
    jIccBindTag(profile, signature("cprt"), hostText("nobody's"));
    jIccBindTag(profile, signature("desc"), hostText("all of it"));
    return profile;
}

void addIcc(Table& table) {
    for (const uint32_t flags : {0u, 1u, 2u, 4u})
        table.makes("jIccCreate " + std::to_string(flags), [=] { return jIccCreate(flags); },
                    jIccRelease);
    for (const char* path : {"in/press.icc", "in/monitor.icc"})
        table.makes(std::string("jIccLoadHeader ") + path, [=] { return jIccLoadHeader(path); },
                    jIccRelease);
    const auto digestProfile = [](const IccProfile* profile) { return digestOf(profile); };
    table.add("jIccBindTag", [](Run& run) {
        IccProfile* profile = jIccCreate(4);
        const uint64_t before = digestOf(profile);
        void* text = hostText("bound");
        const int32_t answer =
            run.underFaults([&] { return jIccBindTag(profile, signature("desc"), text); });
        const uint64_t after = digestOf(profile);
        const Result result{answer == 1, after, after == before ? 0 : after};
        if (answer != 1) jMemFree(text);  // what is not bound stays the host's
        jIccRelease(profile);
        return result;
    });
    table.add("jIccUnbindTag", [](Run& run) {
        IccProfile* profile = boundProfile(4);
        const auto tagOf = [&] {
            for (int32_t at = 0; at < profile->tagCount; ++at)
                if (profile->tags[at].signature == signature("cprt")) return &profile->tags[at];
            return static_cast<IccTagEntry*>(nullptr);
        };
        const int32_t answer = run.underFaults([&] { return jIccUnbindTag(profile, signature("cprt")); });
        Result result{answer == 1, digestOf(profile)};
        // It is stated that the data goes first and the entry stays behind without it.
        if (answer != 1 && (!tagOf() || tagOf()->data)) result.record = 1;
        jIccRelease(profile);
        return result;
    });

    for (const uint32_t tag : kLoadableTags)
        for (const char* path : {"in/press.icc", "in/press8.icc", "in/monitor.icc"}) {
            const bool lut = tag >> 24 == 'A' || tag >> 8 == 0x423241 || tag == signature("gamt");
            const char name[5] = {static_cast<char>(tag >> 24), static_cast<char>(tag >> 16),
                                  static_cast<char>(tag >> 8), static_cast<char>(tag), 0};
            IccProfile* here = jIccLoadHeader(path);
            bool held = false;
            for (int32_t at = 0; at < here->tagCount; ++at)
                held = held || here->tags[at].signature == tag;
            jIccRelease(here);
            if (!held) continue;
            table.add(std::string("jIccLoadTag ") + name + ' ' + path, [=](Run& run) {
                IccProfile* profile = jIccLoadHeader(path);
                const uint64_t before = digestOf(profile);
                void* data = run.underFaults([&] { return jIccLoadTag(profile, tag); });
                Digest digest;
                if (data && lut) digest.number(static_cast<int64_t>(digestOf(*static_cast<IccLut*>(data))));
                else if (data && (name[1] == 'X' || name[0] == 'w' || name[0] == 'b') && name[1] != 'T')
                    digest.bytes(data, 3 * sizeof(float));
                else if (data && name[1] == 'T')
                    digest.bytes(data, 4 + 2 * size_t{static_cast<IccCurve*>(data)->count});
                else if (data) digest.text(static_cast<const char*>(data));
                const uint64_t after = digestOf(profile);
                const Result result{data != nullptr, digest, after == before ? 0 : after};
                jIccRelease(profile);
                return result;
            });
        }

    const struct {
        const char* name;
        uint32_t (*save)(IccProfile*, const char*);
        uint32_t flags;
    } kSavers[] = {{"jIccSaveProfile", jIccSaveProfile, 4},
                   {"jIccSaveDeviceProfile", jIccSaveDeviceProfile, 4},
                   {"jIccSaveLinkProfile", jIccSaveLinkProfile, 0}};
    for (const auto& saver : kSavers)
        table.saves(saver.name, "out/saved.icc", [=] { return boundProfile(saver.flags); },
                    saver.save, jIccRelease, digestProfile);

    for (const char* path : {"in/press.icc", "in/press8.icc"})
        table.add(std::string("jIccLutSetup ") + path, [=](Run& run) {
            IccProfile* profile = jIccLoadHeader(path);
            auto* lut = static_cast<IccLut*>(jIccLoadTag(profile, signature("A2B0")));
            require(lut, "no LUT");
            const uint64_t before = digestOf(*lut);
            Result result{run.underFaults([&] { return jIccLutSetup(lut); }) == 1};
            if (result.done) {
                Digest digest;
                int32_t values[4] = {1000, 2000, 3000, 4000}, own[4] = {1, 2, 3, 4};
                jIccLutColor16(lut, values);
                jIccLutColor(lut, own);
                result.results = digest.record(values).record(own);
                jIccLutClose(lut);
            } else if (digestOf(*lut) != before || lut->workTable) {
                result.record = 1;
            }
            jIccRelease(profile);
            return result;
        });
}

void addTone(Table& table) {
    for (const int32_t channels : {1, 4, 6})
        table.makes("jKoToneCreateToneCurve " + std::to_string(channels),
                    [=] { return jKoToneCreateToneCurve(channels); }, jKoToneReleaseToneCurve);
    const auto curveOf = [](int32_t channels, int16_t mark) {
        return [=] {
            ToneCurve* curve = jKoToneCreateToneCurve(channels);
            require(curve, "no curve");
            bend(*curve);
            curve->table[300] = mark;
            return curve;
        };
    };
    const auto digest = [](const ToneCurve* curve) { return digestOf(curve); };
    table.loads("jKoToneInitToneCurve", nullptr, curveOf(4, 9),
                [](ToneCurve* curve, const char*) { return jKoToneInitToneCurve(curve); },
                jKoToneReleaseToneCurve, digest);
    table.loads("jKoToneEncodeToneCurve", nullptr, curveOf(4, 9),
                [](ToneCurve* curve, const char*) { return jKoToneEncodeToneCurve(curve, 1, 4080); },
                jKoToneReleaseToneCurve, digest);
    table.loads("jKoToneLoadBkcCurve", "in/curve.bkc", curveOf(1, 9), jKoToneLoadBkcCurve,
                jKoToneReleaseToneCurve, digest);
    table.loads("jKoToneLoadCmykToneCurve", "in/curve.tnc", curveOf(4, 9), jKoToneLoadCmykToneCurve,
                jKoToneReleaseToneCurve, digest);
    table.loads("jKoToneLoadDccCurve", "in/printer.dcc", curveOf(6, 9), jKoToneLoadDccCurve,
                jKoToneReleaseToneCurve, digest);
    table.saves("jKoToneSaveBkcCurve", "out/saved.bkc", curveOf(1, 77), jKoToneSaveBkcCurve,
                jKoToneReleaseToneCurve, digest);
    table.saves("jKoToneSaveCmykToneCurve", "out/saved.tnc", curveOf(4, 77),
                jKoToneSaveCmykToneCurve, jKoToneReleaseToneCurve, digest);
    const auto dccOf = [=](int16_t mark) {
        return [=] { return new DccSettings{300, 400, 200, 20, curveOf(6, mark)()}; };
    };
    const auto releaseDcc = [](DccSettings* dcc) {
        jKoToneReleaseToneCurve(dcc->curves);
        delete dcc;
    };
    const auto digestDcc = [](const DccSettings* dcc) { return digestOf(*dcc); };
    table.loads("jKoToneLoadDcc", "in/printer.dcc", dccOf(9), jKoToneLoadDcc, releaseDcc, digestDcc);
    table.saves("jKoToneSaveDcc", "out/saved.dcc", dccOf(77), jKoToneSaveDcc, releaseDcc,
                digestDcc);
}

void addCalib(Table& table) {
    table.makes("jKoCalibCreateCurve", [] { return jKoCalibCreateCurve(4, 100, 200); },
                jKoCalibReleaseCurve);
    for (const char* path : {"in/set.clb", "in/plain.clb"})
        table.makes(std::string("jKoCalibLoadCurve ") + path, [=] { return jKoCalibLoadCurve(path); },
                    jKoCalibReleaseCurve);
    const auto prepare = [] {
        CalibCurveSet* set = jKoCalibCreateCurve(3, 100, 200);
        require(set, "no set");
        jKoCalibSetToneValue(set, 1, 50, 61.5f);
        std::strcpy(set->formatY, "%.3f");
        return set;
    };
    const auto digest = [](const CalibCurveSet* set) { return digestOf(set); };
    table.saves("jKoCalibSaveCurve", "out/saved.clb", prepare, jKoCalibSaveCurve,
                jKoCalibReleaseCurve, digest);
    const auto changes = [&](const char* name, int32_t (*change)(CalibCurveSet*)) {
        table.loads(name, nullptr, prepare,
                    [=](CalibCurveSet* set, const char*) { return change(set); },
                    jKoCalibReleaseCurve, digest);
        table.all.back().missing = nullptr;
    };
    changes("jKoCalibInitCurve", jKoCalibInitCurve);
    changes("jKoCalibSetToneValue", [](CalibCurveSet* set) { return jKoCalibSetToneValue(set, 0, 30, 40); });
    changes("jKoCalibDeleteToneValue", [](CalibCurveSet* set) { return jKoCalibDeleteToneValue(set, 1, 50); });
    changes("jKoCalibSetTitle", [](CalibCurveSet* set) { return jKoCalibSetTitle(set, "title", "text"); });
    changes("jKoCalibSetToneName", [](CalibCurveSet* set) { return jKoCalibSetToneName(set, 2, "name", 7); });
    table.add("jKoCalibGetToneValue", [=](Run& run) {
        CalibCurveSet* set = prepare();
        const float y = run.underFaults([&] { return jKoCalibGetToneValue(set, 1, 33); });
        const Result result{true, Digest().record(y)};
        jKoCalibReleaseCurve(set);
        return result;
    });
    table.add("jKoCalibGetTitle", [=](Run& run) {
        CalibCurveSet* set = prepare();
        char texts[3][260] = {};
        uint32_t lrgb = 0;
        const int32_t done = run.underFaults([&] {
            return jKoCalibGetTitle(set, texts[0], texts[1]) & jKoCalibGetPath(set, texts[2]) &
                   jKoCalibGetToneName(set, 1, texts[2], &lrgb);
        });
        const Result result{done == 1, Digest().record(texts).number(lrgb)};
        jKoCalibReleaseCurve(set);
        return result;
    });
}

void addCmyk(Table& table) {
    table.makes("jKoCmykCreateProfile", jKoCmykCreateProfile, jKoCmykReleaseProfile);
    const auto prepare = [] {
        CmykProfile* profile = jKoCmykCreateProfile();
        require(profile, "no profile");
        fill(*profile);
        profile->grid[5] = 12345;
        return profile;
    };
    const auto digest = [](const CmykProfile* profile) { return digestOf(profile); };
    table.loads("jKoCmykInitProfile", nullptr, prepare,
                [](CmykProfile* profile, const char*) { return jKoCmykInitProfile(profile); },
                jKoCmykReleaseProfile, digest);
    for (const char* path : {"in/link.icc", "in/cmyk.icc", "in/table.lut", "in/table.amt"})
        table.loads(std::string("jKoCmykLoadProfile ") + path, path, prepare, jKoCmykLoadProfile,
                    jKoCmykReleaseProfile, digest);
    table.loads("jKoCmykLoadLutable", "in/table.lut", prepare, jKoCmykLoadLutable,
                jKoCmykReleaseProfile, digest);
    table.loads("jKoCmykLoadLutableAmatch", "in/table.amt", prepare, jKoCmykLoadLutableAmatch,
                jKoCmykReleaseProfile, digest);
    table.saves("jKoCmykSaveProfile", "out/saved.icc", prepare, jKoCmykSaveProfile,
                jKoCmykReleaseProfile, digest);

    const struct {
        const char* name;
        CmsLinkSettings settings;
    } kCombinations[] = {
        {"nothing", settingsOf("", "", "", "")},
        {"a base link", settingsOf("in/link.icc", "", "", "", 0, 1, 1)},
        {"a base table and black", settingsOf("in/table.lut", "", "", "in/curve.bkc", 0, 2, 2)},
        {"a pair", settingsOf("", "in/press.icc", "in/press8.icc", "", 0, 2, 2)},
        {"a pair, a base and black",
         settingsOf("in/table.amt", "in/press8.icc", "in/press.icc", "in/curve.bkc", 1)},
    };
    for (const auto& [name, settings] : kCombinations)
        table.makes(std::string("jKoCmykCombineProfile ") + name,
                    [settings] { return jKoCmykCombineProfile(&settings); }, jKoCmykReleaseProfile);
    for (const CmsLinkSettings& settings :
         {settingsOf("", "in/foreign.nqp", "", ""),
          settingsOf("in/cmyk.icc", "in/foreign.nqp", "in/printer.dcc", "in/curve.bkc")})
        table.makes(std::string("jKoCmykCombineProfile a foreign table") +
                        (settings.basePath[0] ? " and settings" : ""),
                    [settings] { return jKoCmykCombineProfile(&settings); },
                    jKoCmykReleaseProfile);
    const CmsLinkSettings pair = settingsOf("", "in/press.icc", "in/press8.icc", "", 2);
    table.makes("jKoCmykCombineIccProfile", [pair] { return jKoCmykCombineIccProfile(&pair); },
                jKoCmykReleaseProfile);
}

template <class Record>
void addColourTable(Table& table, const std::string& kind, const std::string& stem,
                    Record* (*create)(), int32_t (*release)(Record*), int32_t (*init)(Record*),
                    int32_t (*load)(Record*, const char*), int32_t (*save)(const Record*, const char*)) {
    const auto prepare = [=] {
        Record* record = create();
        require(record, "no table");
        scatter(*record);
        record->nodes[7] = 99;
        return record;
    };
    const auto digest = [](const Record* record) { return digestOfTable(record); };
    const std::string prefix = kind == "Rgb" ? "jKoRgb" : "jKoCmyk";
    table.makes(prefix + "Create" + kind + "Lut", create, release);
    table.loads(prefix + "Init" + kind + "Lut", nullptr, prepare,
                [=](Record* record, const char*) { return init(record); }, release, digest);
    static std::string paths[2][2];
    for (int form = 0; form < 2; ++form) {
        std::string& path = paths[kind == "Rgb"][form];
        path = "in/" + stem + (form == 0 ? ".txt" : ".bin");
        table.loads(prefix + "Load" + kind + "Lut " + path, path.c_str(), prepare, load, release,
                    digest);
    }
    table.saves(prefix + "Save" + kind + "Lut", "out/saved.txt", prepare, save, release, digest);
}

void addLinks(Table& table) {
    for (const int32_t inputs : {3, 4})
        table.makes("jKoLinkCreateProfile " + std::to_string(inputs),
                    [=] { return jKoLinkCreateProfile(inputs, 9); }, jKoLinkReleaseProfile);
    const struct {
        const char* name;
        LinkProfile* (*build)(const CmsLinkSettings*);
        CmsLinkSettings settings;
    } kBuilders[] = {
        {"jKoLinkCombineCmykProfile", jKoLinkCombineCmykProfile,
         settingsOf("", "in/press.icc", "in/press8.icc", "", 0, 2, 1)},
        {"jKoLinkCombineRgbProfile", jKoLinkCombineRgbProfile,
         settingsOf("", "in/monitor.icc", "in/press.icc", "")},
        {"jKoLinkCombineIcmRgbProfile", jKoLinkCombineIcmRgbProfile,
         settingsOf("", "in/monitor.icc", "in/press.icc", "")},
        {"jKoLinkCombineIcmCmykProfile", jKoLinkCombineIcmCmykProfile,
         settingsOf("", "in/press8.icc", "in/press.icc", "")},
        {"jKoLinkCombineIcmCmykProfile to RGB", jKoLinkCombineIcmCmykProfile,
         settingsOf("", "in/press.icc", "in/monitor.icc", "", 3)},
    };
    for (const auto& [name, build, settings] : kBuilders)
        table.makes(name, [build, settings] { return build(&settings); }, jKoLinkReleaseProfile);
}

void addDevice(Table& table) {
    table.makes("jKoDevsCreateProfile", jKoDevsCreateProfile, jKoDevsReleaseProfile);
    const auto prepare = [] {
        DeviceProfile* device = jKoDevsCreateProfile();
        require(device, "no device profile");
        fill(*device);
        return device;
    };
    const auto digest = [](const DeviceProfile* device) { return digestOf(device); };
    table.loads("jKoDevsInitProfile", nullptr, prepare,
                [](DeviceProfile* device, const char*) { return jKoDevsInitProfile(device); },
                jKoDevsReleaseProfile, digest);
    table.saves("jKoDevsSaveProfile", "out/device.icc", prepare, jKoDevsSaveProfile,
                jKoDevsReleaseProfile, digest);
}

void addFront(Table& table) {
    table.add("jColorSetupProfile", [](Run& run) {
        jColorEndProfile();
        const uint64_t before = digestOfConversions();
        Result result{run.underFaults(
                          [] { return jColorSetupProfile("in/monitor.icc", "in/press.icc", 0); }) == 1};
        const uint64_t after = digestOfConversions();
        if (result.done) result.results = after;
        else if (after != before) result.record = after;
        jColorEndProfile();
        return result;
    });
    for (const char* space : {static_cast<const char*>(nullptr), "CMYK"})
        table.add(std::string("jColorLoadIccFileList") + (space ? " by colour space" : ""),
                  [=](Run& run) {
                      std::vector<char> list(8 * KOLINK_PATH_SIZE);
                      std::strcpy(list.data(), "list/*.ic?");
                      const int32_t count = run.underFaults(
                          [&] { return jColorLoadIccFileList(list.data(), 8, space); });
                      Digest digest;
                      for (int32_t at = 0; at < count; ++at)
                          digest.text(list.data() + at * KOLINK_PATH_SIZE);
                      // A file whose header cannot be read is listed with every colour space.
                      return Result{count > 0, digest, 0, space && count == 3};
                  });
    table.add("jColorRGBtoCMYK and the other conversions", [](Run& run) {
        const uint64_t digest = run.underFaults([] { return digestOfConversions(); });
        return Result{true, digest};
    });
    table.add("jColorRGBtoCMYKRow and the other rows", [](Run& run) {
        CmykProfile* profile = jKoCmykCreateProfile();
        CmykLut* cmyk = jKoCmykCreateCmykLut();
        RgbLut* rgb = jKoRgbCreateRgbLut();
        LinkProfile* link = jKoLinkCreateProfile(4, 9);
        require(profile && cmyk && rgb && link, "no tables");
        std::vector<uint8_t> in(4000), out8(4000);
        std::vector<uint16_t> out(4000);
        for (size_t at = 0; at < in.size(); ++at) in[at] = static_cast<uint8_t>(scattered(at));
        Digest digest;
        run.underFaults([&] {
            jColorRGBtoCMYKRow(in.data(), 1000, out8.data());
            digest.bytes(out8.data(), out8.size());
            jColorCMYKtoRGBRow(in.data(), 1000, out8.data());
            digest.bytes(out8.data(), 3000);
            jKoLinkCOLtoCMYK16Row(link, in.data(), 1000, out.data());
            digest.bytes(out.data(), 8000);
            jKoCmykCMYKtoCMYK16Row(profile, in.data(), 1000, out.data());
            digest.bytes(out.data(), 8000);
            jKoCmykLutCMYKtoCMYK16Row(cmyk, in.data(), 1000, out.data());
            digest.bytes(out.data(), 8000);
            jKoRgbRGBtoRGB16Row(rgb, in.data(), 1000, out.data());
            digest.bytes(out.data(), 6000);
        });
        jKoCmykReleaseProfile(profile);
        jKoCmykReleaseCmykLut(cmyk);
        jKoRgbReleaseRgbLut(rgb);
        jKoLinkReleaseProfile(link);
        return Result{true, digest};
    });
}

}  // namespace

std::vector<Scenario> makeScenarios() {
    Table table;
    addMemory(table);
    addIcc(table);
    addTone(table);
    addCalib(table);
    addCmyk(table);
    addColourTable<CmykLut>(table, "Cmyk", "cmyk", jKoCmykCreateCmykLut, jKoCmykReleaseCmykLut,
                            jKoCmykInitCmykLut, jKoCmykLoadCmykLut, jKoCmykSaveCmykLut);
    addColourTable<RgbLut>(table, "Rgb", "rgb", jKoRgbCreateRgbLut, jKoRgbReleaseRgbLut,
                           jKoRgbInitRgbLut, jKoRgbLoadRgbLut, jKoRgbSaveRgbLut);
    addLinks(table);
    addDevice(table);
    addFront(table);
    for (Scenario& scenario : table.all) {
        // Without memory for the ICC object a save counts as done, as hosts know it.
        scenario.doneWithoutMemory = scenario.function() == "jKoCmykSaveProfile" ||
                                     scenario.function() == "jKoDevsSaveProfile";
        scenario.loadsPlugin = scenario.name.find("foreign table") != std::string::npos;
        scenario.takesLong = scenario.name.find("Combine") != std::string::npos ||
                             scenario.function() == "jColorSetupProfile" ||
                             scenario.name.find("in/cmyk.icc") != std::string::npos;
    }
    return std::move(table.all);
}

}  // namespace ko::fault
