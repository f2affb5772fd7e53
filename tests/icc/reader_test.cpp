// Reading profile files through the exported functions.
#include <gtest/gtest.h>

#include <cstring>
#include <map>

#include "tests/support/profiles.h"

namespace ko::test {
namespace {

class IccReader : public testing::Test {
protected:
    ProfileHandle load(const Bytes& bytes) {
        writeFile(path_, bytes);
        return ProfileHandle(jIccLoadHeader(path_.c_str()));
    }
    ProfileHandle loadWith(const std::vector<Tag>& tags) { return load(profileBytes(tags)); }

    template <class T>
    static T* tag(const ProfileHandle& profile, uint32_t wanted) {
        return static_cast<T*>(jIccLoadTag(profile.get(), wanted));
    }

    TempFolder folder_;
    std::string path_ = folder_.path("profile.icc");
};

uint16_t entry16(const void* table, size_t at) {
    uint16_t value;
    std::memcpy(&value, static_cast<const uint8_t*>(table) + at * 2, 2);
    return value;
}

// Every multi-byte field of a header and directory turned round, as a little-endian writer
// leaves them.
Bytes inHostOrder(Bytes bytes) {
    const auto reverse = [&](size_t at, size_t size) {
        std::reverse(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                     bytes.begin() + static_cast<std::ptrdiff_t>(at + size));
    };
    const uint32_t count = get32(bytes, 128);
    for (size_t at = 0; at < 84; at += 4)
        if (at < 24 || at >= 36) reverse(at, 4);
    for (size_t at = 24; at < 36; at += 2) reverse(at, 2);
    for (size_t at = 128; at < 132 + count * 12; at += 4) reverse(at, 4);
    return bytes;
}

// The header

TEST_F(IccReader, ReadsABigEndianHeaderIntoHostOrder) {
    const auto profile = loadWith({{"desc", descriptionElement("x")}});
    ASSERT_TRUE(profile);
    const IccHeader& header = profile->header;
    EXPECT_EQ(profile->swapBytes, 1u);
    EXPECT_STREQ(profile->path, path_.c_str());
    EXPECT_EQ(header.profileSize, readFile(path_).size());
    EXPECT_EQ(header.cmmType, signature("test"));
    EXPECT_EQ(header.version, 0x02100000u);
    EXPECT_EQ(header.deviceClass, signature("prtr"));
    EXPECT_EQ(header.colourSpace, signature("CMYK"));
    EXPECT_EQ(header.connectionSpace, signature("Lab "));
    const uint16_t dateTime[] = {2001, 2, 3, 4, 5, 6};
    EXPECT_EQ(std::memcmp(header.dateTime, dateTime, sizeof dateTime), 0);
    EXPECT_EQ(header.magic, signature("acsp"));
    EXPECT_EQ(header.platform, signature("MSFT"));
    EXPECT_EQ(header.manufacturer, signature("makr"));
    EXPECT_EQ(header.model, signature("modl"));
    EXPECT_EQ(header.illuminant[0], 0xf6d6);
    EXPECT_EQ(header.illuminant[2], 0xd32d);
    EXPECT_EQ(header.creator, signature("crea"));
}

TEST_F(IccReader, ReversesFlagsAttributesAndIntentByFields) {
    Bytes header = profileHeader();
    put32(header, 44, 0x00000003);
    put32(header, 56, 0x01020304);
    put32(header, 60, 0x05060708);
    put32(header, 64, 2);
    const auto profile = load(profileBytes({}, header));
    EXPECT_EQ(profile->header.profileFlags, 3u);
    EXPECT_EQ(profile->header.attributes[0], 0x01020304u);
    EXPECT_EQ(profile->header.attributes[1], 0x05060708u);
    EXPECT_EQ(profile->header.renderingIntent, 2u);
}

TEST_F(IccReader, KeepsTheReservedBytesAsTheyAre) {
    Bytes header = profileHeader();
    for (size_t at = 84; at < 128; ++at) header[at] = static_cast<uint8_t>(at);
    const auto profile = load(profileBytes({}, header));
    for (size_t at = 0; at < 44; ++at) EXPECT_EQ(profile->header.reserved[at], 84 + at);
}

TEST_F(IccReader, ReadsAFileWithoutTheMagicInHostOrder) {
    const Bytes bytes = inHostOrder(profileBytes({{"wtpt", xyzElement(1, 2, 3)}}));
    const auto profile = load(bytes);
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->swapBytes, 0u);
    EXPECT_EQ(std::memcmp(&profile->header, bytes.data(), 128), 0);
    EXPECT_EQ(profile->header.version, 0x02100000u);
    ASSERT_EQ(profile->tagCount, 1);
    EXPECT_EQ(profile->tags[0].signature, signature("wtpt"));
    EXPECT_EQ(profile->tags[0].size, 20u);
}

TEST_F(IccReader, AcceptsAnythingInPlaceOfTheMagic) {
    Bytes bytes = inHostOrder(profileBytes({}));
    std::memcpy(&bytes[36], "\0\0\0\0", 4);
    const auto profile = load(bytes);
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->swapBytes, 0u);
}

