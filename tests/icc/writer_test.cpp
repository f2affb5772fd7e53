// Writing profile files through the exported functions.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/support/profiles.h"

namespace ko::test {
namespace {

using Save = uint32_t (*)(IccProfile*, const char*);

class IccWriter : public testing::Test {
protected:
    // A link as the library's own writers make it.
    ProfileHandle link() {
        ProfileHandle profile(jIccCreate(1));
        bind(profile, "cprt", hostText("copyright"));
        bind(profile, "desc", hostText("abc"));
        bind(profile, "pseq", hostBlock("\0\0\0", 4));
        bind(profile, "A2B0", ramp(hostLut(4, 4, 3, 1)));
        return profile;
    }
    static void bind(const ProfileHandle& profile, const char (&name)[5], void* data) {
        ASSERT_EQ(jIccBindTag(profile.get(), signature(name), data), 1);
    }
    static void* xyz(float x, float y, float z) {
        const float values[] = {x, y, z};
        return hostBlock(values, sizeof values);
    }
    // Different bytes everywhere in the tables.
    static IccLut* ramp(IccLut* lut) {
        auto* const tables = static_cast<uint8_t*>(lut->inputTables);
        const auto* const end = static_cast<uint8_t*>(lut->outputTables) +
                                lut->outputChannels * lut->outputEntries * lut->precision;
        for (std::ptrdiff_t at = 0; at < end - tables; ++at)
            tables[at] = static_cast<uint8_t>(at * 7 + at / 256);
        return lut;
    }
    Bytes saved(Save save, const ProfileHandle& profile) {
        EXPECT_EQ(save(profile.get(), path_.c_str()), 1u);
        return readFile(path_);
    }

