// What the folder's own parts and the other engines build on.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <set>

#include "icc/icc.h"
#include "icc/tag_codecs.h"
#include "tests/support/profiles.h"

namespace ko::icc {
namespace {

using test::Bytes;

TEST(IccFixedToFloat, RoundsToSinglePrecision) {
    EXPECT_EQ(IccFixedToFloat(0x10000), 1.0f);
    EXPECT_EQ(IccFixedToFloat(0xf6d6), static_cast<float>(63190 / 65536.0));
    EXPECT_EQ(IccFixedToFloat(-1), -1.0f / 65536);
    EXPECT_EQ(IccFixedToFloat(INT32_MIN), -32768.0f);
    EXPECT_EQ(IccFixedToFloat(0x01000001), 256.0f);      // a tie, to even
    EXPECT_EQ(IccFixedToFloat(0x01000003), 256.0f + 4.0f / 65536);
}

TEST(IccFloatToFixed, RoundsHalfAwayFromZero) {
    EXPECT_EQ(IccFloatToFixed(0.9642f), 0xf6d6);
    EXPECT_EQ(IccFloatToFixed(-0.5f / 65536), -1);
    EXPECT_EQ(IccFloatToFixed(0.5f / 65536), 1);
    EXPECT_EQ(IccFloatToFixed(1.5f / 65536), 2);
    EXPECT_EQ(IccFloatToFixed(-1.49f / 65536), -1);
    EXPECT_EQ(IccFloatToFixed(0.0f), 0);
    EXPECT_EQ(IccFloatToFixed(-0.0f), 0);
}

TEST(IccFloatToFixed, AddsTheHalfInDoublePrecision) {
    // In single precision the largest float below a half would be rounded up to 1.
    EXPECT_EQ(IccFloatToFixed(std::nextafter(0.5f, 0.0f) / 65536), 0);
    // From 2^23 on a float has no place for the half; odd numbers would go up by one.
    EXPECT_EQ(IccFloatToFixed(8388609.0f / 65536), 8388609);
    EXPECT_EQ(IccFloatToFixed(-8388609.0f / 65536), -8388609);
}

TEST(IccFloatToFixed, SaturatesAndTakesNoNumberAsZero) {
    EXPECT_EQ(IccFloatToFixed(32767.99f), 2147483008);
    EXPECT_EQ(IccFloatToFixed(32768.0f), INT32_MAX);
    EXPECT_EQ(IccFloatToFixed(-32768.0f), INT32_MIN);
    EXPECT_EQ(IccFloatToFixed(3e38f), INT32_MAX);
    EXPECT_EQ(IccFloatToFixed(-3e38f), INT32_MIN);
    EXPECT_EQ(IccFloatToFixed(NAN), 0);
}

TEST(IccFloatToFixed, TurnsEveryFixedNumberOfAFloatBack) {
    for (int64_t value = INT32_MIN; value <= INT32_MAX; value += 65521) {
        const float number = IccFixedToFloat(static_cast<int32_t>(value));
        ASSERT_EQ(IccFixedToFloat(IccFloatToFixed(number)), number) << value;
        if (std::abs(value) < 1 << 24) {
            ASSERT_EQ(IccFloatToFixed(number), value);
        }
    }
}

TEST(IccReverseBytes, ReversesWithinEachElement) {
    const uint8_t source[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    uint8_t target[12] = {};
    EXPECT_EQ(IccReverseBytes(target, source, 4, 3), 12u);
    EXPECT_EQ(Bytes(target, target + 12), (Bytes{4, 3, 2, 1, 8, 7, 6, 5, 12, 11, 10, 9}));
    EXPECT_EQ(IccReverseBytes(target, source, 3, 4), 12u);
    EXPECT_EQ(Bytes(target, target + 12), (Bytes{3, 2, 1, 6, 5, 4, 9, 8, 7, 12, 11, 10}));
    EXPECT_EQ(IccReverseBytes(target, source, 2, 1), 2u);
    EXPECT_EQ(Bytes(target, target + 4), (Bytes{2, 1, 1, 6}));
}

TEST(IccReverseBytes, WorksInPlaceForEveryElementSize) {
    for (uint32_t size = 1; size <= 9; ++size) {
        Bytes bytes(size * 5), expected;
        for (size_t at = 0; at < bytes.size(); ++at) bytes[at] = static_cast<uint8_t>(at);
        for (size_t at = 0; at < bytes.size(); at += size)
            for (size_t back = size; back > 0; --back) expected.push_back(bytes[at + back - 1]);
        EXPECT_EQ(IccReverseBytes(bytes.data(), bytes.data(), size, 5), size * 5);
        EXPECT_EQ(bytes, expected) << size;
    }
}

TEST(IccReverseBytes, TakesUnalignedBlocks) {
    Bytes bytes(1 + 2 * 1001);
    for (size_t at = 0; at < bytes.size(); ++at) bytes[at] = static_cast<uint8_t>(at * 5);
    const Bytes before = bytes;
    IccReverseBytes(&bytes[1], &bytes[1], 2, 1001);
    for (size_t at = 1; at < bytes.size(); at += 2) {
        ASSERT_EQ(bytes[at], before[at + 1]);
        ASSERT_EQ(bytes[at + 1], before[at]);
    }
}

TEST(IccReverseBytes, DoesNothingWithoutElements) {
    uint8_t bytes[] = {1, 2};
    EXPECT_EQ(IccReverseBytes(nullptr, bytes, 2, 1), 0u);
    EXPECT_EQ(IccReverseBytes(bytes, nullptr, 2, 1), 0u);
    EXPECT_EQ(IccReverseBytes(bytes, bytes, 0, 1), 0u);
    EXPECT_EQ(IccReverseBytes(bytes, bytes, 2, 0), 0u);
    EXPECT_EQ(bytes[0], 1);
}

TEST(IccLutBlock, SizesItsParts) {
    const LutSizes sizes = sizesOf({4, 3, 33, 2, 17, 9});
    EXPECT_EQ(sizes.inputTables, 4u * 17 * 2);
    EXPECT_EQ(sizes.clut, 1185921u * 3 * 2);
    EXPECT_EQ(sizes.outputTables, 3u * 9 * 2);
    EXPECT_EQ(sizes.tables(), sizes.inputTables + sizes.clut + sizes.outputTables);
}

TEST(IccLutBlock, NeverWrapsASize) {
    EXPECT_EQ(sizesOf({255, 255, 255, 2}).tables(), UINT64_MAX);
    EXPECT_EQ(sizesOf({16, 16, 16, 1}).clut, UINT64_MAX);  // 2^68
    EXPECT_EQ(sizesOf({8, 1, 16, 1}).clut, uint64_t{1} << 32);
    constexpr int32_t kMost = INT32_MAX;
    EXPECT_EQ(sizesOf({kMost, kMost, kMost, 255, kMost, kMost}).tables(), UINT64_MAX);
    EXPECT_EQ(sizesOf({-1, -1, -1, -1, -1, -1}).tables(), 0u);
}

TEST(IccLutBlock, StandsInOneBlockWithEmptyTables) {
    const auto lut = makeLut({4, 4, 5, 1});
    ASSERT_TRUE(lut);
    const auto* const bytes = reinterpret_cast<const uint8_t*>(lut.get());
    EXPECT_EQ(+lut->inputTables, bytes + sizeof(IccLut));
    EXPECT_EQ(+lut->clut, bytes + sizeof(IccLut) + 1024);
    EXPECT_EQ(+lut->outputTables, bytes + sizeof(IccLut) + 1024 + 2500);
    EXPECT_EQ(+lut->workTable, nullptr);
    EXPECT_EQ(+lut->inputEntries, 256);
    EXPECT_EQ(+lut->outputEntries, 256);
    for (int at = 0; at < 9; ++at) EXPECT_EQ(+lut->matrix[at], at % 4 == 0 ? 1.0f : 0.0f);
    for (size_t at = 0; at < 1024 + 2500 + 1024; ++at) ASSERT_EQ(bytes[sizeof(IccLut) + at], 0);
}

TEST(IccLutBlock, IsRefusedWhenItCannotBeMade) {
    EXPECT_FALSE(makeLut({-1, 3, 2, 1}));
    EXPECT_FALSE(makeLut({3, 3, 2, 256}));
    EXPECT_FALSE(makeLut({8, 1, 16, 1}));
    EXPECT_FALSE(makeLut({255, 255, 255, 2}));
}

TEST(IccTagCodecs, ReadTheSeventeenTagsInTheirOrder) {
    std::vector<uint32_t> readable;
    for (const TagCodec& codec : tagCodecs())
        if (codec.decode) readable.push_back(codec.signature);
    EXPECT_EQ(readable, std::vector<uint32_t>(std::begin(test::kLoadableTags),
                                              std::end(test::kLoadableTags)));
    EXPECT_EQ(findCodec(fourcc("kTRC")), nullptr);
}

TEST(IccTagCodecs, ListEachTagOnce) {
    std::set<uint32_t> seen;
    for (const TagCodec& codec : tagCodecs()) {
        EXPECT_TRUE(seen.insert(codec.signature).second);
        EXPECT_EQ(codec.encode == nullptr, codec.writers == kNoWriter);
    }
}

// One reading for all tags

class IccProfileFile : public testing::Test {
protected:
    ProfileFile open(const Bytes& bytes) {
        test::writeFile(path_, bytes);
        return openProfile(path_.c_str());
    }
    test::TempFolder folder_;
    std::string path_ = folder_.path("profile.icc");
};

TEST_F(IccProfileFile, LoadsWhatLoadingFromTheFileLoads) {
    const std::vector<test::Tag> choices = {
        {"A2B0", test::LutElement{.inputs = 1, .outputs = 1, .seed = 1}.bytes()},
        {"A2B0", test::LutElement{.inputs = 2, .outputs = 2, .seed = 2}.bytes()},
        {"A2B0", test::element("none")},
        {"desc", test::descriptionElement("first")},
        {"desc", test::element("desc", Bytes(4))},
        {"wtpt", test::xyzElement(0x10000, 0, 0)},
        {"wtpt", test::xyzElement(0x20000, 0, 0)},
        {"rTRC", test::curveElement({1, 2, 3})},
        {"kTRC", test::curveElement({1, 2, 3})},
        {"pseq", test::element("pseq", Bytes(4))}};
    std::mt19937 random(3);
    for (int round = 0; round < 50; ++round) {
        std::vector<test::Tag> tags;
        for (size_t count = random() % 12; count > 0; --count)
            tags.push_back(choices[random() % choices.size()]);
        ProfileFile file = open(test::profileBytes(tags));
        const ProfilePtr single = loadHeader(path_.c_str());
        ASSERT_TRUE(file && single);
        const IccProfile& all = *file.profile;
        ASSERT_EQ(all.tagCount, single->tagCount);
        EXPECT_STREQ(all.path, single->path);
        for (int32_t at = 0; at < single->tagCount; ++at) {
            const uint32_t signature = single->tags[at].signature;
            const bool loaded = loadTag(file, signature) == TagResult::loaded;
            ASSERT_EQ(loaded, loadTag(*single, signature) != nullptr) << round << ' ' << at;
        }
        for (int32_t at = 0; at < all.tagCount; ++at) {
            const auto* const a = static_cast<const uint8_t*>(all.tags[at].data);
            const auto* const b = static_cast<const uint8_t*>(single->tags[at].data);
            ASSERT_EQ(a == nullptr, b == nullptr) << round << ' ' << at;
            // The first bytes tell the variants apart and hold no pointer.
            if (a) {
                ASSERT_EQ(std::memcmp(a, b, 6), 0) << round << ' ' << at;
            }
        }
    }
}

TEST_F(IccProfileFile, IsOfOneMoment) {
    ProfileFile file = open(test::profileBytes({{"desc", test::descriptionElement("first")}}));
    test::writeFile(path_, test::profileBytes({{"desc", test::descriptionElement("other")}}));
    ASSERT_EQ(loadTag(file, fourcc("desc")), TagResult::loaded);
    EXPECT_STREQ(static_cast<const char*>(file.profile->tags[0].data), "first");
}

TEST_F(IccProfileFile, FindsATagAmongAMillion) {
    Bytes bytes = test::profileHeader();
    constexpr uint32_t kCount = 1000000;
    test::append32(bytes, kCount);
    for (uint32_t at = 0; at < kCount; ++at) {
        test::append(bytes, at % 2 ? "A2B0" : "desc");
        test::append32(bytes, 132 + kCount * 12);
        test::append32(bytes, 94);
    }
    const Bytes description = test::descriptionElement("abc");
    bytes.insert(bytes.end(), description.begin(), description.end());
    ProfileFile file = open(bytes);
    ASSERT_TRUE(file);
    EXPECT_EQ(file.profile->tagCount, static_cast<int32_t>(kCount));
    EXPECT_EQ(loadHeader(path_.c_str())->tagCount, static_cast<int32_t>(kCount));
    ASSERT_EQ(loadTag(file, fourcc("desc")), TagResult::loaded);
    EXPECT_EQ(loadTag(file, fourcc("A2B0")), TagResult::absent);
    EXPECT_STREQ(static_cast<const char*>(file.profile->tags[0].data), "abc");
}

TEST_F(IccProfileFile, ThatIsMissingSaysWhy) {
    EXPECT_FALSE(openProfile(path_.c_str()));
    EXPECT_NE(platform::lastError(), 0u);
}

// Claims beyond the end

TEST_F(IccProfileFile, BelievesNoMoreBeyondItsEndThanTheToleranceForAllTagsTogether) {
    // Each of these curves claims 40 MiB that are not there.
    std::vector<test::Tag> tags;
    Bytes curve = test::element("curv");
    test::append32(curve, 20u << 20);
    for (const char* name : {"rTRC", "gTRC", "bTRC"}) tags.push_back({name, curve});
    ProfileFile file = open(test::profileBytes(tags));
    ASSERT_TRUE(file);
    EXPECT_EQ(loadTag(file, fourcc("gTRC")), TagResult::absent);
    EXPECT_EQ(loadTag(file, fourcc("rTRC")), TagResult::loaded);
    EXPECT_EQ(loadTag(file, fourcc("bTRC")), TagResult::absent);
    EXPECT_EQ(loadTag(*file.profile, fourcc("bTRC")), nullptr);
}

// Parsing in memory

TEST(IccParse, GivesWhatTheFileGives) {
    const Bytes bytes = test::profileBytes({{"A2B0", test::LutElement{.seed = 4}.bytes()},
                                            {"cprt", test::textElement("text")}});
    const ProfilePtr profile = parseHeader(bytes);
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->tagCount, 2);
    const auto text = decodeTag(*profile, bytes, fourcc("cprt"));
    EXPECT_STREQ(static_cast<const char*>(text.get()), "text");
    EXPECT_TRUE(decodeTag(*profile, bytes, fourcc("A2B0")));
    EXPECT_FALSE(decodeTag(*profile, bytes, fourcc("desc")));
    EXPECT_EQ(profile->tags[1].data, nullptr);
}

// Damage

uint32_t sumOf(const void* bytes, uint64_t size) {  // reads every byte
    uint32_t sum = 0;
    for (uint64_t at = 0; at < size; ++at) sum += static_cast<const uint8_t*>(bytes)[at];
    return sum;
}

uint32_t readAll(const Bytes& bytes, uint64_t claimTolerance) {
    const ProfilePtr profile = parseHeader(bytes, claimTolerance);
    if (!profile) return 0;
    uint32_t sum = sumOf(&profile->header, sizeof(IccHeader));
    for (const IccTagEntry& tag : tagsOf(*profile)) sum += tag.offset + tag.size;
    for (const TagCodec& codec : tagCodecs()) {
        const auto data = decodeTag(*profile, bytes, codec.signature, claimTolerance);
        if (!data) continue;
        if (codec.encode && codec.writers == kFullWriters && codec.signature != fourcc("wtpt") &&
            codec.signature != fourcc("bkpt")) {
            const auto& lut = *static_cast<const IccLut*>(data.get());
            sum += sumOf(lut.inputTables, sizesOf(shapeOf(lut)).tables());
        }
    }
    return sum;
}

constexpr uint64_t kSmallTolerance = 1 << 16;

Bytes oneOfEverything() {
    return test::profileBytes(
        {{"desc", test::descriptionElement("description")},
         {"cprt", test::textElement("copyright")},
         {"wtpt", test::xyzElement(0xf6d6, 0x10000, 0xd32d)},
         {"bTRC", test::curveElement({0, 100, 1000, 10000, 65535})},
         {"A2B0", test::LutElement{.inputs = 2, .outputs = 1, .gridPoints = 2}.bytes()},
         {"B2A1", test::LutElement{.inputs = 1, .outputs = 2, .gridPoints = 3, .wide = true,
                                   .inputEntries = 3, .outputEntries = 2}.bytes()}});
}

TEST(IccDamage, EveryTruncationStaysInsideItsMemory) {
    const Bytes good = oneOfEverything();
    EXPECT_NE(readAll(good, kClaimTolerance), 0u);
    test::forEachTruncation(good, good.size(),
                            [](const Bytes& bytes) { readAll(bytes, kClaimTolerance); });
}

TEST(IccDamage, ThousandsOfVariantsStayInsideTheirMemory) {
    const Bytes good = oneOfEverything();
    const uint32_t sum = readAll(good, kSmallTolerance);
    uint32_t different = 0;
    for (uint32_t seed = 0; seed < 20000; ++seed)
        different += readAll(test::mutated(good, seed), kSmallTolerance) != sum;
    EXPECT_GT(different, 10000u);
    for (uint32_t seed = 0; seed < 200; ++seed)
        readAll(test::mutated(good, seed), kClaimTolerance);
}

// The bytes that matter most are few: counts, offsets, types, channel numbers.
TEST(IccDamage, ExtremeValuesInEveryFieldStayInsideTheirMemory) {
    const Bytes good = oneOfEverything();
    std::vector<size_t> fields;
    for (size_t at = 128; at < 132 + 6 * 12; at += 4) fields.push_back(at);
    for (const auto& [name, offset, size] : test::directoryOf(good))
        for (size_t at = offset; at < offset + std::min(size, 56u); at += 1) fields.push_back(at);
    for (const size_t field : fields)
        for (const uint32_t value : {0u, 1u, 2u, 0x7fu, 0xffu, 0x100u, 0xffffu, 0x7fffffffu,
                                     0x80000000u, 0xfffffff8u, 0xffffffffu}) {
            Bytes bytes = good;
            bytes.resize(bytes.size() + 4);
            test::put32(bytes, field, value);
            readAll(bytes, kSmallTolerance);
        }
}

}  // namespace
}  // namespace ko::icc