TEST_F(IccReader, LoadsNoDataWithTheHeader) {
    const auto profile = loadWith({{"desc", descriptionElement("x")}, {"cprt", textElement("y")}});
    ASSERT_EQ(profile->tagCount, 2);
    const auto directory = directoryOf(readFile(path_));
    for (int at = 0; at < 2; ++at) {
        EXPECT_EQ(profile->tags[at].data, nullptr);
        EXPECT_EQ(profile->tags[at].offset, directory[at].offset);
        EXPECT_EQ(profile->tags[at].size, directory[at].size);
    }
}

TEST_F(IccReader, RefusesAFileShorterThanAHeader) {
    for (const size_t size : {0u, 1u, 36u, 40u, 127u}) {
        Bytes bytes = profileHeader();
        bytes.resize(size);
        EXPECT_FALSE(load(bytes)) << size;
    }
}

TEST_F(IccReader, ReadsABareHeaderAsAProfileWithoutTags) {
    const auto profile = load(profileHeader());
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->tagCount, 0);
    EXPECT_EQ(profile->tags, nullptr);
    EXPECT_EQ(tag<void>(profile, signature("A2B0")), nullptr);
}

TEST_F(IccReader, RefusesWhatCannotBeOpened) {
    EXPECT_EQ(jIccLoadHeader(folder_.path("missing.icc").c_str()), nullptr);
    EXPECT_EQ(jIccLoadHeader(folder_.folder().string().c_str()), nullptr);
    EXPECT_EQ(jIccLoadHeader(""), nullptr);
    EXPECT_EQ(jIccLoadHeader(nullptr), nullptr);
}

TEST_F(IccReader, RefusesAPathThatDoesNotFitTheRecord) {
    EXPECT_EQ(jIccLoadHeader(std::string(260, 'x').c_str()), nullptr);
    EXPECT_EQ(jIccLoadHeader(std::string(10000, 'x').c_str()), nullptr);
}

TEST_F(IccReader, ReadsADirectoryCutShortAsZeros) {
    Bytes bytes = profileBytes({{"desc", {}}, {"cprt", {}}, {"wtpt", {}}});
    bytes.resize(132 + 12 + 6);
    const auto profile = load(bytes);
    ASSERT_TRUE(profile);
    ASSERT_EQ(profile->tagCount, 3);
    EXPECT_EQ(profile->tags[0].signature, signature("desc"));
    EXPECT_EQ(profile->tags[1].signature, signature("cprt"));
    EXPECT_EQ(profile->tags[1].size, 0u);
    EXPECT_EQ(profile->tags[2].signature, 0u);
    EXPECT_EQ(profile->tags[2].data, nullptr);
}

TEST_F(IccReader, ReadsMoreEntriesThanOneBlockHolds) {
    std::vector<Tag> tags(1000, {"none", {}});
    tags[999] = {"desc", descriptionElement("the last")};
    const auto profile = loadWith(tags);
    ASSERT_EQ(profile->tagCount, 1000);
    EXPECT_EQ(profile->tags[255].signature, signature("none"));
    EXPECT_EQ(profile->tags[256].signature, signature("none"));
    EXPECT_STREQ(tag<const char>(profile, signature("desc")), "the last");
}

TEST_F(IccReader, RefusesACountThatTheFileCannotHold) {
    for (const uint32_t count : {0x7fffffffu, 0x80000000u, 0xffffffffu, 0x10000000u, 6000000u}) {
        Bytes bytes = profileHeader();
        append32(bytes, count);
        EXPECT_FALSE(load(bytes)) << count;
    }
}