    TempFolder folder_;
    std::string path_ = folder_.path("written.icc");
};

using Directory = std::vector<DirectoryEntry>;

std::vector<std::string> namesIn(const Bytes& profile) {
    std::vector<std::string> names;
    for (const DirectoryEntry& entry : directoryOf(profile)) names.push_back(entry.signature);
    return names;
}

using Names = std::vector<std::string>;
const std::string kEmptySlot(4, '\0');

// The file as a whole

TEST_F(IccWriter, WritesALinkInBindingOrder) {
    const Bytes file = saved(jIccSaveLinkProfile, link());
    EXPECT_EQ(get32(file, 128), 4u);
    EXPECT_EQ(namesIn(file), (Names{"cprt", "desc", "pseq", "A2B0"}));
    const Directory directory = directoryOf(file);
    EXPECT_EQ(directory[2].size, 10u);
    EXPECT_EQ(get32(file, 0), file.size());
    uint32_t end = 132 + 4 * 12;
    for (const DirectoryEntry& entry : directory) {
        EXPECT_EQ(entry.offset, end) << entry.signature;
        end = (entry.offset + entry.size + 3) / 4 * 4;
    }
    EXPECT_EQ(end, file.size());
}

TEST_F(IccWriter, LeavesSlotsOfTagsThatItSkipsEmptyAtTheEnd) {
    const ProfileHandle profile(jIccCreate(1));
    bind(profile, "wtpt", xyz(1, 1, 1));  // first, so that its slot is not the last by chance
    bind(profile, "cprt", hostText("c"));
    bind(profile, "desc", hostText("d"));
    bind(profile, "pseq", hostBlock("\0\0\0", 4));
    bind(profile, "A2B0", hostLut(4, 4, 2, 1));
    const Bytes file = saved(jIccSaveLinkProfile, profile);
    EXPECT_EQ(get32(file, 128), 5u);
    EXPECT_EQ(namesIn(file), (Names{"cprt", "desc", "pseq", "A2B0", kEmptySlot}));
    EXPECT_EQ(directoryOf(file)[4], (DirectoryEntry{kEmptySlot, 0, 0}));
}

TEST_F(IccWriter, StartsEveryElementOnAMultipleOfFour) {
    for (const Save save : {jIccSaveProfile, jIccSaveDeviceProfile, jIccSaveLinkProfile}) {
        const ProfileHandle profile(jIccCreate(1));
        for (const char* text : {"", "1", "12", "123"}) {
            bind(profile, "cprt", hostText(text));
            bind(profile, "desc", hostText(text));
            bind(profile, "gamt", hostLut(3, 1, 3, 1));  // an odd number of bytes
            bind(profile, "A2B0", hostLut(1, 1, 3, 1));
            const Bytes file = saved(save, profile);
            EXPECT_EQ(file.size() % 4, 0u);
            EXPECT_EQ(get32(file, 0), file.size());
            for (const DirectoryEntry& entry : directoryOf(file)) EXPECT_EQ(entry.offset % 4, 0u);
        }
    }
}

TEST_F(IccWriter, PadsElementsWithZeros) {
    const ProfileHandle profile(jIccCreate(0));
    bind(profile, "desc", hostText("abc"));
    const Bytes file = saved(jIccSaveProfile, profile);
    EXPECT_EQ(directoryOf(file), (Directory{{"desc", 144, 94}}));
    ASSERT_EQ(file.size(), 144u + 96);
    EXPECT_EQ(file[144 + 94], 0);
    EXPECT_EQ(file[144 + 95], 0);
}

TEST_F(IccWriter, WritesTheHeaderBigEndian) {
    const ProfileHandle profile = link();
    const uint16_t dateTime[] = {2001, 2, 3, 4, 5, 6};
    std::memcpy(profile->header.dateTime, dateTime, sizeof dateTime);
    profile->header.attributes[1] = 0x01020304;
    profile->header.reserved[0] = 0xab;
    const Bytes file = saved(jIccSaveLinkProfile, profile);
    EXPECT_EQ(std::memcmp(&file[4], "Lino", 4), 0);
    EXPECT_EQ(get32(file, 8), 0x02100000u);
    EXPECT_EQ(std::memcmp(&file[12], "linkCMYKCMYK", 12), 0);
    for (size_t at = 0; at < 6; ++at) EXPECT_EQ(get16(file, 24 + at * 2), dateTime[at]);
    EXPECT_EQ(std::memcmp(&file[36], "acspMSFT", 8), 0);
    EXPECT_EQ(get32(file, 60), 0x01020304u);
    EXPECT_EQ(get32(file, 68), 0xf6d6u);
    EXPECT_EQ(get32(file, 72), 0x10000u);
    EXPECT_EQ(get32(file, 76), 0xd32du);
    EXPECT_EQ(file[84], 0xab);
}

TEST_F(IccWriter, LeavesTheProfileInMemoryAsItWas) {
    const ProfileHandle profile = link();
    profile->tags[1].offset = 77;
    profile->tags[1].size = 88;
    profile->header.profileSize = 99;
    const IccHeader header = profile->header;
    const auto* const lut = static_cast<const IccLut*>(profile->tags[3].data);
    const Bytes block(reinterpret_cast<const uint8_t*>(lut),
                      static_cast<const uint8_t*>(lut->outputTables) + 4 * 256);
    (void)saved(jIccSaveLinkProfile, profile);
    EXPECT_EQ(std::memcmp(&header, &profile->header, sizeof header), 0);
    EXPECT_EQ(profile->tagCount, 4);
    EXPECT_EQ(profile->tags[0].offset, 0u);
    EXPECT_EQ(profile->tags[1].offset, 77u);
    EXPECT_EQ(profile->tags[1].size, 88u);
    EXPECT_EQ(std::memcmp(block.data(), lut, block.size()), 0);
}

TEST_F(IccWriter, LeavesASixteenBitGridInMemoryAsItWas) {
    const ProfileHandle profile(jIccCreate(0));
    IccLut* const lut = ramp(hostLut(3, 3, 3, 2));
    bind(profile, "A2B0", lut);
    const auto* const grid = static_cast<const uint8_t*>(lut->clut);
    const Bytes before(grid, grid + 27 * 3 * 2);
    (void)saved(jIccSaveProfile, profile);
    EXPECT_EQ(std::memcmp(before.data(), grid, before.size()), 0);
}

TEST_F(IccWriter, ReplacesALongerFile) {
    writeFile(path_, Bytes(100000, 0xee));
    const Bytes file = saved(jIccSaveLinkProfile, link());
    EXPECT_EQ(get32(file, 0), file.size());
}

TEST_F(IccWriter, WritesTheSameBytesAgain) {
    const ProfileHandle profile = link();
    EXPECT_EQ(saved(jIccSaveLinkProfile, profile), saved(jIccSaveLinkProfile, profile));
}

// Which tags are written

TEST_F(IccWriter, WritesTheTagsOfEachKindOfProfile) {
    const ProfileHandle profile(jIccCreate(0));
    for (const uint32_t tag : kLoadableTags) {
        void* data = hostText("text");
        if (tag == signature("wtpt") || tag == signature("bkpt")) {
            jMemFree(data);
            data = xyz(1, 1, 1);
        } else if (tag == signature("gamt") || (tag & 0xffff00) == 0x324200 ||
                   (tag & 0xffff00) == 0x324100) {  // ?2B?, ?2A?
            jMemFree(data);
            data = hostLut(3, 3, 2, 1);
        }
        ASSERT_EQ(jIccBindTag(profile.get(), tag, data), 1);
    }
    bind(profile, "pseq", hostBlock("\0\0\0", 4));
    bind(profile, "kTRC", hostText("curve"));
    const Names luts = {"A2B0", "A2B1", "A2B2", "B2A0", "B2A1", "B2A2", "gamt"};

    Names general = luts;
    general.insert(general.end(), {"cprt", "desc", "wtpt", "bkpt"});
    general.resize(19, kEmptySlot);  // rXYZ ... bTRC, pseq and kTRC are never written
    EXPECT_EQ(namesIn(saved(jIccSaveProfile, profile)), general);

    Names device = {"A2B0", "A2B1", "A2B2", "A2B1", "A2B2", "B2A0", "B2A1", "B2A2",
                    "B2A2", "gamt", "cprt", "desc", "wtpt", "bkpt"};
    device.resize(19 + 3, kEmptySlot);
    EXPECT_EQ(namesIn(saved(jIccSaveDeviceProfile, profile)), device);

    Names ofLink = {"A2B0", "cprt", "desc", "pseq"};
    ofLink.resize(19, kEmptySlot);
    EXPECT_EQ(namesIn(saved(jIccSaveLinkProfile, profile)), ofLink);
}

TEST_F(IccWriter, ListsTheTablesOfADeviceProfileUnderAllIntents) {
    const ProfileHandle profile(jIccCreate(2));
    bind(profile, "A2B0", ramp(hostLut(4, 3, 3, 1)));
    bind(profile, "B2A1", ramp(hostLut(3, 4, 3, 1)));
    const Directory directory = directoryOf(saved(jIccSaveDeviceProfile, profile));
    ASSERT_EQ(directory.size(), 5u);
    const auto [a, offsetA, sizeA] = directory[0];
    const auto [b, offsetB, sizeB] = directory[3];
    EXPECT_EQ(directory, (Directory{{"A2B0", offsetA, sizeA},
                                    {"A2B1", offsetA, sizeA},
                                    {"A2B2", offsetA, sizeA},
                                    {"B2A1", offsetB, sizeB},
                                    {"B2A2", offsetB, sizeB}}));
    EXPECT_NE(offsetA, offsetB);
    EXPECT_EQ(sizeA, 48u + 4 * 256 + 81 * 3 + 3 * 256);
}

TEST_F(IccWriter, DoesNotWriteEntriesWithoutData) {
    const ProfileHandle profile(jIccCreate(0));
    bind(profile, "A2B0", nullptr);
    bind(profile, "desc", hostText("x"));
    EXPECT_EQ(namesIn(saved(jIccSaveDeviceProfile, profile)), (Names{"desc"}));
}

TEST_F(IccWriter, WritesAProfileWhoseTagsItAllSkips) {
    const ProfileHandle profile(jIccCreate(0));
    bind(profile, "rTRC", hostBlock("\0\0\0", 4));
    const Bytes file = saved(jIccSaveProfile, profile);
    EXPECT_EQ(file.size(), 144u);
    EXPECT_EQ(get32(file, 0), 144u);
    EXPECT_EQ(get32(file, 128), 1u);
    EXPECT_EQ(namesIn(file), Names{kEmptySlot});
}

// Elements

TEST_F(IccWriter, WritesADescriptionWithItsEmptyOtherParts) {
    const ProfileHandle profile(jIccCreate(0));
    bind(profile, "desc", hostText("abc"));
    const Bytes element = elementOf(saved(jIccSaveProfile, profile), "desc");
    EXPECT_EQ(element, descriptionElement("abc"));
    EXPECT_EQ(element.size(), 94u);
}

TEST_F(IccWriter, WritesTextsAsTheyAre) {
    const ProfileHandle profile(jIccCreate(0));
    bind(profile, "cprt", hostText("\x83\x5c two\nlines"));
    EXPECT_EQ(elementOf(saved(jIccSaveProfile, profile), "cprt"),
              textElement("\x83\x5c two\nlines"));
}

TEST_F(IccWriter, WritesAPseqOfTwelveBytesAndRecordsTen) {
    const ProfileHandle profile(jIccCreate(0));
    bind(profile, "pseq", hostBlock("anything", 8));
    bind(profile, "cprt", hostText("x"));
    const Bytes file = saved(jIccSaveLinkProfile, profile);
    EXPECT_EQ(directoryOf(file), (Directory{{"pseq", 156, 10}, {"cprt", 168, 10}}));
    EXPECT_EQ(std::memcmp(&file[156], "pseq\0\0\0\0\0\0\0\0", 12), 0);
}

TEST_F(IccWriter, WritesNumbersRoundedHalfAwayFromZero) {
    const ProfileHandle profile(jIccCreate(0));
    bind(profile, "wtpt", xyz(0.9642f, 1.0f, 0.8249f));
    bind(profile, "bkpt", xyz(-0.5f / 65536, 0.5f / 65536, 0.49f / 65536));
    const Bytes file = saved(jIccSaveProfile, profile);
    EXPECT_EQ(elementOf(file, "wtpt"), xyzElement(0xf6d6, 0x10000, 0xd32d));
    EXPECT_EQ(elementOf(file, "bkpt"), xyzElement(0xffffffff, 1, 0));
}

TEST_F(IccWriter, WritesNumbersBeyondTheFormatAsItsEnds) {
    const ProfileHandle profile(jIccCreate(0));
    bind(profile, "wtpt", xyz(1e30f, -1e30f, NAN));
    bind(profile, "bkpt", xyz(INFINITY, -INFINITY, 32768.0f));
    const Bytes file = saved(jIccSaveProfile, profile);
    EXPECT_EQ(elementOf(file, "wtpt"), xyzElement(0x7fffffff, 0x80000000, 0));
    EXPECT_EQ(elementOf(file, "bkpt"), xyzElement(0x7fffffff, 0x80000000, 0x7fffffff));
}

TEST_F(IccWriter, WritesAnEightBitLut) {
    const ProfileHandle profile(jIccCreate(0));
    IccLut* const lut = ramp(hostLut(3, 4, 3, 1));
    lut->matrix[1] = -0.5f;
    bind(profile, "A2B0", lut);
    const Bytes element = elementOf(saved(jIccSaveProfile, profile), "A2B0");
    ASSERT_EQ(element.size(), 48u + 3 * 256 + 27 * 4 + 4 * 256);
    EXPECT_EQ(std::memcmp(element.data(), "mft1\0\0\0\0\3\4\3\0", 12), 0);
    const uint32_t matrix[] = {0x10000, 0xffff8000, 0, 0, 0x10000, 0, 0, 0, 0x10000};
    for (size_t at = 0; at < 9; ++at) EXPECT_EQ(get32(element, 12 + at * 4), matrix[at]) << at;
    EXPECT_EQ(std::memcmp(&element[48], lut->inputTables, element.size() - 48), 0);
}

TEST_F(IccWriter, WritesASixteenBitLutBigEndian) {
    const ProfileHandle profile(jIccCreate(0));
    IccLut* const lut = ramp(hostLut(3, 3, 2, 2, 5, 3));
    bind(profile, "A2B0", lut);
    const Bytes element = elementOf(saved(jIccSaveProfile, profile), "A2B0");
    const size_t entries = 3 * 5 + 8 * 3 + 3 * 3;
    ASSERT_EQ(element.size(), 52 + entries * 2);
    EXPECT_EQ(std::memcmp(element.data(), "mft2", 4), 0);
    EXPECT_EQ(get16(element, 48), 5);
    EXPECT_EQ(get16(element, 50), 3);
    const auto* const tables = static_cast<const uint8_t*>(lut->inputTables);
    for (size_t at = 0; at < entries; ++at)
        EXPECT_EQ(get16(element, 52 + at * 2), tables[at * 2] | tables[at * 2 + 1] << 8) << at;
}

TEST_F(IccWriter, WritesTheEntriesAnEightBitRecordHas) {
    const ProfileHandle profile(jIccCreate(0));
    bind(profile, "A2B0", ramp(hostLut(1, 1, 2, 1, 2, 3)));
    EXPECT_EQ(elementOf(saved(jIccSaveProfile, profile), "A2B0").size(), 48u + 2 + 2 + 3);
}

TEST_F(IccWriter, WritesTheLowBytesOfChannelCountsAndGrid) {
    const ProfileHandle profile(jIccCreate(0));
    bind(profile, "A2B0", hostLut(1, 2, 257, 1));
    const Bytes element = elementOf(saved(jIccSaveProfile, profile), "A2B0");
    EXPECT_EQ(element[10], 1);
    EXPECT_EQ(element.size(), 48u + 256 + 257 * 2 + 2 * 256);
}

TEST_F(IccWriter, GivesALutOfAnotherPrecisionNoType) {
    const ProfileHandle profile(jIccCreate(0));
    IccLut* const lut = ramp(hostLut(1, 1, 2, 3, 2, 2));
    bind(profile, "A2B0", lut);
    const Bytes element = elementOf(saved(jIccSaveProfile, profile), "A2B0");
    ASSERT_EQ(element.size(), 48u + (2 + 2 + 2) * 3);
    EXPECT_EQ(std::memcmp(element.data(), "\0\0\0\0\0\0\0\0\1\1\2\0", 12), 0);
    const auto* const tables = static_cast<const uint8_t*>(lut->inputTables);
    // Curve entries are reversed, grid entries only when they have two bytes.
    EXPECT_EQ(element[48], tables[2]);
    EXPECT_EQ(element[50], tables[0]);
    EXPECT_EQ(element[54], tables[6]);
    EXPECT_EQ(element[60], tables[14]);
}

TEST_F(IccWriter, WritesALutOfPrecisionZeroWithoutTables) {
    const ProfileHandle profile(jIccCreate(0));
    bind(profile, "A2B0", hostLut(3, 3, 2, 0));
    EXPECT_EQ(elementOf(saved(jIccSaveProfile, profile), "A2B0").size(), 48u);
}

TEST_F(IccWriter, RefusesALutWhoseTablesPassThirtyTwoBits) {
    struct Wild {
        int32_t inputs, outputs, gridPoints, inputEntries;
    };
    const int32_t most = 0x7fffffff;
    for (const auto [inputs, outputs, gridPoints, inputEntries] :
         {Wild{4, 4, 256, 256}, Wild{8, 1, 16, 256}, Wild{most, 1, 2, 256}, Wild{1, most, 4, 256},
          Wild{4, 4, most, 256}, Wild{most, most, most, most}, Wild{3, 3, 2, most}}) {
        const ProfileHandle profile(jIccCreate(0));
        IccLut* const lut = hostLut(3, 3, 2, 2);
        lut->inputChannels = inputs;
        lut->outputChannels = outputs;
        lut->gridPoints = gridPoints;
        lut->inputEntries = inputEntries;
        bind(profile, "A2B0", lut);
        EXPECT_EQ(jIccSaveProfile(profile.get(), path_.c_str()), 0u) << inputs << ' ' << gridPoints;
        EXPECT_FALSE(exists(path_));
    }
}

TEST_F(IccWriter, RefusesALutWithoutTables) {
    const ProfileHandle profile(jIccCreate(0));
    IccLut* const lut = hostLut(3, 3, 2, 1);
    lut->clut = nullptr;
    bind(profile, "A2B0", lut);
    EXPECT_EQ(jIccSaveProfile(profile.get(), path_.c_str()), 0u);
}

TEST_F(IccWriter, TakesCountsBelowZeroAsNone) {
    const ProfileHandle profile(jIccCreate(0));
    IccLut* const lut = hostLut(1, 1, 2, 1);
    lut->inputChannels = -1;
    lut->outputChannels = -5;
    bind(profile, "A2B0", lut);
    const Bytes element = elementOf(saved(jIccSaveProfile, profile), "A2B0");
    EXPECT_EQ(element.size(), 48u);
    EXPECT_EQ(element[8], 255);
}

// Byte order

TEST_F(IccWriter, KeepsTheMixedOrderOfAHostOrderProfile) {
    const ProfileHandle profile(jIccCreate(0));
    profile->swapBytes = 0;
    IccLut* const lut = ramp(hostLut(3, 3, 2, 2, 5, 3));
    lut->matrix[0] = 0.5f;
    bind(profile, "wtpt", xyz(0.5f, 1.0f, 2.0f));
    bind(profile, "desc", hostText("abc"));
    bind(profile, "A2B0", lut);
    const Bytes file = saved(jIccSaveProfile, profile);
    // The header in host order, but for its size, which is big-endian like the directory.
    const auto* const header = reinterpret_cast<const uint8_t*>(&profile->header);
    EXPECT_EQ(std::memcmp(&file[4], header + 4, 124), 0);
    EXPECT_EQ(std::memcmp(&file[36], "psca", 4), 0);
    EXPECT_EQ(get32(file, 0), file.size());
    EXPECT_EQ(get32(file, 128), 3u);
    EXPECT_EQ(namesIn(file), (Names{"wtpt", "desc", "A2B0"}));
    const Bytes point = elementOf(file, "wtpt");
    EXPECT_EQ(get32(point, 8), 0x00800000u);  // 0x8000
    EXPECT_EQ(get32(point, 12), 0x00000100u);
    EXPECT_EQ(elementOf(file, "desc"), descriptionElement("abc"));
    const Bytes element = elementOf(file, "A2B0");
    EXPECT_EQ(get32(element, 12), 0x8000u);
    EXPECT_EQ(get16(element, 48), 5);
    const auto* const tables = static_cast<const uint8_t*>(lut->inputTables);
    EXPECT_EQ(element[52], tables[1]);
    EXPECT_EQ(std::memcmp(&element[52 + 30], lut->clut, 48), 0);
    EXPECT_EQ(element[52 + 30 + 48], static_cast<const uint8_t*>(lut->outputTables)[1]);
}

// Round trips

TEST_F(IccWriter, WritesWhatTheReaderReads) {
    const ProfileHandle profile(jIccCreate(2));
    bind(profile, "cprt", hostText("copyright"));
    bind(profile, "desc", hostText("description"));
    bind(profile, "wtpt", xyz(0.9642f, 1.0f, 0.8249f));
    bind(profile, "A2B0", ramp(hostLut(4, 3, 4, 2, 33, 17)));
    (void)saved(jIccSaveProfile, profile);
    const ProfileHandle loaded(jIccLoadHeader(path_.c_str()));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->header.deviceClass, signature("prtr"));
    EXPECT_STREQ(static_cast<char*>(jIccLoadTag(loaded.get(), signature("cprt"))), "copyright");
    EXPECT_STREQ(static_cast<char*>(jIccLoadTag(loaded.get(), signature("desc"))), "description");
    const auto* const point = static_cast<float*>(jIccLoadTag(loaded.get(), signature("wtpt")));
    EXPECT_EQ(point[0], static_cast<float>(0xf6d6 / 65536.0));
    const auto* const a = static_cast<IccLut*>(profile->tags[3].data);
    const auto* const b = static_cast<IccLut*>(jIccLoadTag(loaded.get(), signature("A2B0")));
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->precision, 2);
    EXPECT_EQ(+b->inputEntries, 33);
    EXPECT_EQ(std::memcmp(a->inputTables, b->inputTables, (4 * 33 + 256 * 3 + 3 * 17) * 2), 0);
}

