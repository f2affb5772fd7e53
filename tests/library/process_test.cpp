// The library in a process that is not kind to it: memory runs out on a thread that has never
// thrown, and the library comes and goes.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <thread>

#include "kolink.h"
#include "tests/icc/lut_builder.h"
#include "tests/library/short_memory.h"
#include "tests/link/source_profiles.h"
#include "tests/support/library_folder.h"

namespace {
using namespace ko::test;

// A number for what a call gives, 0 for its documented failure. The call allocates nothing itself.
using Call = std::function<uint64_t()>;

uint64_t numberOf(const void* data, size_t size) {
    uint64_t hash = 14695981039346656037u;
    for (size_t at = 0; at < size; ++at)
        hash = (hash ^ static_cast<const uint8_t*>(data)[at]) * 1099511628211u;
    return hash;
}

// Runs the call with one allocation more each time, each on a new thread, until it is never short.
// Every result is the failure or the whole, and nothing stays allocated.
void failEverywhere(const Call& call) {
    const uint64_t whole = call();
    ASSERT_NE(whole, 0u);
    bool wasShort = true;
    long successes = 0;
    for (; wasShort && successes < 5000; ++successes) {
        uint64_t result = 0;
        std::thread([&] {
            const ShortMemory memory(successes);
            result = call();
            wasShort = memory.wasShort();
        }).join();
        if (result != 0) {
            ASSERT_EQ(result, whole) << "after " << successes << " allocations";
        } else {
            ASSERT_TRUE(wasShort) << successes;
        }
    }
    ASSERT_LT(successes, 5000);
    EXPECT_GT(successes, 1) << "nothing was ever allocated";
}

uint64_t numberOfLink(LinkProfile* link) {
    if (!link) return 0;
    const uint64_t number = numberOf(link->grid, gridSize(*link) * 2);
    jKoLinkReleaseProfile(link);
    return number;
}

class ShortMemoryCall : public testing::Test {
protected:
    std::string write(const char* name, const Bytes& bytes) const {
        writeFile(folder.path(name), bytes);
        return folder.path(name);
    }
    TempFolder folder;
    const std::string press = write("press.icc", pressProfile());
    const std::string monitor = write("monitor.icc", readFile(testData("sRGB-v2-magic.icc")));
};

TEST_F(ShortMemoryCall, OfTheSimplestKindIsRefused) {
    failEverywhere([] {
        CalibCurveSet* const set = jKoCalibCreateCurve(16, 100, 100);
        if (!set) return uint64_t{0};
        const uint64_t number = numberOf(set->channels, 16 * sizeof(CalibChannel));
        jKoCalibReleaseCurve(set);
        return number;
    });
    failEverywhere([] {
        ToneCurve* const curve = jKoToneCreateToneCurve(6);
        if (!curve) return uint64_t{0};
        const uint64_t number = numberOf(curve->table, 6 * 512 * 2);
        jKoToneReleaseToneCurve(curve);
        return number;
    });
    failEverywhere([] { return numberOfLink(jKoLinkCreateProfile(3, 9)); });
}

TEST_F(ShortMemoryCall, ThatMakesALutReadyIsRefused) {
    for (const int32_t precision : {1, 2}) {
        MadeLut lut({.precision = precision});
        failEverywhere([&] {
            if (jIccLutSetup(lut.get()) != 1) return uint64_t{0};
            int32_t values[4] = {100, 200, 30, 40};
            jIccLutColor16(lut.get(), values);
            jIccLutClose(lut.get());
            return numberOf(values, sizeof values);
        });
    }
}

TEST_F(ShortMemoryCall, ThatListsProfilesIsRefused) {
    char pattern[KOLINK_PATH_SIZE] = {};
    std::strcpy(pattern, folder.path("*.icc").c_str());
    std::vector<char> list(4 * KOLINK_PATH_SIZE);
    failEverywhere([&] {
        std::memset(list.data(), 0, list.size());
        std::memcpy(list.data(), pattern, sizeof pattern);
        return jColorLoadIccFileList(list.data(), 4, nullptr) == 0
                   ? 0 : numberOf(list.data(), list.size());
    });
}

TEST_F(ShortMemoryCall, ThatBuildsALinkThroughTheSystemIsRefused) {
    for (const std::string& destination : {press, monitor}) {
        const CmsLinkSettings rgb = settingsFor(monitor, destination);
        failEverywhere([&] { return numberOfLink(jKoLinkCombineIcmRgbProfile(&rgb)); });
    }
    const CmsLinkSettings cmyk = settingsFor(press, monitor);
    failEverywhere([&] { return numberOfLink(jKoLinkCombineIcmCmykProfile(&cmyk)); });
}

// Half a kilobyte of it becomes several megabytes: eighty times the same three curves.
TEST_F(ShortMemoryCall, ThatBuildsALinkFromAProfileThatUnfoldsIsRefused) {
    constexpr uint32_t kTimes = 80, kSetAt = 16 + 8 * kTimes, kCurveAt = 12 + 3 * 8;
    Bytes steps;
    append16(steps, 3), append16(steps, 3), append32(steps, kTimes);
    for (uint32_t at = 0; at < kTimes; ++at) append32(steps, kSetAt), append32(steps, 88);
    append(steps, "cvst"), append32(steps, 0), append16(steps, 3), append16(steps, 3);
    for (int channel = 0; channel < 3; ++channel) append32(steps, kCurveAt), append32(steps, 44);
    // One segment without end: (1 x + 0) ^ 1 + 0
    append(steps, "curf"), append32(steps, 0), append16(steps, 1), append16(steps, 0);
    append(steps, "parf"), append32(steps, 0), append16(steps, 0), append16(steps, 0);
    for (const uint32_t parameter : {0x3f800000u, 0x3f800000u, 0u, 0u}) append32(steps, parameter);
    const std::string unfolding = write("unfolding.icc",
        profileBytes({{"D2B0", element("mpet", steps)}, {"A2B0", randomLut(3, 3, 1)},
                      {"wtpt", xyzElement(0xf6d6, 0x10000, 0xd32d)}},
                     profileHeader("scnr", "RGB ", "Lab ")));
    const CmsLinkSettings settings = settingsFor(unfolding, monitor);
    failEverywhere([&] { return numberOfLink(jKoLinkCombineIcmRgbProfile(&settings)); });
}

TEST_F(ShortMemoryCall, ThatCombinesProfilesIsRefusedAndNotTheIdentity) {
    const CmsLinkSettings settings = settingsFor(press, press);
    failEverywhere([&] {
        CmykProfile* const combined = jKoCmykCombineProfile(&settings);
        if (!combined) return uint64_t{0};
        const uint64_t number = numberOf(combined->grid, sizeof combined->grid / 64);
        jKoCmykReleaseProfile(combined);
        return number;
    });
}

TEST_F(ShortMemoryCall, ThatBuildsALinkWithItsOwnEvaluatorIsRefused) {
    const CmsLinkSettings settings = settingsFor(press, press);
    failEverywhere([&] { return numberOfLink(jKoLinkCombineCmykProfile(&settings)); });
}

TEST_F(ShortMemoryCall, ThatSetsUpTheCurrentLinksIsRefused) {
    jColorEndProfile();
    const uint32_t builtIn = jColorCMYKtoRGB(20, 30, 40, 50);
    failEverywhere([&] {
        if (jColorSetupProfile(monitor.c_str(), press.c_str(), 0) != 1)
            return uint64_t{jColorCMYKtoRGB(20, 30, 40, 50) != builtIn};  // with neither link
        const uint32_t colours[] = {jColorRGBtoCMYK(10, 90, 200), jColorCMYKtoRGB(20, 30, 40, 50)};
        jColorEndProfile();
        return numberOf(colours, sizeof colours);
    });
}

// What it reads on the way, it does without.
TEST(Library, MayBeLoadedWhenMemoryIsShort) {
    if (!kLoadingIsShort) GTEST_SKIP() << "the system loads with memory of its own";
    const TempFolder folder;
    const std::string copy = folder.path(KO_LIBRARY_NAME);
    std::filesystem::copy_file(libraryFolder() / KO_LIBRARY_NAME, copy);
    std::filesystem::create_directory(folder.folder() / "ini");
    writeFile(folder.path("ini/KoLink.ini"),
              "<INI>\n    KO_FOLDER = .." + std::string(100, 'x') + "\n</INI>\n");
    bool wasShort = true;
    int loaded = 0;
    for (long successes = 0; wasShort && successes < 1000; ++successes) {
        std::thread([&] {
            const ShortMemory memory(successes);
            void* const library = loadLibrary(copy.c_str());
            if (library) unloadLibrary(library), loaded += memory.wasShort();
            wasShort = memory.wasShort();
        }).join();
    }
    EXPECT_FALSE(wasShort);
    EXPECT_GT(loaded, 0) << "all failures were the system's own";
}

TEST(Library, LeavesNoMemoryBehindWhenItIsUnloaded) {
    const TempFolder folder;
    const std::string copy = folder.path(KO_LIBRARY_NAME);
    std::filesystem::copy_file(libraryFolder() / KO_LIBRARY_NAME, copy);
    const auto once = [&] {
        void* const library = loadLibrary(copy.c_str());
        ASSERT_NE(library, nullptr);
        const auto load = reinterpret_cast<CalibCurveSet* (*)(const char*)>(
            findFunction(library, "jKoCalibLoadCurve"));
        const auto create = reinterpret_cast<CalibCurveSet* (*)(int32_t, int32_t, int32_t)>(
            findFunction(library, "jKoCalibCreateCurve"));
        const auto release = reinterpret_cast<int32_t (*)(CalibCurveSet*)>(
            findFunction(library, "jKoCalibReleaseCurve"));
        EXPECT_EQ(load("there is no such file"), nullptr);
        EXPECT_EQ(release(create(16, 100, 100)), 1);
        unloadLibrary(library);
    };
    const char* const wanted = std::getenv("KO_LOADS");
    const int loads = wanted ? std::atoi(wanted) : kLoads;
    for (int warm = 0; warm < 3; ++warm) once();
    const long long before = allocatedBytes();
    for (int time = 0; time < loads; ++time) once();
    EXPECT_LT((allocatedBytes() - before) / loads, 17);
}

}  // namespace