TEST_F(IccReader, BelievesACountWithinTheTolerance) {
    Bytes bytes = profileHeader();
    append32(bytes, 5000000);
    const auto profile = load(bytes);
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->tagCount, 5000000);
    EXPECT_EQ(profile->tags[4999999].data, nullptr);
}

// Which tags load

TEST_F(IccReader, LoadsEachOfTheSeventeenTags) {
    const std::map<std::string, Bytes> elements = {
        {"cprt", textElement("c")}, {"desc", descriptionElement("d")}};
    std::vector<std::string> names;
    for (const uint32_t wanted : kLoadableTags)
        names.push_back({static_cast<char>(wanted >> 24), static_cast<char>(wanted >> 16),
                         static_cast<char>(wanted >> 8), static_cast<char>(wanted)});
    std::vector<Tag> tags;
    for (const std::string& name : names)
        tags.push_back({name, elements.count(name)         ? elements.at(name)
                              : name.ends_with("TRC")      ? curveElement({0, 65535})
                              : name.ends_with("XYZ") || name.ends_with("pt") ? xyzElement(1, 2, 3)
                                                           : LutElement{}.bytes()});
    const auto profile = loadWith(tags);
    for (size_t at = 0; at < names.size(); ++at) {
        void* const data = jIccLoadTag(profile.get(), kLoadableTags[at]);
        EXPECT_NE(data, nullptr) << names[at];
        EXPECT_EQ(profile->tags[at].data, data) << names[at];
    }
}

TEST_F(IccReader, DoesNotLoadOtherTagsEvenWhenPresent) {
    const Bytes curve = curveElement({0, 65535}), xyz = xyzElement(1, 2, 3);
    const auto profile = loadWith({{"kTRC", curve},
                                   {"chad", xyz},
                                   {"lumi", xyz},
                                   {"pseq", element("pseq", {0, 0, 0, 0})},
                                   {"A2B3", LutElement{}.bytes()},
                                   {"dmnd", descriptionElement("maker")}});
    for (int at = 0; at < profile->tagCount; ++at)
        EXPECT_EQ(jIccLoadTag(profile.get(), profile->tags[at].signature), nullptr) << at;
}

TEST_F(IccReader, DoesNotLoadATagThatIsAbsent) {
    const auto profile = loadWith({{"desc", descriptionElement("x")}});
    EXPECT_EQ(jIccLoadTag(profile.get(), signature("A2B0")), nullptr);
    EXPECT_EQ(profile->tagCount, 1);
}

TEST_F(IccReader, LoadsNothingWithoutAProfileOrTags) {
    EXPECT_EQ(jIccLoadTag(nullptr, signature("A2B0")), nullptr);
    const ProfileHandle fresh(jIccCreate(0));
    EXPECT_EQ(jIccLoadTag(fresh.get(), signature("A2B0")), nullptr);
}

TEST_F(IccReader, DoesNotLoadATagWhoseElementHasAnotherType) {
    const auto profile = loadWith({{"wtpt", element("curv", Bytes(12))},
                                   {"rTRC", xyzElement(1, 2, 3)},
                                   {"desc", textElement("x")},
                                   {"cprt", descriptionElement("x")},
                                   {"A2B0", element("mft3", Bytes(2000))},
                                   {"B2A0", element("mAB ", Bytes(2000))},
                                   {"bkpt", element("xyz ", Bytes(12))}});
    for (int at = 0; at < profile->tagCount; ++at) {
        EXPECT_EQ(jIccLoadTag(profile.get(), profile->tags[at].signature), nullptr) << at;
        EXPECT_EQ(profile->tags[at].data, nullptr) << at;
    }
}

TEST_F(IccReader, DoesNotLoadATagBehindTheEndOfTheFile) {
    Bytes bytes = profileBytes({{"wtpt", xyzElement(1, 2, 3)}, {"A2B0", LutElement{}.bytes()}});
    put32(bytes, 136, 0xffffffff);
    put32(bytes, 148, static_cast<uint32_t>(bytes.size()));
    const auto profile = load(bytes);
    EXPECT_EQ(jIccLoadTag(profile.get(), signature("wtpt")), nullptr);
    EXPECT_EQ(jIccLoadTag(profile.get(), signature("A2B0")), nullptr);
}