TEST_F(IccWriter, ALaterLoadReadsTheNewFile) {
    const ProfileHandle profile = link();
    (void)saved(jIccSaveLinkProfile, profile);
    EXPECT_STREQ(profile->path, path_.c_str());
}

TEST_F(IccWriter, SavesALoadedProfileUnderItsOwnPath) {
    (void)saved(jIccSaveLinkProfile, link());
    const ProfileHandle profile(jIccLoadHeader(path_.c_str()));
    ASSERT_NE(jIccLoadTag(profile.get(), signature("desc")), nullptr);
    EXPECT_EQ(jIccSaveLinkProfile(profile.get(), profile->path), 1u);
    EXPECT_EQ(namesIn(readFile(path_)), Names{"desc"});
}

// Failure

TEST_F(IccWriter, RefusesAProfileWithoutTagsButTakesThePath) {
    for (const Save save : {jIccSaveProfile, jIccSaveDeviceProfile, jIccSaveLinkProfile}) {
        const ProfileHandle profile(jIccCreate(0));
        EXPECT_EQ(save(profile.get(), path_.c_str()), 0u);
        EXPECT_STREQ(profile->path, path_.c_str());
        EXPECT_FALSE(exists(path_));
    }
}

TEST_F(IccWriter, RefusesAProfileWhoseTagsHaveNoData) {
    writeFile(path_, profileBytes({{"desc", descriptionElement("x")}}));
    const ProfileHandle profile(jIccLoadHeader(path_.c_str()));
    const std::string other = folder_.path("other.icc");
    EXPECT_EQ(jIccSaveProfile(profile.get(), other.c_str()), 0u);
    EXPECT_STREQ(profile->path, other.c_str());
    EXPECT_FALSE(exists(other));
}

TEST_F(IccWriter, RefusesNoProfile) {
    for (const Save save : {jIccSaveProfile, jIccSaveDeviceProfile, jIccSaveLinkProfile})
        EXPECT_EQ(save(nullptr, path_.c_str()), 0u);
    EXPECT_FALSE(exists(path_));
}

TEST_F(IccWriter, RefusesAPathThatDoesNotFitTheRecord) {
    const ProfileHandle profile = link();
    std::strcpy(profile->path, "as it was");
    EXPECT_EQ(jIccSaveLinkProfile(profile.get(), std::string(260, 'x').c_str()), 0u);
    EXPECT_EQ(jIccSaveLinkProfile(profile.get(), nullptr), 0u);
    EXPECT_STREQ(profile->path, "as it was");
}

TEST_F(IccWriter, ReportsSuccessWhenTheFileCannotBeCreated) {
    const std::string missing = (folder_.folder() / "missing" / "link.icc").string();
    const ProfileHandle profile = link();
    EXPECT_EQ(jIccSaveLinkProfile(profile.get(), missing.c_str()), 1u);
    EXPECT_FALSE(exists(missing));
    EXPECT_STREQ(profile->path, missing.c_str());
}

}  // namespace
}  // namespace ko::test
