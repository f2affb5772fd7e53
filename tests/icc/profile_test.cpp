// The profile object through the exported functions.
#include <gtest/gtest.h>

#include <cstring>
#include <ctime>

#include "tests/support/profiles.h"

namespace ko::test {
namespace {

int32_t tagIndex(const IccProfile& profile, uint32_t wanted) {
    for (int32_t at = 0; at < profile.tagCount; ++at)
        if (profile.tags[at].signature == wanted) return at;
    return -1;
}

TEST(IccCreate, MakesACmykLinkWithoutTags) {
    const ProfileHandle profile(jIccCreate(0));
    ASSERT_TRUE(profile);
    const IccHeader& header = profile->header;
    EXPECT_STREQ(profile->path, "");
    EXPECT_EQ(profile->swapBytes, 1u);
    EXPECT_EQ(profile->tagCount, 0);
    EXPECT_EQ(profile->tags, nullptr);
    EXPECT_EQ(header.profileSize, 0u);
    EXPECT_EQ(header.cmmType, signature("Lino"));
    EXPECT_EQ(header.version, 0x02100000u);
    EXPECT_EQ(header.deviceClass, signature("link"));
    EXPECT_EQ(header.colourSpace, signature("CMYK"));
    EXPECT_EQ(header.connectionSpace, signature("CMYK"));
    EXPECT_EQ(header.magic, signature("acsp"));
    EXPECT_EQ(header.platform, signature("MSFT"));
    EXPECT_EQ(header.profileFlags, 0u);
    EXPECT_EQ(header.manufacturer, signature("none"));
    EXPECT_EQ(header.model, signature("none"));
    EXPECT_EQ(header.attributes[0], 0u);
    EXPECT_EQ(header.attributes[1], 0u);
    EXPECT_EQ(header.renderingIntent, 0u);
    EXPECT_EQ(header.illuminant[0], 0xf6d6);
    EXPECT_EQ(header.illuminant[1], 0x10000);
    EXPECT_EQ(header.illuminant[2], 0xd32d);
    EXPECT_EQ(header.creator, 0u);
    for (const uint8_t byte : header.reserved) EXPECT_EQ(byte, 0);
}

TEST(IccCreate, WithFlag2MakesAPrinterProfile) {
    const ProfileHandle profile(jIccCreate(2));
    EXPECT_EQ(profile->header.deviceClass, signature("prtr"));
    EXPECT_EQ(profile->header.colourSpace, signature("CMYK"));
    EXPECT_EQ(profile->header.connectionSpace, signature("Lab "));
    EXPECT_EQ(profile->header.cmmType, signature("Lino"));
    EXPECT_EQ(profile->header.manufacturer, signature("none"));
    EXPECT_EQ(profile->header.creator, 0u);
}

TEST(IccCreate, WithFlag16NamesTheOtherMaker) {
    const ProfileHandle profile(jIccCreate(16));
    EXPECT_EQ(profile->header.cmmType, signature("ZVQR"));
    EXPECT_EQ(profile->header.manufacturer, signature("ZEVO"));
    EXPECT_EQ(profile->header.model, signature("ZEVO"));
    EXPECT_EQ(profile->header.creator, signature("ZEVO"));
    EXPECT_EQ(profile->header.deviceClass, signature("link"));
}

TEST(IccCreate, IgnoresOtherFlags) {
    const ProfileHandle plain(jIccCreate(0)), odd(jIccCreate(~(2u | 16u)));
    std::memcpy(odd->header.dateTime, plain->header.dateTime, sizeof plain->header.dateTime);
    EXPECT_EQ(std::memcmp(&plain->header, &odd->header, sizeof(IccHeader)), 0);
}

TEST(IccCreate, StampsTheLocalDateAndTime) {
    const std::time_t before = std::time(nullptr);
    const ProfileHandle profile(jIccCreate(0));
    const std::time_t after = std::time(nullptr);
    const uint16_t* stamp = profile->header.dateTime;
    std::tm parts{};
    parts.tm_year = stamp[0] - 1900;
    parts.tm_mon = stamp[1] - 1;
    parts.tm_mday = stamp[2];
    parts.tm_hour = stamp[3];
    parts.tm_min = stamp[4];
    parts.tm_sec = stamp[5];
    parts.tm_isdst = -1;
    const std::time_t stamped = std::mktime(&parts);
    EXPECT_GE(stamped, before);
    EXPECT_LE(stamped, after);
}

TEST(IccBindTag, AppendsANewEntryWithoutOffsetAndSize) {
    const ProfileHandle profile(jIccCreate(0));
    void* const first = hostText("first");
    void* const second = hostText("second");
    ASSERT_EQ(jIccBindTag(profile.get(), signature("cprt"), first), 1);
    ASSERT_EQ(jIccBindTag(profile.get(), signature("desc"), second), 1);
    ASSERT_EQ(profile->tagCount, 2);
    EXPECT_EQ(profile->tags[0].signature, signature("cprt"));
    EXPECT_EQ(profile->tags[0].data, first);
    EXPECT_EQ(profile->tags[1].signature, signature("desc"));
    EXPECT_EQ(profile->tags[1].data, second);
    EXPECT_EQ(profile->tags[1].offset, 0u);
    EXPECT_EQ(profile->tags[1].size, 0u);
}

// That the first block is freed shows in the sanitizer's leak check.
TEST(IccBindTag, ReplacesTheDataOfAnExistingEntry) {
    const ProfileHandle profile(jIccCreate(0));
    void* const second = hostText("second");
    jIccBindTag(profile.get(), signature("desc"), hostText("first"));
    profile->tags[0].offset = 1234;
    profile->tags[0].size = 56;
    EXPECT_EQ(jIccBindTag(profile.get(), signature("desc"), second), 1);
    EXPECT_EQ(profile->tagCount, 1);
    EXPECT_EQ(profile->tags[0].data, second);
    EXPECT_EQ(profile->tags[0].offset, 1234u);
    EXPECT_EQ(profile->tags[0].size, 56u);
}

TEST(IccBindTag, LeavesABlockThatIsAlreadyBoundAlone) {
    const ProfileHandle profile(jIccCreate(0));
    void* const text = hostText("same");
    jIccBindTag(profile.get(), signature("desc"), text);
    EXPECT_EQ(jIccBindTag(profile.get(), signature("desc"), text), 1);
    EXPECT_STREQ(static_cast<const char*>(profile->tags[0].data), "same");
}

TEST(IccBindTag, TakesAnySignature) {
    const ProfileHandle profile(jIccCreate(0));
    EXPECT_EQ(jIccBindTag(profile.get(), 0, hostText("")), 1);
    EXPECT_EQ(jIccBindTag(profile.get(), 0xffffffff, hostText("")), 1);
    EXPECT_EQ(profile->tagCount, 2);
}

TEST(IccBindTag, RefusesNoProfile) {
    EXPECT_EQ(jIccBindTag(nullptr, signature("desc"), nullptr), 0);
}

TEST(IccUnbindTag, RemovesTheEntryAndKeepsTheOrderOfTheOthers) {
    const ProfileHandle profile(jIccCreate(0));
    for (const uint32_t tag : {signature("desc"), signature("cprt"), signature("pseq")})
        jIccBindTag(profile.get(), tag, hostText("text"));
    EXPECT_EQ(jIccUnbindTag(profile.get(), signature("cprt")), 1);
    ASSERT_EQ(profile->tagCount, 2);
    EXPECT_EQ(tagIndex(*profile, signature("desc")), 0);
    EXPECT_EQ(tagIndex(*profile, signature("pseq")), 1);
}

TEST(IccUnbindTag, RemovesTheLastTagOfAll) {
    const ProfileHandle profile(jIccCreate(0));
    jIccBindTag(profile.get(), signature("desc"), hostText("text"));
    EXPECT_EQ(jIccUnbindTag(profile.get(), signature("desc")), 1);
    EXPECT_EQ(profile->tagCount, 0);
    EXPECT_EQ(profile->tags, nullptr);
    EXPECT_EQ(jIccBindTag(profile.get(), signature("cprt"), hostText("again")), 1);
    EXPECT_EQ(profile->tagCount, 1);
}

TEST(IccUnbindTag, OfASignatureThatIsNotThereChangesNothing) {
    const ProfileHandle profile(jIccCreate(0));
    EXPECT_EQ(jIccUnbindTag(profile.get(), signature("desc")), 1);
    jIccBindTag(profile.get(), signature("cprt"), hostText("text"));
    IccTagEntry* const tags = profile->tags;
    EXPECT_EQ(jIccUnbindTag(profile.get(), signature("desc")), 1);
    EXPECT_EQ(profile->tagCount, 1);
    EXPECT_EQ(profile->tags, tags);
}

TEST(IccUnbindTag, RemovesAnEntryThatHasNoData) {
    const ProfileHandle profile(jIccCreate(0));
    jIccBindTag(profile.get(), signature("desc"), nullptr);
    EXPECT_EQ(profile->tagCount, 1);
    EXPECT_EQ(jIccUnbindTag(profile.get(), signature("desc")), 1);
    EXPECT_EQ(profile->tagCount, 0);
}

TEST(IccUnbindTag, RefusesNoProfile) { EXPECT_EQ(jIccUnbindTag(nullptr, signature("desc")), 0); }

TEST(IccRelease, ReturnsZeroForNull) { EXPECT_EQ(jIccRelease(nullptr), 0); }

TEST(IccRelease, TakesProfilesWithAndWithoutTags) {
    EXPECT_EQ(jIccRelease(jIccCreate(0)), 1);
    IccProfile* const profile = jIccCreate(0);
    jIccBindTag(profile, signature("desc"), hostText("freed with the profile"));
    EXPECT_EQ(jIccRelease(profile), 1);
}

// The host may give the table to another profile; releasing this one must not free it.
TEST(IccRelease, LeavesTheWorkTableOfALutToTheHost) {
    IccProfile* const profile = jIccCreate(0);
    IccLut* const lut = hostLut(3, 3, 2, 1);
    ASSERT_EQ(jIccLutSetup(lut), 1);
    auto* const workTable = static_cast<uint8_t*>(lut->workTable);
    jIccBindTag(profile, signature("A2B0"), lut);
    EXPECT_EQ(jIccRelease(profile), 1);
    workTable[0] = 1;  // still a block of its own
    jMemFree(workTable);
}

TEST(IccRevLong, ReversesFourBytes) {
    EXPECT_EQ(jKoCmykIccRevLong(0x01020304), 0x04030201u);
    EXPECT_EQ(jKoCmykIccRevLong(0xff000000), 0x000000ffu);
}

TEST(IccRevShort, SwapsTwoBytes) {
    EXPECT_EQ(jKoCmykIccRevShort(0x0102), 0x0201);
    EXPECT_EQ(jKoCmykIccRevShort(0xff00), 0x00ff);
}

}  // namespace
}  // namespace ko::test