TEST_F(IccReader, TakesTheFirstOfTwoEntriesWithOneSignature) {
    const auto profile =
        loadWith({{"wtpt", xyzElement(0x10000, 0, 0)}, {"wtpt", xyzElement(0x20000, 0, 0)}});
    const auto* const xyz = tag<float>(profile, signature("wtpt"));
    EXPECT_EQ(xyz[0], 1.0f);
    EXPECT_EQ(profile->tags[0].data, xyz);
    EXPECT_EQ(profile->tags[1].data, nullptr);
}

TEST_F(IccReader, DoesNotLookAtASecondEntryWhenTheFirstDoesNotLoad) {
    const auto profile = loadWith({{"wtpt", element("curv")}, {"wtpt", xyzElement(0x20000, 0, 0)}});
    EXPECT_EQ(jIccLoadTag(profile.get(), signature("wtpt")), nullptr);
}

// That the first block is freed shows in the sanitizer's leak check.
TEST_F(IccReader, LoadingATagAgainReadsItAgain) {
    const auto profile = loadWith({{"A2B0", LutElement{}.bytes()}});
    auto* const first = tag<IccLut>(profile, signature("A2B0"));
    ASSERT_NE(first, nullptr);
    first->gridPoints = 99;
    auto* const second = tag<IccLut>(profile, signature("A2B0"));
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(+second->gridPoints, 2);
    EXPECT_EQ(profile->tagCount, 1);
    EXPECT_EQ(profile->tags[0].data, second);
}

TEST_F(IccReader, KeepsTheLoadedDataWhenLoadingAgainFails) {
    const auto profile = loadWith({{"cprt", textElement("kept")}});
    const auto* const text = tag<const char>(profile, signature("cprt"));
    std::filesystem::remove(path_);
    EXPECT_EQ(jIccLoadTag(profile.get(), signature("cprt")), nullptr);
    EXPECT_EQ(profile->tags[0].data, text);
    EXPECT_STREQ(text, "kept");
}

TEST_F(IccReader, ReadsTheTagFromThePathInTheRecord) {
    const auto profile = loadWith({{"cprt", textElement("old")}});
    const std::string other = folder_.path("other.icc");
    writeFile(other, profileBytes({{"cprt", textElement("new")}}));
    std::strcpy(profile->path, other.c_str());
    EXPECT_STREQ(tag<const char>(profile, signature("cprt")), "new");
}

// Numbers and curves

TEST_F(IccReader, DecodesAWhitePoint) {
    const auto profile = loadWith({{"wtpt", xyzElement(0xf6d6, 0x10000, 0xd32d)}});
    const auto* const xyz = tag<float>(profile, signature("wtpt"));
    EXPECT_EQ(xyz[0], static_cast<float>(0xf6d6 / 65536.0));
    EXPECT_NEAR(xyz[0], 0.9642f, 5e-6f);
    EXPECT_EQ(xyz[1], 1.0f);
    EXPECT_EQ(xyz[2], static_cast<float>(0xd32d / 65536.0));
}

TEST_F(IccReader, DecodesNegativeNumbersAndRoundsToSinglePrecision) {
    const auto profile = loadWith({{"bkpt", xyzElement(0xffff8000, 0x7fffffff, 0x80000000)}});
    const auto* const xyz = tag<float>(profile, signature("bkpt"));
    EXPECT_EQ(xyz[0], -0.5f);
    EXPECT_EQ(xyz[1], 32768.0f);  // 32767.99998 is not a float
    EXPECT_EQ(xyz[2], -32768.0f);
}

TEST_F(IccReader, ReadsOnlyTheFirstTripleOfAnXyzElement) {
    Bytes two = xyzElement(0x10000, 0x20000, 0x30000);
    append32(two, 0x40000);
    const auto profile = loadWith({{"rXYZ", two}});
    const auto* const xyz = tag<float>(profile, signature("rXYZ"));
    EXPECT_EQ(xyz[0], 1.0f);
    EXPECT_EQ(xyz[2], 3.0f);
}

