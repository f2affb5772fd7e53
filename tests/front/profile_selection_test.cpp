// The model of the profile-setting dialog: what it offers, what it finds and what is chosen.
#include "front/dialog/profile_selection.h"

#include <gmock/gmock.h>

#include <cstring>

#include "resources/texts.h"
#include "tests/support/files.h"
#include "tests/support/profiles.h"

namespace ko::front {
namespace {

using test::TempFolder;
using test::writeFile;
using testing::ElementsAre;
using testing::IsEmpty;
using Names = std::vector<std::string>;
constexpr auto kRgb = ProfileList::rgb, kCmyk = ProfileList::cmyk;

class ProfileSelectionTest : public testing::Test {
protected:
    void add(const std::string& name, std::string_view colourSpace) const {
        writeFile(folder.path(name), test::profileBytes({}, test::profileHeader("mntr", colourSpace)));
    }
    ProfileSelectionModel model(const ProfileSelection& given = {}) const {
        return {given, folder.folder().string()};
    }
    ProfileSelection record(const std::string& rgb, const std::string& cmyk, int32_t intent) const {
        ProfileSelection given{};
        std::strcpy(given.rgbPath, rgb.c_str());
        std::strcpy(given.cmykPath, cmyk.c_str());
        given.intent = intent;
        return given;
    }
    TempFolder folder;
};

Names namesOf(const ProfileSelectionModel& model, ProfileList list) {
    Names names;
    for (int32_t at = 0; at < model.profileCount(list); ++at) names.emplace_back(model.fileName(list, at));
    return names;
}

TEST_F(ProfileSelectionTest, OffersTheProfilesOfEachColourSpaceByTheirFileNames) {
    add("screen.icc", "RGB ");
    add("press.icc", "CMYK");
    add("grey.icc", "GRAY");
    writeFile(folder.path("notes.txt"), "no profile");
    EXPECT_THAT(namesOf(model(), kRgb), ElementsAre("screen.icc"));
    EXPECT_THAT(namesOf(model(), kCmyk), ElementsAre("press.icc"));
}

TEST_F(ProfileSelectionTest, IccFilesComeBeforeIcmFiles) {
    for (const char* name : {"a.icm", "z.icc", "b.icc", "c.icm"}) add(name, "RGB ");
    EXPECT_THAT(namesOf(model(), kRgb), ElementsAre("b.icc", "z.icc", "a.icm", "c.icm"));
}

TEST_F(ProfileSelectionTest, SaysWhatAProfileIsOrWhyItCannotBeRead) {
    writeFile(folder.path("press.icc"),
              test::profileBytes({{"desc", test::descriptionElement("Coated 39L\nsecond line")}}));
    writeFile(folder.path("broken.icc"), "not a profile");
    ProfileSelectionModel offered = model();
    ASSERT_EQ(namesOf(offered, kCmyk), (Names{"broken.icc", "press.icc"}));
    EXPECT_EQ(offered.wordsOf(kCmyk, 1).description, "Coated 39L");
    EXPECT_FALSE(offered.wordsOf(kCmyk, 1).problem);
    EXPECT_EQ(offered.wordsOf(kCmyk, 0).problem, Problem{texts::kNoIccProfile});
}

TEST_F(ProfileSelectionTest, AFileFromElsewhereIsOfferedChosenAndFoundAgain) {
    add("press.icc", "CMYK");
    const TempFolder elsewhere;
    const std::string path = elsewhere.path("other.icc");
    writeFile(path, test::profileBytes({}, test::profileHeader("prtr", "CMYK")));
    ProfileSelectionModel first = model();
    EXPECT_EQ(first.addProfile(kCmyk, path), std::nullopt);
    EXPECT_EQ(namesOf(first, kCmyk), (Names{"press.icc", "other.icc"}));
    EXPECT_EQ(first.chosenEntry(kCmyk), 2);
    EXPECT_EQ(first.record().cmykPath, path);
    EXPECT_EQ(first.addProfile(kCmyk, path), std::nullopt);  // once is enough
    EXPECT_EQ(first.profileCount(kCmyk), 2);
    const ProfileSelectionModel second = model(record("", path, 0));
    EXPECT_EQ(second.record().cmykPath, path);
    EXPECT_EQ(second.chosenEntry(kCmyk), 2);
    EXPECT_EQ(second.profileCount(kRgb), 0);
}

TEST_F(ProfileSelectionTest, AFileOfTheOtherColourSpaceOrOfNoneIsRefusedWithTheReason) {
    add("screen.icc", "RGB ");
    add("press.icc", "CMYK");
    writeFile(folder.path("notes.txt"), "text");
    ProfileSelectionModel offered = model();
    EXPECT_EQ(offered.addProfile(kCmyk, folder.path("screen.icc")),
              (Problem{texts::kWrongSpace, {"RGB"}}));
    EXPECT_EQ(offered.addProfile(kRgb, folder.path("press.icc")),
              (Problem{texts::kNoRgbProfile, {"CMYK"}}));
    EXPECT_EQ(offered.addProfile(kRgb, folder.path("notes.txt")), Problem{texts::kNoIccProfile});
    EXPECT_EQ(offered.addProfile(kRgb, folder.path("missing.icc")), Problem{texts::kFileMissing});
    EXPECT_EQ(offered.chosenEntry(kRgb), 0);
    EXPECT_EQ(offered.profileCount(kRgb), 1);
}

TEST_F(ProfileSelectionTest, AProfileWhoseHeaderCannotBeReadIsInBothLists) {
    writeFile(folder.path("broken.icc"), "short");
    writeFile(folder.path("empty.icm"), "");
    EXPECT_THAT(namesOf(model(), kRgb), ElementsAre("broken.icc", "empty.icm"));
    EXPECT_THAT(namesOf(model(), kCmyk), ElementsAre("broken.icc", "empty.icm"));
}

TEST_F(ProfileSelectionTest, OffersTheFirstFiveHundredWithIccFilesFirst) {
    char name[16];
    for (int at = 0; at < 300; ++at) {
        std::snprintf(name, sizeof name, "b%03d.icc", at);
        writeFile(folder.path(name), "");
        std::snprintf(name, sizeof name, "a%03d.icm", at);
        writeFile(folder.path(name), "");
    }
    const Names names = namesOf(model(), kCmyk);
    ASSERT_EQ(names.size(), 500u);
    EXPECT_EQ(names[0], "b000.icc");
    EXPECT_EQ(names[299], "b299.icc");
    EXPECT_EQ(names[300], "a000.icm");
    EXPECT_EQ(names[499], "a199.icm");
}

TEST_F(ProfileSelectionTest, FiveHundredIccFilesLeaveNoPlaceForIcmFiles) {
    for (int at = 0; at < 510; ++at) writeFile(folder.path("p" + std::to_string(1000 + at) + ".icc"), "");
    writeFile(folder.path("a.icm"), "");
    const Names names = namesOf(model(), kRgb);
    ASSERT_EQ(names.size(), 500u);
    EXPECT_EQ(names.back(), "p1499.icc");
}

TEST_F(ProfileSelectionTest, FindsTheGivenPathsWithoutRegardToCase) {
    for (const char* name : {"a.icc", "Screen.icc"}) add(name, "RGB ");
    add("press.icm", "CMYK");
    const auto chosen = model(record(folder.path("SCREEN.ICC"), folder.path("press.icm"), 1));
    EXPECT_EQ(chosen.chosenEntry(kRgb), 2);  // after "not set"
    EXPECT_EQ(chosen.chosenEntry(kCmyk), 1);
    EXPECT_EQ(chosen.record().rgbPath, folder.path("SCREEN.ICC"));  // as it was given
}

TEST_F(ProfileSelectionTest, APathThatIsNotOfferedCountsAsNotSet) {
    add("screen.icc", "RGB ");
    add("press.icc", "CMYK");
    for (const std::string& path : {folder.path("gone.icc"), std::string("screen.icc"),
                                    folder.path("press.icc"), folder.path("screen.ic")}) {
        const auto emptied = model(record(path, "", 0));
        EXPECT_EQ(emptied.chosenEntry(kRgb), 0) << path;
        EXPECT_EQ(emptied.record().rgbPath[0], '\0') << path;
    }
}

TEST_F(ProfileSelectionTest, APathWithoutAnEndIsNoPath) {
    ProfileSelection given{};
    std::memset(given.rgbPath, 'x', sizeof given.rgbPath);
    std::memset(given.cmykPath, 'x', sizeof given.cmykPath);
    EXPECT_EQ(model(given).record().rgbPath[0], '\0');
    EXPECT_EQ(model(given).record().cmykPath[0], '\0');
}

TEST_F(ProfileSelectionTest, IntentsBeyondTheListAreTheFirst) {
    for (const auto& [given, shown] : {std::pair{0, 0}, {3, 3}, {4, 0}, {INT32_MAX, 0}, {-1, 0}, {INT32_MIN, 0}})
        EXPECT_EQ(model(record("", "", given)).record().intent, shown) << given;
}

TEST_F(ProfileSelectionTest, ChoosingAnEntrySetsItsWholePath) {
    for (const char* name : {"a.icc", "b.icc"}) add(name, "RGB ");
    add("press.icc", "CMYK");
    auto chosen = model();
    chosen.chooseEntry(kRgb, 2);
    chosen.chooseEntry(kCmyk, 1);
    chosen.chooseIntent(3);
    EXPECT_EQ(chosen.record().rgbPath, folder.path("b.icc"));
    EXPECT_EQ(chosen.record().cmykPath, folder.path("press.icc"));
    EXPECT_EQ(chosen.record().intent, 3);
    chosen.chooseEntry(kRgb, 0);
    EXPECT_EQ(chosen.record().rgbPath[0], '\0');
    EXPECT_EQ(chosen.record().cmykPath, folder.path("press.icc"));
}

TEST_F(ProfileSelectionTest, EntriesThatAreNotThereChangeNothing) {
    add("a.icc", "RGB ");
    auto chosen = model(record(folder.path("a.icc"), "", 2));
    for (const int32_t entry : {-1, 2, INT32_MAX, INT32_MIN}) {
        chosen.chooseEntry(kRgb, entry);
        chosen.chooseIntent(entry < 0 || entry > 3 ? entry : 4);
    }
    EXPECT_EQ(chosen.chosenEntry(kRgb), 1);
    EXPECT_EQ(chosen.record().intent, 2);
    EXPECT_EQ(chosen.fileName(kRgb, 1), "");
    EXPECT_EQ(chosen.fileName(kRgb, -1), "");
}

TEST_F(ProfileSelectionTest, TheGivenRecordStaysAsItIs) {
    const ProfileSelection given = record("/gone.icc", "/gone.icc", 7);
    auto chosen = model(given);
    EXPECT_EQ(chosen.record().rgbPath[0], '\0');
    EXPECT_STREQ(given.rgbPath, "/gone.icc");
    EXPECT_EQ(given.intent, 7);
}

TEST_F(ProfileSelectionTest, WithoutMemoryAListOffersNothing) {
    add("screen.icc", "RGB ");
    add("press.icc", "CMYK");
    const ProfileSelection given = record(folder.path("screen.icc"), folder.path("press.icc"), 1);
    const ProfileSelectionModel none(given, folder.folder().string(),
                                     [](uint64_t) noexcept { return Block<char>(); });
    EXPECT_THAT(namesOf(none, kRgb), IsEmpty());
    EXPECT_EQ(none.record().rgbPath[0], '\0');
    static int blocks = 0;
    blocks = 0;
    const ProfileSelectionModel one(given, folder.folder().string(), [](uint64_t size) noexcept {
        return blocks++ == 0 ? allocateBlock<char>(size) : Block<char>();
    });
    EXPECT_THAT(namesOf(one, kRgb), ElementsAre("screen.icc"));
    EXPECT_THAT(namesOf(one, kCmyk), IsEmpty());
}

TEST_F(ProfileSelectionTest, AFolderThatIsNotThereOffersNothing) {
    for (const std::string& missing : {folder.path("missing"), std::string(400, 'x')})
        EXPECT_EQ(ProfileSelectionModel({}, missing).profileCount(kRgb), 0);
}

}  // namespace
}  // namespace ko::front
