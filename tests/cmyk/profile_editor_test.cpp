// The model of the profile dialog's frame.
#include "cmyk/dialog/profile_editor.h"

#include <gtest/gtest.h>

#include "frame/platform.h"
#include "resources/texts.h"
#include "tests/cmyk/support.h"
#include "tests/support/answers.h"

namespace ko::cmyk {
namespace {

struct Editing {
    explicit Editing(std::string_view path = "") : profile(createProfile().release()) {
        copyText(profile->path, path);
        editor.emplace(*profile);
    }
    test::OwnedProfile profile;
    std::optional<ProfileEditor> editor;
    test::Answers answers;
    test::TempFolder folder;
};

test::OwnedProfile loaded(const std::string& path) {
    test::OwnedProfile profile(createProfile().release());
    EXPECT_TRUE(loadProfile(*profile, path.c_str())) << path;
    return profile;
}

std::string root() { return {platform::kSeparator}; }

TEST(ProfileEditor, AFolderOpensANewProfile) {
    Editing editing("folder" + root());
    EXPECT_EQ(editing.editor->path(), "");
    editing.editor->saveAs(editing.answers);
    EXPECT_EQ(editing.answers.startedFrom, "folder" + root());
}

TEST(ProfileEditor, SaveWithoutAFileAsksFromTheRootAlone) {
    Editing editing("folder" + root());
    editing.editor->save(editing.answers);
    EXPECT_EQ(editing.answers.filter, texts::kProfileFilter);
    EXPECT_EQ(editing.answers.startedFrom, root());  // and not from the folder
    editing.editor->saveAs(editing.answers);
    EXPECT_EQ(editing.answers.startedFrom, "folder" + root());
}

TEST(ProfileEditor, SaveAsStartsFromTheFileThatWasOpened) {
    Editing editing("folder" + root() + "file.icc");
    EXPECT_EQ(editing.editor->path(), "folder" + root() + "file.icc");
    editing.editor->saveAs(editing.answers);
    EXPECT_EQ(editing.answers.startedFrom, "folder" + root());
}

TEST(ProfileEditor, SaveAsInARootFolderHasOneSeparator) {
    Editing editing(root() + "file.icc");
    editing.editor->saveAs(editing.answers);
    EXPECT_EQ(editing.answers.startedFrom, root());
}

TEST(ProfileEditor, CancellingTheFileDialogChangesNothing) {
    Editing editing;
    editing.editor->saveAs(editing.answers);
    editing.editor->save(editing.answers);
    EXPECT_EQ(editing.answers.saves, 2);
    EXPECT_EQ(editing.editor->path(), "");
}

TEST(ProfileEditor, SaveAsAppendsTheExtensionThatIsMissing) {
    for (const auto& [chosen, written] : {std::pair{"a", "a.icc"}, {"b.icm", "b.icm.icc"},
                                          {"c.icc", "c.icc"}, {"d.ICC", "d.ICC"}}) {
        Editing editing;
        editing.answers.path = editing.folder.path(chosen);
        editing.editor->saveAs(editing.answers);
        EXPECT_EQ(editing.editor->path(), editing.folder.path(written));
        EXPECT_TRUE(test::exists(editing.folder.path(written))) << written;
    }
}

TEST(ProfileEditor, SaveAppendsTheExtensionToTheFilesOwnName) {
    test::TempFolder folder;
    Editing editing(folder.path("table.lut"));
    editing.editor->save(editing.answers);
    EXPECT_EQ(editing.answers.saves, 0);
    EXPECT_EQ(editing.editor->path(), folder.path("table.lut.icc"));
    EXPECT_TRUE(test::exists(folder.path("table.lut.icc")));
}

TEST(ProfileEditor, AFileOfTheNameWithTheExtensionIsReplacedOnlyAfterAQuestion) {
    test::TempFolder folder;
    const std::string other = folder.path("table.lut.icc");
    test::writeFile(other, "theirs");
    Editing editing(folder.path("table.lut"));
    editing.answers.yes = false;
    EXPECT_FALSE(editing.editor->save(editing.answers));
    EXPECT_EQ(editing.answers.replaced, other);
    EXPECT_EQ(test::readText(other), "theirs");
    EXPECT_EQ(editing.editor->path(), folder.path("table.lut"));
    editing.answers.yes = true;
    EXPECT_TRUE(editing.editor->save(editing.answers));
    EXPECT_NE(test::readText(other), "theirs");
}

TEST(ProfileEditor, ASaveIsFollowedByOnesThatDoNotAsk) {
    Editing editing;
    editing.answers.path = editing.folder.path("new");
    editing.editor->save(editing.answers);
    editing.editor->leaveName("second");
    editing.editor->save(editing.answers);
    EXPECT_EQ(editing.answers.saves, 1);
    EXPECT_STREQ(loaded(editing.folder.path("new.icc"))->name, "second");
}

TEST(ProfileEditor, APathThatBecomesTooLongIsNotSavedUnder) {
    Editing editing;
    editing.answers.path = std::string(258, 'x');
    editing.editor->saveAs(editing.answers);
    EXPECT_EQ(editing.editor->path(), "");
    editing.editor->save(editing.answers);
    EXPECT_EQ(editing.answers.saves, 2);  // still without a file
}

TEST(ProfileEditor, AFailedSaveIsToldAndLeavesTheProfileUnsavedUnderItsOldName) {
    Editing editing;
    // Its own folder stands where the file should: it cannot be created.
    editing.answers.path = editing.folder.path("taken.icc");
    std::filesystem::create_directory(editing.folder.path("taken.icc"));
    editing.editor->saveAs(editing.answers);
    EXPECT_TRUE(std::filesystem::is_directory(editing.folder.path("taken.icc")));
    EXPECT_EQ(editing.answers.notSavedPath, editing.folder.path("taken.icc"));
    EXPECT_TRUE(editing.answers.reason.has_value());
    EXPECT_EQ(editing.editor->path(), "");
    EXPECT_FALSE(editing.editor->saveAndClose(editing.answers));
}

TEST(ProfileEditor, NewIsTakenBackWithItsFile) {
    Editing editing("file.icc");
    editing.editor->leaveName("mine");
    editing.profile->grid[5] = 7;
    EXPECT_TRUE(editing.editor->startNew(editing.answers));
    EXPECT_TRUE(editing.editor->undo());
    EXPECT_EQ(editing.editor->name(), "mine");
    EXPECT_EQ(editing.editor->path(), "file.icc");
    EXPECT_EQ(editing.profile->grid[5], 7u);
    EXPECT_TRUE(editing.editor->undo());  // the name
    EXPECT_FALSE(editing.editor->isChanged());
    EXPECT_FALSE(editing.editor->undo());
}

TEST(ProfileEditor, AnotherProfileTakesThePlaceOfThisOneAndIsTakenBackWithIt) {
    Editing editing("file.icc");
    const std::string path = editing.folder.path("other.icc");
    const auto other = createProfile();
    other->grid[5] = 7;
    ASSERT_TRUE(saveProfile(*other, path.c_str()));
    bool opened = false;
    EXPECT_EQ(editing.editor->open(path, editing.answers, opened), std::nullopt);
    EXPECT_TRUE(opened);
    EXPECT_EQ(editing.profile->grid[5], 7u);
    EXPECT_EQ(editing.editor->path(), path);
    EXPECT_FALSE(editing.editor->isChanged());
    EXPECT_TRUE(editing.editor->undo());
    EXPECT_NE(editing.profile->grid[5], 7u);
    EXPECT_EQ(editing.editor->path(), "file.icc");
}

TEST(ProfileEditor, AProfileOfAnotherKindIsNotOpenedAndTheReasonIsSaid) {
    Editing editing("file.icc");
    bool opened = true;
    const auto problem = editing.editor->open(test::testData("CGATS001Compat-v2-micro.icc"),
                                              editing.answers, opened);
    EXPECT_EQ(problem, (Problem{texts::kNoLink, {"CMYK", "Lab"}}));
    EXPECT_FALSE(opened);
    EXPECT_EQ(editing.editor->path(), "file.icc");
    EXPECT_FALSE(editing.editor->canUndo());
}

TEST(ProfileEditor, NewAsksFirst) {
    Editing editing("file.icc");
    editing.answers.yes = false;
    editing.editor->leaveName("mine");
    EXPECT_FALSE(editing.editor->startNew(editing.answers));
    EXPECT_EQ(editing.answers.questions, 1);
    EXPECT_EQ(editing.answers.asked, texts::kResetQuestion);
    EXPECT_EQ(editing.editor->name(), "mine");
    EXPECT_EQ(editing.editor->path(), "file.icc");
}

TEST(ProfileEditor, NewForgetsEverythingAndTheFile) {
    Editing editing("file.icc");
    editing.editor->leaveName("mine");
    editing.editor->leaveComment("text");
    editing.profile->grid[5] = 0;
    editing.profile->curveValues[6][3] = 200;
    EXPECT_TRUE(editing.editor->startNew(editing.answers));
    const test::OwnedProfile fresh(createProfile().release());
    EXPECT_EQ(editing.editor->path(), "");
    EXPECT_EQ(editing.editor->name(), texts::kUntitled);
    EXPECT_EQ(editing.editor->comment(), "");
    EXPECT_TRUE(test::sameGrid(*editing.profile, *fresh));
    EXPECT_EQ(editing.profile->curveValues[6][3], 12);
    editing.editor->save(editing.answers);
    EXPECT_EQ(editing.answers.saves, 1);  // has no file now, so it asks
}

TEST(ProfileEditor, TheNameIsCutToItsFieldAtAWholeCharacter) {
    Editing editing;
    editing.editor->leaveName(std::string(200, 'n'));
    EXPECT_EQ(editing.editor->name(), std::string(63, 'n'));
    std::string kanji = "n";
    for (int at = 0; at < 100; ++at) kanji += "\x95\x5c";  // its second byte is a backslash
    editing.editor->leaveName(kanji);
    EXPECT_EQ(editing.editor->name(), kanji.substr(0, 63));
    editing.editor->leaveName(kanji.substr(1));
    EXPECT_EQ(editing.editor->name(), kanji.substr(1, 62));
}

TEST(ProfileEditor, BlanksAroundNameAndCommentGo) {
    Editing editing;
    editing.editor->leaveName("  a b \t");
    editing.editor->leaveComment("\r\n a\r\nb \r\n");
    EXPECT_EQ(editing.editor->name(), "a b");
    EXPECT_EQ(editing.editor->comment(), "a\r\nb");
}

TEST(ProfileEditor, ACommentOf499BytesIsSavedAndReadBackWhole) {
    Editing editing;
    std::string comment = "first line\r\n\r\n\x93\xfa\x96\x7b\x95\x5c\r\n";
    while (comment.size() < 498) comment += "\x95\x5c";
    while (comment.size() < 499) comment += "x";
    editing.answers.path = editing.folder.path("long.icc");
    editing.editor->leaveComment(comment);
    editing.editor->saveAs(editing.answers);
    EXPECT_EQ(textIn(loaded(editing.folder.path("long.icc"))->comment), comment);
}

TEST(ProfileEditor, ALongerCommentIsCutAtAWholeCharacter) {
    Editing editing;
    std::string comment = "x";
    for (int at = 0; at < 400; ++at) comment += "\x95\x5c";
    editing.editor->leaveComment(comment);
    EXPECT_EQ(textIn(editing.profile->comment), comment.substr(0, 499));
    editing.editor->leaveComment(comment.substr(1));
    EXPECT_EQ(textIn(editing.profile->comment), comment.substr(1, 498));
}

TEST(ProfileEditor, LinesOfAnotherSystemAreShownAsLinesAndStayAsTheyAre) {
    Editing editing;
    copyText(editing.profile->comment, "a\nb\r\nc");
    EXPECT_EQ(editing.editor->comment(), "a\r\nb\r\nc");
    editing.editor->leaveComment("a\r\nb\r\nc");
    EXPECT_EQ(textIn(editing.profile->comment), "a\nb\r\nc");
    editing.editor->leaveComment("a\r\nb");
    EXPECT_EQ(textIn(editing.profile->comment), "a\r\nb");
}

TEST(ProfileEditor, ALineEndInANameBecomesABlank) {
    Editing editing;
    editing.editor->leaveName("\nfirst\r\nCTRL: 1\n");
    EXPECT_EQ(editing.editor->name(), "first  CTRL: 1");
}

TEST(ProfileEditor, ACommentThatLooksLikeEditingDataIsReadBackAsAComment) {
    for (const char* comment : {"NAME: other", "CTRL: 111", "CTL2: 111\r\nx"}) {
        Editing editing;
        editing.editor->leaveName("mine");
        editing.editor->leaveComment(comment);
        editing.editor->leaveComment(editing.editor->comment());  // once is enough
        editing.answers.path = editing.folder.path("a.icc");
        editing.editor->saveAs(editing.answers);
        const auto again = loaded(editing.folder.path("a.icc"));
        EXPECT_EQ(textIn(again->comment), " " + std::string(comment));
        EXPECT_STREQ(again->name, "mine");
        EXPECT_EQ(again->curveFlags[0][1], 0);
    }
}

TEST(ProfileEditor, LinesOfACommentThatLookLikeEditingDataAreReadBackAsTheyStand) {
    Editing editing;
    editing.editor->leaveName("mine");
    editing.editor->leaveComment("one\r\nNAME: other\r\n NAME: x\r\nCTRL: 111");
    editing.editor->leaveComment(editing.editor->comment());  // once is enough
    editing.answers.path = editing.folder.path("a.icc");
    editing.editor->saveAs(editing.answers);
    const auto again = loaded(editing.folder.path("a.icc"));
    EXPECT_STREQ(again->comment, "one\r\n NAME: other\r\n NAME: x\r\n CTRL: 111");
    EXPECT_STREQ(again->name, "mine");
    EXPECT_EQ(again->curveFlags[0][1], 0);
}

TEST(ProfileEditor, RecordsWithoutTerminatorsAreReadWithinTheirFields) {
    Editing editing;
    std::fill_n(editing.profile->name, sizeof editing.profile->name, 'n');
    std::fill_n(editing.profile->comment, sizeof editing.profile->comment, '\n');
    EXPECT_EQ(editing.editor->name().size(), sizeof editing.profile->name);
    EXPECT_EQ(editing.editor->comment().size(), 2 * sizeof editing.profile->comment);
}

}  // namespace
}  // namespace ko::cmyk