TEST_F(IccReader, DecodesNumbersInHostOrder) {
    Bytes xyz = element("XYZ ");
    for (const uint32_t value : {0x10000u, 0x8000u, 0x4000u})
        append32(xyz, jKoCmykIccRevLong(value));
    Bytes curve = element("curv");
    append32(curve, jKoCmykIccRevLong(2));
    append16(curve, 0x0201);
    append16(curve, 0x0403);
    const auto profile = load(inHostOrder(profileBytes({{"wtpt", xyz}, {"rTRC", curve}})));
    ASSERT_EQ(profile->swapBytes, 0u);
    const auto* const decoded = tag<float>(profile, signature("wtpt"));
    ASSERT_NE(decoded, nullptr);
    EXPECT_EQ(decoded[0], 1.0f);
    EXPECT_EQ(decoded[2], 0.25f);
    const auto* const decodedCurve = tag<IccCurve>(profile, signature("rTRC"));
    ASSERT_NE(decodedCurve, nullptr);
    EXPECT_EQ(decodedCurve->count, 2u);
    EXPECT_EQ(entry16(decodedCurve->entries, 0), 0x0102);
    EXPECT_EQ(entry16(decodedCurve->entries, 1), 0x0304);
}

TEST_F(IccReader, DecodesASampledCurve) {
    const auto profile = loadWith({{"gTRC", curveElement({1, 0x1234, 65535})}});
    const auto* const curve = tag<IccCurve>(profile, signature("gTRC"));
    ASSERT_EQ(curve->count, 3u);
    EXPECT_EQ(entry16(curve->entries, 0), 1);
    EXPECT_EQ(entry16(curve->entries, 1), 0x1234);
    EXPECT_EQ(entry16(curve->entries, 2), 65535);
}

TEST_F(IccReader, DecodesEmptyAndOneEntryCurves) {
    const auto profile = loadWith({{"rTRC", curveElement({})}, {"bTRC", curveElement({0x0233})}});
    EXPECT_EQ(tag<IccCurve>(profile, signature("rTRC"))->count, 0u);
    const auto* const gamma = tag<IccCurve>(profile, signature("bTRC"));
    EXPECT_EQ(gamma->count, 1u);
    EXPECT_EQ(gamma->entries[0], 0x0233);
}

TEST_F(IccReader, ReadsACurveCutShortAsZeros) {
    Bytes bytes = profileBytes({{"rTRC", curveElement({11, 22, 33, 44})}});
    bytes.resize(bytes.size() - 3);
    const auto profile = load(bytes);
    const auto* const curve = tag<IccCurve>(profile, signature("rTRC"));
    ASSERT_EQ(curve->count, 4u);
    EXPECT_EQ(entry16(curve->entries, 1), 22);
    EXPECT_EQ(entry16(curve->entries, 2), 0);  // half of it is missing: 33 was its low byte
    EXPECT_EQ(entry16(curve->entries, 3), 0);
}

TEST_F(IccReader, RefusesACurveThatTheFileCannotHold) {
    for (const uint32_t count : {0xffffffffu, 0x80000000u, 0x7fffffffu, 34000000u}) {
        Bytes curve = curveElement({1, 2});
        put32(curve, 8, count);
        const auto profile = loadWith({{"rTRC", curve}});
        EXPECT_EQ(jIccLoadTag(profile.get(), signature("rTRC")), nullptr) << count;
        EXPECT_EQ(profile->tags[0].data, nullptr);
    }
}

// Texts

TEST_F(IccReader, DecodesTheAsciiPartOfADescription) {
    const auto profile = loadWith({{"desc", descriptionElement("a press")}});
    EXPECT_STREQ(tag<const char>(profile, signature("desc")), "a press");
}

TEST_F(IccReader, AnEmptyDescriptionIsNull) {
    const auto profile = loadWith({{"desc", element("desc", Bytes(4 + 78))}});
    EXPECT_EQ(jIccLoadTag(profile.get(), signature("desc")), nullptr);
}

TEST_F(IccReader, ADescriptionWithoutItsTerminatorEndsAtItsCount) {
    Bytes contents;
    append32(contents, 3);
    append(contents, "abcdef");
    const auto profile = loadWith({{"desc", element("desc", contents)}});
    EXPECT_STREQ(tag<const char>(profile, signature("desc")), "abc");
}

TEST_F(IccReader, RefusesADescriptionThatTheFileCannotHold) {
    for (const uint32_t count : {0xffffffffu, 0x80000000u, 70000000u}) {
        Bytes description = descriptionElement("abc");
        put32(description, 8, count);
        const auto profile = loadWith({{"desc", description}});
        EXPECT_EQ(jIccLoadTag(profile.get(), signature("desc")), nullptr) << count;
    }
}

TEST_F(IccReader, ReadsADescriptionPastTheEndOfTheFileAsFarAsItGoes) {
    Bytes description = descriptionElement("abc");
    put32(description, 8, 60000000);
    const auto profile = loadWith({{"desc", description}});
    EXPECT_STREQ(tag<const char>(profile, signature("desc")), "abc");
}

TEST_F(IccReader, DecodesTextUpToTheElementsSize) {
    const auto profile = loadWith({{"cprt", textElement("public domain")}});
    EXPECT_STREQ(tag<const char>(profile, signature("cprt")), "public domain");
}

TEST_F(IccReader, TextWithoutATerminatorEndsWithItsElement) {
    const auto profile = loadWith({{"cprt", element("text", {'f', 'r', 'e', 'e'})},
                                   {"desc", descriptionElement("behind it")}});
    EXPECT_STREQ(tag<const char>(profile, signature("cprt")), "free");
}

TEST_F(IccReader, TextWithoutContentsIsEmptyAndAShorterElementIsNull) {
    Bytes bytes = profileBytes({{"cprt", element("text")}});
    const auto empty = load(bytes);
    EXPECT_STREQ(tag<const char>(empty, signature("cprt")), "");
    for (const uint32_t size : {0u, 4u, 7u}) {
        put32(bytes, 140, size);
        const auto shorter = load(bytes);
        EXPECT_EQ(jIccLoadTag(shorter.get(), signature("cprt")), nullptr) << size;
    }
}

TEST_F(IccReader, RefusesATextThatTheFileCannotHold) {
    Bytes bytes = profileBytes({{"cprt", textElement("x")}});
    put32(bytes, 140, 0xffffffff);
    const auto profile = load(bytes);
    EXPECT_EQ(jIccLoadTag(profile.get(), signature("cprt")), nullptr);
}

TEST_F(IccReader, KeepsNulBytesWithinTexts) {
    const auto profile = loadWith({{"cprt", element("text", {'a', 0, 'b', 0})}});
    EXPECT_EQ(std::memcmp(tag<const char>(profile, signature("cprt")), "a\0b\0", 4), 0);
}

// LUTs

TEST_F(IccReader, DecodesAnEightBitLut) {
    const LutElement spec{.inputs = 4, .outputs = 3, .gridPoints = 3, .seed = 7};
    const Bytes bytes = spec.bytes();
    const auto profile = loadWith({{"A2B0", bytes}});
    const auto* const lut = tag<IccLut>(profile, signature("A2B0"));
    ASSERT_NE(lut, nullptr);
    EXPECT_EQ(+lut->inputChannels, 4);
    EXPECT_EQ(+lut->outputChannels, 3);
    EXPECT_EQ(+lut->gridPoints, 3);
    EXPECT_EQ(lut->precision, 1);
    EXPECT_EQ(+lut->inputEntries, 256);
    EXPECT_EQ(+lut->outputEntries, 256);
    EXPECT_EQ(+lut->workTable, nullptr);
    EXPECT_EQ(std::memcmp(lut->inputTables, &bytes[48], 4 * 256), 0);
    EXPECT_EQ(std::memcmp(lut->clut, &bytes[48 + 1024], 81 * 3), 0);
    EXPECT_EQ(std::memcmp(lut->outputTables, &bytes[48 + 1024 + 243], 3 * 256), 0);
}

TEST_F(IccReader, DecodesASixteenBitLutIntoHostOrder) {
    const LutElement spec{
        .inputs = 3, .outputs = 4, .gridPoints = 5, .wide = true, .inputEntries = 17,
        .outputEntries = 2, .seed = 8};
    const Bytes bytes = spec.bytes();
    const auto profile = loadWith({{"B2A1", bytes}});
    const auto* const lut = tag<IccLut>(profile, signature("B2A1"));
    ASSERT_NE(lut, nullptr);
    EXPECT_EQ(lut->precision, 2);
    EXPECT_EQ(+lut->inputEntries, 17);
    EXPECT_EQ(+lut->outputEntries, 2);
    size_t at = 52;
    const auto matches = [&](const void* table, size_t entries) {
        for (size_t entry = 0; entry < entries; ++entry, at += 2)
            if (entry16(table, entry) != get16(bytes, at)) return false;
        return true;
    };
    EXPECT_TRUE(matches(lut->inputTables, 3 * 17));
    EXPECT_TRUE(matches(lut->clut, 125 * 4));
    EXPECT_TRUE(matches(lut->outputTables, 4 * 2));
    EXPECT_EQ(at, bytes.size());
}

TEST_F(IccReader, KeepsTheTablesBehindTheRecordInOneBlock) {
    const auto profile = loadWith({{"A2B0", LutElement{}.bytes()}});
    const auto* const lut = tag<IccLut>(profile, signature("A2B0"));
    const auto* const bytes = reinterpret_cast<const uint8_t*>(lut);
    EXPECT_EQ(+lut->inputTables, bytes + sizeof(IccLut));
    EXPECT_EQ(+lut->clut, bytes + sizeof(IccLut) + 3 * 256);
    EXPECT_EQ(+lut->outputTables, bytes + sizeof(IccLut) + 3 * 256 + 8 * 3);
}

TEST_F(IccReader, DecodesTheMatrixRowByRow) {
    Bytes bytes = LutElement{}.bytes();
    for (uint32_t at = 0; at < 9; ++at) put32(bytes, 12 + at * 4, (at + 1) * 0x8000);
    put32(bytes, 12 + 8 * 4, 0xffff0000);
    const auto profile = loadWith({{"A2B0", bytes}});
    const auto* const lut = tag<IccLut>(profile, signature("A2B0"));
    for (int at = 0; at < 8; ++at) EXPECT_EQ(+lut->matrix[at], static_cast<float>(at + 1) / 2);
    EXPECT_EQ(+lut->matrix[8], -1.0f);
}

TEST_F(IccReader, LeavesSixteenBitEntriesOfAHostOrderFileAlone) {
    Bytes bytes = LutElement{.wide = true, .inputEntries = 2, .outputEntries = 2}.bytes();
    std::reverse(bytes.begin() + 48, bytes.begin() + 50);
    std::reverse(bytes.begin() + 50, bytes.begin() + 52);
    bytes[52] = 0x34;
    bytes[53] = 0x12;
    const auto profile = load(inHostOrder(profileBytes({{"A2B0", bytes}})));
    const auto* const lut = tag<IccLut>(profile, signature("A2B0"));
    ASSERT_NE(lut, nullptr);
    EXPECT_EQ(+lut->inputEntries, 2);
    EXPECT_EQ(entry16(lut->inputTables, 0), 0x1234);
}

TEST_F(IccReader, LoadsLutsOfAnyShapeThatTheFileCanHold) {
    struct Shape {
        uint8_t inputs, outputs, gridPoints;
    };
    for (const auto [inputs, outputs, gridPoints] :
         {Shape{0, 3, 2}, Shape{3, 0, 2}, Shape{3, 3, 0}, Shape{0, 0, 0}, Shape{4, 4, 1},
          Shape{5, 3, 2}, Shape{15, 3, 1}, Shape{1, 255, 2}, Shape{255, 255, 1},
          Shape{255, 1, 0}}) {
        const LutElement spec{.inputs = inputs, .outputs = outputs, .gridPoints = gridPoints};
        const auto profile = loadWith({{"A2B0", spec.bytes()}});
        const auto* const lut = tag<IccLut>(profile, signature("A2B0"));
        ASSERT_NE(lut, nullptr) << int(inputs) << ' ' << int(outputs) << ' ' << int(gridPoints);
        EXPECT_EQ(+lut->inputChannels, inputs);
        EXPECT_EQ(+lut->outputChannels, outputs);
        EXPECT_EQ(+lut->gridPoints, gridPoints);
    }
}

TEST_F(IccReader, LoadsTablesOfNoAndOfOneEntry) {
    for (const uint16_t entries : {uint16_t{0}, uint16_t{1}}) {
        const LutElement spec{.wide = true, .inputEntries = entries, .outputEntries = entries};
        const auto profile = loadWith({{"A2B0", spec.bytes()}});
        const auto* const lut = tag<IccLut>(profile, signature("A2B0"));
        ASSERT_NE(lut, nullptr);
        EXPECT_EQ(+lut->inputEntries, entries);
        EXPECT_EQ(+lut->outputEntries, entries);
    }
}

TEST_F(IccReader, RefusesAGridThatTheFileCannotHold) {
    struct Shape {
        uint8_t inputs, outputs, gridPoints;
    };
    // 16^8 and 2^32 wrap to 0 in 32 bits, 255^255 in any; 33^5 x 4 is 156 MB.
    for (const auto [inputs, outputs, gridPoints] :
         {Shape{8, 1, 16}, Shape{32, 1, 2}, Shape{255, 255, 255}, Shape{64, 4, 2}, Shape{5, 4, 33},
          Shape{15, 15, 9}, Shape{16, 1, 16}}) {
        Bytes bytes = LutElement{}.bytes();
        bytes[8] = inputs;
        bytes[9] = outputs;
        bytes[10] = gridPoints;
        const auto profile = loadWith({{"A2B0", bytes}});
        EXPECT_EQ(jIccLoadTag(profile.get(), signature("A2B0")), nullptr)
            << int(inputs) << ' ' << int(outputs) << ' ' << int(gridPoints);
        EXPECT_EQ(profile->tags[0].data, nullptr);
    }
}

TEST_F(IccReader, ReadsALutCutShortAsZeros) {
    const LutElement spec{.inputs = 4, .outputs = 4, .gridPoints = 3, .seed = 3};
    Bytes bytes = profileBytes({{"A2B0", spec.bytes()}});
    const Bytes whole = bytes;
    bytes.resize(144 + 48 + 1024 + 100);  // into the grid
    const auto profile = load(bytes);
    const auto* const lut = tag<IccLut>(profile, signature("A2B0"));
    ASSERT_NE(lut, nullptr);
    const auto* const grid = static_cast<const uint8_t*>(lut->clut);
    EXPECT_EQ(std::memcmp(grid, &whole[144 + 48 + 1024], 100), 0);
    for (size_t at = 100; at < 81 * 4; ++at) ASSERT_EQ(grid[at], 0) << at;
    const auto* const output = static_cast<const uint8_t*>(lut->outputTables);
    for (size_t at = 0; at < 4 * 256; ++at) ASSERT_EQ(output[at], 0) << at;
}

TEST_F(IccReader, LoadsALutOfTheLargestToleratedClaim) {
    Bytes bytes = LutElement{}.bytes();
    bytes[8] = 3;
    bytes[9] = 4;
    bytes[10] = 255;  // 66,325,500 bytes, all but 2,000 of them missing
    const auto profile = loadWith({{"A2B0", bytes}});
    auto* const lut = tag<IccLut>(profile, signature("A2B0"));
    ASSERT_NE(lut, nullptr);
    EXPECT_EQ(static_cast<const uint8_t*>(lut->clut)[255u * 255 * 255 * 4 - 1], 0);
}

TEST_F(IccReader, DecodesWhateverStandsAtAnOffsetWithinTheDirectory) {
    // The offset points at the signature of the first entry: "curv" is found there.
    Bytes bytes = profileBytes({{"curv", {}}, {"rTRC", {}}});
    put32(bytes, 148, 132);
    const auto profile = load(bytes);
    const auto* const curve = tag<IccCurve>(profile, signature("rTRC"));
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(curve->count, 0u);
}

TEST_F(IccReader, ReadsRealProfiles) {
    for (const char* name : {"AdobeCompat-v2.icc", "sRGB-v2-magic.icc"}) {
        const ProfileHandle profile(jIccLoadHeader(testData(name).c_str()));
        ASSERT_TRUE(profile) << name;
        EXPECT_EQ(profile->header.colourSpace, signature("RGB "));
        EXPECT_NE(jIccLoadTag(profile.get(), signature("desc")), nullptr) << name;
        EXPECT_NE(jIccLoadTag(profile.get(), signature("rXYZ")), nullptr) << name;
        EXPECT_NE(jIccLoadTag(profile.get(), signature("rTRC")), nullptr) << name;
    }
    const ProfileHandle press(jIccLoadHeader(testData("CGATS001Compat-v2-micro.icc").c_str()));
    ASSERT_TRUE(press);
    const auto* const lut = tag<IccLut>(press, signature("A2B0"));
    ASSERT_NE(lut, nullptr);
    EXPECT_EQ(+lut->inputChannels, 4);
    EXPECT_EQ(+lut->outputChannels, 3);
    EXPECT_EQ(lut->precision, 2);
}

}  // namespace
}  // namespace ko::test
