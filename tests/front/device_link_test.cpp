// The model of the device-link dialog: what is typed, chosen, picked and made.
#include "front/dialog/device_link.h"

#include <gtest/gtest.h>

#include <cstring>

#include "cmyk/cmyk.h"
#include "front/front.h"
#include "resources/texts.h"
#include "tests/support/files.h"

namespace ko::front {
namespace {

using test::TempFolder;

// Answers the model's questions as a test wants it to.
struct Answers : DeviceLinkHost {
    std::optional<TypedPath> choosePath(LinkPath, Choice choice, std::string_view initial,
                                        std::string_view filter) override {
        chosenFor = choice;
        startedFrom = initial;
        offered = filter;
        return path;
    }
    uint32_t pickColour(uint32_t cmyk) override {
        ++picks;
        given = cmyk;
        return picked.value_or(cmyk);
    }
    void tell(std::string_view text, Icon icon) override {
        told.emplace_back(text);
        lastIcon = icon;
    }
    void showResult(const cmyk::LinkResult& result) override { results.push_back(result); }
    void tellProblem(std::string_view text, const cmyk::LinkProblem& problem) override {
        told.emplace_back(text);
        problems.push_back(problem);
        lastIcon = Icon::exclamation;
    }
    bool ask(std::string_view question, std::string_view) override {
        asked.emplace_back(question);
        return yes;
    }
    std::vector<cmyk::LinkProblem> problems;
    std::vector<cmyk::LinkResult> results;
    std::vector<std::string> asked;
    bool yes = true;
    std::optional<TypedPath> path;
    Choice chosenFor{};
    std::string startedFrom, offered;
    std::optional<uint32_t> picked;
    uint32_t given = 0;
    int picks = 0;
    std::vector<std::string> told;
    Icon lastIcon{};
};

CmsLinkSettings newSettings() {
    CmsLinkSettings settings;
    initSettings(settings);
    return settings;
}

template <class Number>
DeviceLinkModel modelWith(Number CmsLinkSettings::*field, int32_t value) {
    CmsLinkSettings settings = newSettings();
    settings.*field = value;
    return DeviceLinkModel(settings);
}

DeviceLinkModel paperModel(int32_t c, int32_t m, int32_t y, int32_t k) {
    CmsLinkSettings settings = newSettings();
    settings.whiteMode = 2;
    settings.paperC = c;
    settings.paperM = m;
    settings.paperY = y;
    settings.paperK = k;
    return DeviceLinkModel(settings);
}

TEST(DeviceLinkModel, EditsACopyOfTheRecord) {
    CmsLinkSettings settings = newSettings();
    DeviceLinkModel model(settings);
    model.leavePath(LinkPath::base, "base.icc");
    model.chooseIntent(2);
    EXPECT_STREQ(settings.basePath, "");
    EXPECT_EQ(settings.intent, 0);
    EXPECT_STREQ(model.settings().basePath, "base.icc");
}

TEST(DeviceLinkModel, KeepsEveryByteThatNobodyTouches) {
    CmsLinkSettings settings;
    std::memset(&settings, 'x', sizeof settings);  // paths without an end among them
    DeviceLinkModel model(settings);
    EXPECT_EQ(std::memcmp(&model.settings(), &settings, sizeof settings), 0);
    EXPECT_EQ(model.path(LinkPath::output), std::string(260, 'x'));
}

TEST(DeviceLinkModel, EachFieldIsAPathOfItsOwn) {
    DeviceLinkModel model(newSettings());
    for (const LinkPath which : kLinkPaths)
        model.leavePath(which, std::to_string(static_cast<int>(which)));
    EXPECT_STREQ(model.settings().basePath, "0");
    EXPECT_STREQ(model.settings().sourcePath, "1");
    EXPECT_STREQ(model.settings().destinationPath, "2");
    EXPECT_STREQ(model.settings().blackPath, "3");
    EXPECT_STREQ(model.settings().outputPath, "4");
    EXPECT_EQ(model.path(LinkPath::black), "3");
}

TEST(DeviceLinkModel, BlanksAndQuotationMarksAroundAPathGo) {
    DeviceLinkModel model(newSettings());
    for (const char* const typed : {" my profile.icc ", "\tmy profile.icc\r\n",
                                    "\"my profile.icc\"", " \" my profile.icc \" "}) {
        model.leavePath(LinkPath::base, typed);
        EXPECT_EQ(model.path(LinkPath::base), "my profile.icc") << typed;
    }
    for (const auto& [typed, left] : {std::pair{"\"", "\""}, {"\"\"", ""}, {"", ""}, {"  ", ""}}) {
        model.leavePath(LinkPath::base, typed);
        EXPECT_EQ(model.path(LinkPath::base), left) << typed;
    }
}

TEST(DeviceLinkModel, APathOf260BytesIsRefusedAndNotCutToAnotherFile) {
    DeviceLinkModel model(newSettings());
    const CmsLinkSettings before = model.settings();
    model.leavePath(LinkPath::base, std::string(259, 'a'));
    EXPECT_EQ(model.path(LinkPath::base), std::string(259, 'a'));
    for (const size_t length : {260u, 261u, 10000u}) {
        model.leavePath(LinkPath::base, std::string(length, 'b'));
        EXPECT_EQ(model.path(LinkPath::base), std::string(259, 'a'));
        EXPECT_EQ(model.refusal(LinkPath::base), Problem{texts::kPathTooLong});
    }
    EXPECT_EQ(std::memcmp(model.settings().sourcePath, before.sourcePath, 260), 0);
}

TEST(DeviceLinkModel, NothingOfALongerPathStaysBehindAShorterOne) {
    DeviceLinkModel model(newSettings());
    model.leavePath(LinkPath::base, std::string(200, 'a'));
    model.leavePath(LinkPath::base, "b");
    EXPECT_EQ(std::string(model.settings().basePath, 260), "b" + std::string(259, '\0'));
}

TEST(DeviceLinkModel, TheAmountOpensInPercentOf255) {
    for (const auto& [limit, shown] :
         {std::pair{200, "78"}, {0, "0"}, {255, "100"}, {128, "50"}, {256, "100"}, {1020, "100"},
          {-1, "0"}, {INT32_MIN, "0"}, {INT32_MAX, "100"}})
        EXPECT_EQ(modelWith(&CmsLinkSettings::limit, limit).amountText(), shown) << limit;
}

TEST(DeviceLinkModel, OpeningDoesNotChangeTheAmount) {
    for (const int32_t limit : {200, 1020, -1, INT32_MAX})
        EXPECT_EQ(modelWith(&CmsLinkSettings::limit, limit).settings().limit, limit);
}

TEST(DeviceLinkModel, AnAmountTypedAs500IsStoredAs1020AndShownAs400UntilReopened) {
    DeviceLinkModel model(newSettings());
    model.leaveAmount("500");
    EXPECT_EQ(model.settings().limit, 1020);
    EXPECT_EQ(model.amountText(), "400");
    EXPECT_EQ(DeviceLinkModel(model.settings()).amountText(), "100");
}

TEST(DeviceLinkModel, TheAmountIsTruncated) {
    DeviceLinkModel model(newSettings());
    for (const auto& [typed, stored, shown] :
         {std::tuple{"1", 2, "1"}, {"50", 127, "50"}, {"78", 198, "78"}, {"100", 255, "100"},
          {"399", 1017, "399"}, {"400", 1020, "400"}, {"401", 1020, "400"}, {"0", 0, "0"}}) {
        model.leaveAmount(typed);
        EXPECT_EQ(model.settings().limit, stored) << typed;
        EXPECT_EQ(model.amountText(), shown) << typed;
    }
}

TEST(DeviceLinkModel, TheAmountReadsThreeCharacters) {
    DeviceLinkModel model(newSettings());
    for (const auto& [typed, shown] :
         {std::pair{"1234", "123"}, {"12x", "12"}, {" 12", "12"}, {"", "0"}, {"abc", "0"},
          {"-50", "0"}, {"0099", "9"}, {"1.5", "1"}, {"???", "0"}}) {
        model.leaveAmount(typed);
        EXPECT_EQ(model.amountText(), shown) << typed;
    }
    model.leaveAmount(std::string(10000, '9'));
    EXPECT_EQ(model.settings().limit, 1020);
}

TEST(DeviceLinkModel, EachRadioSetsItsFieldAtOnce) {
    DeviceLinkModel model(newSettings());
    for (int32_t number = 0; number < 3; ++number) {
        model.chooseIntent(number);
        model.choosePreservation((number + 1) % 3);
        model.chooseWhiteMode((number + 2) % 3);
        EXPECT_EQ(model.settings().intent, number);
        EXPECT_EQ(model.settings().preservation, (number + 1) % 3);
        EXPECT_EQ(model.settings().whiteMode, (number + 2) % 3);
        EXPECT_TRUE(model.intentIs(number));
        EXPECT_TRUE(model.preservationIs((number + 1) % 3));
        EXPECT_TRUE(model.whiteModeIs((number + 2) % 3));
    }
}

TEST(DeviceLinkModel, AnIntentOrModeThatIsNotOfferedIsKeptUntilOneIsChosen) {
    CmsLinkSettings settings = newSettings();
    settings.intent = 3;
    settings.preservation = -1;
    settings.whiteMode = INT32_MAX;
    DeviceLinkModel model(settings);
    for (int32_t number = 0; number < 3; ++number) {
        EXPECT_FALSE(model.intentIs(number));
        EXPECT_FALSE(model.preservationIs(number));
        EXPECT_FALSE(model.whiteModeIs(number));
    }
    EXPECT_FALSE(model.hasPaperColour());
    model.chooseIntent(1);
    EXPECT_EQ(model.settings().intent, 1);
    EXPECT_EQ(model.settings().preservation, -1);
    EXPECT_EQ(model.settings().whiteMode, INT32_MAX);
}

TEST(DeviceLinkModel, OnlyAGivenPaperColourHasASwatchAndAnAmount) {
    for (const int32_t mode : {-1, 0, 1, 3}) {
        const DeviceLinkModel model = modelWith(&CmsLinkSettings::whiteMode, mode);
        EXPECT_FALSE(model.hasPaperColour());
        EXPECT_EQ(model.swatch(), std::nullopt);
    }
    EXPECT_TRUE(paperModel(0, 0, 0, 0).hasPaperColour());
    EXPECT_EQ(paperModel(0, 0, 0, 0).swatch(), 0xffffffu);
}

TEST(DeviceLinkModel, TheSwatchIs255LessBlackLessTheInkAndNeverBelow0) {
    EXPECT_EQ(paperModel(10, 20, 30, 40).swatch(), 0xb9c3cdu);  // 205, 195, 185
    EXPECT_EQ(paperModel(255, 0, 0, 0).swatch(), 0xffff00u);
    EXPECT_EQ(paperModel(100, 0, 200, 156).swatch(), 0x006300u);
    EXPECT_EQ(paperModel(255, 255, 255, 255).swatch(), 0u);
}

TEST(DeviceLinkModel, PaperColoursOfAnyNumberGiveAColour) {
    for (const int32_t extreme : {INT32_MIN, -300, 300, INT32_MAX})
        EXPECT_EQ(paperModel(extreme, extreme, extreme, extreme).swatch(),
                  extreme < 0 ? 0xffffffu : 0u);
}

TEST(DeviceLinkModel, APickedColourIsStoredAsFourInks) {
    DeviceLinkModel model = paperModel(1, 2, 3, 4);
    Answers host;
    host.picked = 0xff804001;
    EXPECT_TRUE(model.pickPaperColour(host));
    EXPECT_EQ(host.given, 0x01020304u);
    EXPECT_EQ(model.settings().paperC, 255);
    EXPECT_EQ(model.settings().paperM, 128);
    EXPECT_EQ(model.settings().paperY, 64);
    EXPECT_EQ(model.settings().paperK, 1);
}

TEST(DeviceLinkModel, ThePickerGetsLevelsAndItsCancelChangesNothing) {
    DeviceLinkModel model = paperModel(300, -5, 3, 4);
    Answers host;
    EXPECT_FALSE(model.pickPaperColour(host));
    EXPECT_EQ(host.given, 0xff000304u);
    EXPECT_EQ(model.settings().paperC, 300);
    EXPECT_EQ(model.settings().paperM, -5);
}

TEST(DeviceLinkModel, WithoutAGivenPaperColourNothingIsPicked) {
    for (const int32_t mode : {0, 1}) {
        DeviceLinkModel model = modelWith(&CmsLinkSettings::whiteMode, mode);
        Answers host;
        EXPECT_FALSE(model.pickPaperColour(host));
        EXPECT_EQ(host.picks, 0);
    }
}

TEST(DeviceLinkModel, BrowsingStartsFromTheFieldAndTakesTheChoice) {
    for (const LinkPath which : kLinkPaths) {
        DeviceLinkModel model(newSettings());
        model.leavePath(which, "folder/old.icc");
        Answers host;
        host.path = TypedPath("folder/new.icc");
        EXPECT_TRUE(model.browse(which, host));
        EXPECT_EQ(host.startedFrom, "folder/old.icc");
        EXPECT_EQ(model.path(which), "folder/new.icc");
        EXPECT_EQ(host.chosenFor == Answers::Choice::fileToSave, which == LinkPath::output);
    }
}

TEST(DeviceLinkModel, BrowsingThatIsCancelledChangesNothing) {
    DeviceLinkModel model(newSettings());
    model.leavePath(LinkPath::source, "old.icc");
    Answers host;
    EXPECT_FALSE(model.browse(LinkPath::source, host));
    EXPECT_EQ(model.path(LinkPath::source), "old.icc");
}

TEST(DeviceLinkModel, AChosenFileThatCannotBeNamedIsRefusedLikeATypedOne) {
    DeviceLinkModel model(newSettings());
    model.leavePath(LinkPath::source, "old.icc");
    Answers host;
    host.path = TypedPath();
    EXPECT_TRUE(model.browse(LinkPath::source, host));
    EXPECT_TRUE(model.isRefused(LinkPath::source));
    EXPECT_EQ(model.path(LinkPath::source), "old.icc");
}

TEST(DeviceLinkModel, EachFieldIsBrowsedWithItsFilter) {
    const auto filterOf = [](LinkPath which) {
        DeviceLinkModel model(newSettings());
        Answers host;
        model.browse(which, host);
        return host.offered;
    };
    const std::string icc = filterOf(LinkPath::output);
    EXPECT_TRUE(icc.ends_with("(*.icc, *.icm)|*.icc;*.icm|"));
    EXPECT_TRUE(filterOf(LinkPath::base).starts_with(icc + "LUT"));
    EXPECT_TRUE(filterOf(LinkPath::base).ends_with("(*.LUT)|*.lut|"));
    EXPECT_TRUE(filterOf(LinkPath::source).starts_with(icc + "NQP"));
    EXPECT_TRUE(filterOf(LinkPath::source).ends_with("(*.nqp)|*.nqp|"));
    EXPECT_TRUE(filterOf(LinkPath::destination).starts_with(icc + "DCC"));
    EXPECT_TRUE(filterOf(LinkPath::destination).ends_with("(*.dcc)|*.dcc|"));
    EXPECT_TRUE(filterOf(LinkPath::black).starts_with("BKC"));
    EXPECT_TRUE(filterOf(LinkPath::black).ends_with("(*.bkc)|*.bkc|"));
    EXPECT_EQ(filterOf(LinkPath::black).find("icc"), std::string::npos);
}

// Making a link. The plain chain, without profiles, is quick.
struct Making {
    Making() : model(newSettings()) { model.leavePath(LinkPath::output, output); }
    TempFolder folder;
    std::string output = folder.path("made.icc");
    DeviceLinkModel model;
    Answers host;
};

TEST(DeviceLinkModel, CreateWritesTheLinkThatTheSettingsStandForAndSaysSo) {
    Making making;
    making.model.chooseWhiteMode(2);
    making.host.picked = 0x10080400;
    making.model.pickPaperColour(making.host);
    EXPECT_TRUE(making.model.create(making.host));
    EXPECT_EQ(making.host.told, std::vector<std::string>{texts::kLinkMade});
    EXPECT_EQ(making.host.lastIcon, Answers::Icon::information);
    const auto expected = cmyk::combineProfile(making.model.settings());
    const auto written = cmyk::createProfile();
    ASSERT_TRUE(cmyk::loadProfile(*written, making.output.c_str()));
    EXPECT_EQ(std::memcmp(written->grid, expected->grid, sizeof expected->grid), 0);
    EXPECT_NE(written->grid[0], 0u);  // the paper colour is in it
}

TEST(DeviceLinkModel, WhatTheMadeLinkDoesIsShownBeforeItsSuccessIsTold) {
    Making making;
    making.model.chooseWhiteMode(2);
    making.host.picked = 0x33000000;
    making.model.pickPaperColour(making.host);
    ASSERT_TRUE(making.model.create(making.host));
    ASSERT_EQ(making.host.results.size(), 1u);
    EXPECT_EQ(making.host.results[0].white, (cmyk::Inks{0.2, 0, 0, 0}));
}

TEST(DeviceLinkModel, OfALinkThatIsNotMadeNothingIsShown) {
    Making making;
    making.model.leavePath(LinkPath::source, std::string("missing.icc"));
    EXPECT_FALSE(making.model.create(making.host));
    EXPECT_TRUE(making.host.results.empty());
}

TEST(LinkResultText, SaysColoursInPercentWithTenthsWhereThereAreAny) {
    cmyk::LinkResult result;
    result.white = {0, 0, 0.0254, 0};
    result.solids[1] = {0, 0.9996, 0, 0};
    result.mostIn = {1, 1, 1, 0.5};
    result.mostInk = 3.2;
    result.foreignInPrimaries = 0.0123;
    const LinkResultText text = wordsOf(result);
    EXPECT_EQ(text.colours[0], (Problem{texts::kLinkWhite, {"C 0 M 0 Y 2.5 K 0"}}));
    EXPECT_EQ(text.colours[2], (Problem{texts::kLinkColour, {"M 100", "C 0 M 100 Y 0 K 0"}}));
    EXPECT_EQ(text.totals[0],
              (Problem{texts::kLinkMostInk, {"350 %", "C 100 M 100 Y 100 K 50", "320 %"}}));
    EXPECT_EQ(text.totals[1], (Problem{texts::kLinkForeignInk, {"1.2 %", "0 %"}}));
}

// What kept a link from being made.
void expectRefused(Making& making, LinkPath field, const char* sentence) {
    making.host.problems.clear();
    EXPECT_FALSE(making.model.create(making.host));
    ASSERT_EQ(making.host.problems.size(), 1u);
    EXPECT_EQ(making.host.problems[0].field, field);
    EXPECT_STREQ(making.host.problems[0].problem.sentence, sentence);
    EXPECT_EQ(making.model.failedField(), field);
    EXPECT_EQ(making.host.lastIcon, Answers::Icon::exclamation);
    EXPECT_EQ(making.host.told.back(),
              field == LinkPath::output ? texts::kLinkNotWritten : texts::kLinkNotMade);
}

TEST(DeviceLinkModel, AFileThatIsNotThereIsNamedBeforeTheWork) {
    for (const LinkPath which : {LinkPath::base, LinkPath::source, LinkPath::black}) {
        Making making;
        const std::string missing = making.folder.path("missing.icc");
        making.model.leavePath(which, missing);
        if (which == LinkPath::source) making.model.leavePath(LinkPath::destination, missing);
        expectRefused(making, which, texts::kFileMissing);
        EXPECT_EQ(making.host.problems[0].path, missing);
        EXPECT_FALSE(test::exists(making.output));
    }
}

TEST(DeviceLinkModel, APressProfileAsCorrectionLinkIsRefused) {
    Making making;
    making.model.leavePath(LinkPath::base, test::testData("CGATS001Compat-v2-micro.icc"));
    expectRefused(making, LinkPath::base, texts::kNoLink);
    EXPECT_EQ(making.host.problems[0].problem.details,
              (std::vector<std::string>{"CMYK", "Lab"}));
}

TEST(DeviceLinkModel, AnRgbProfileAsTargetIsRefused) {
    Making making;
    making.model.leavePath(LinkPath::source, test::testData("sRGB-v2-magic.icc"));
    making.model.leavePath(LinkPath::destination, test::testData("sRGB-v2-magic.icc"));
    expectRefused(making, LinkPath::source, texts::kWrongSpace);
    EXPECT_EQ(making.host.problems[0].problem.details, std::vector<std::string>{"RGB"});
}

TEST(DeviceLinkModel, ATargetWithoutAPrinterIsRefused) {
    Making making;
    making.model.leavePath(LinkPath::source, test::testData("CGATS001Compat-v2-micro.icc"));
    expectRefused(making, LinkPath::destination, texts::kNeedsPrinter);
}

TEST(DeviceLinkModel, ATextFileAsBlackCorrectionIsRefused) {
    Making making;
    const std::string text = making.folder.path("letter.txt");
    test::writeFile(text, "Dear customer,\r\nTONE is not what this is about.\r\n");
    making.model.leavePath(LinkPath::black, text);
    expectRefused(making, LinkPath::black, texts::kNoBlackCurve);
}

TEST(DeviceLinkModel, AFileThatTheLinkIsMadeFromIsNotOverwritten) {
    Making making;
    ASSERT_TRUE(making.model.create(making.host));
    const std::string before = test::readText(making.output);
    making.model.leavePath(LinkPath::base, making.output);
    making.model.chooseWhiteMode(1);
    expectRefused(making, LinkPath::output, texts::kOutputIsInput);
    EXPECT_EQ(test::readText(making.output), before);
}

TEST(DeviceLinkModel, AnOutputPathAloneIsQuestioned) {
    Making making;
    making.host.yes = false;
    EXPECT_FALSE(making.model.create(making.host));
    EXPECT_EQ(making.host.asked, std::vector<std::string>{texts::kNothingToLink});
    EXPECT_FALSE(test::exists(making.output));
}

TEST(DeviceLinkModel, AFileOfATypedNameIsReplacedOnlyAfterAQuestion) {
    Making making;
    making.model.chooseWhiteMode(2);
    test::writeFile(making.output, "theirs");
    making.host.yes = false;
    EXPECT_FALSE(making.model.create(making.host));
    EXPECT_EQ(making.host.asked, std::vector<std::string>{texts::kReplaceQuestion});
    EXPECT_EQ(making.model.failedField(), LinkPath::output);
    EXPECT_EQ(test::readText(making.output), "theirs");
    making.host.yes = true;
    EXPECT_TRUE(making.model.create(making.host));
}

TEST(DeviceLinkModel, AFileThatWasChosenForReplacingIsNotAskedForAgain) {
    Making making;
    making.model.chooseWhiteMode(2);
    test::writeFile(making.output, "theirs");
    making.host.path = TypedPath(making.output);
    making.model.browse(LinkPath::output, making.host);
    EXPECT_TRUE(making.model.create(making.host));
    EXPECT_EQ(making.host.asked, std::vector<std::string>{});
}

TEST(DeviceLinkModel, TheExtensionIsPutBehindBeforeTheQuestion) {
    Making making;
    making.model.chooseWhiteMode(2);
    test::writeFile(making.output, "theirs");
    making.model.leavePath(LinkPath::output, making.folder.path("made"));
    making.host.yes = false;
    EXPECT_FALSE(making.model.create(making.host));
    EXPECT_EQ(making.host.asked, std::vector<std::string>{texts::kReplaceQuestion});
    EXPECT_EQ(making.model.path(LinkPath::output), making.output);
    EXPECT_EQ(test::readText(making.output), "theirs");
}

TEST(DeviceLinkModel, AnIntentThatIsNotOfferedIsAParameterToCheck) {
    const std::string profile = test::testData("CGATS001Compat-v2-micro.icc");
    Making making;
    CmsLinkSettings settings = making.model.settings();
    settings.intent = 3;
    DeviceLinkModel model(settings);
    model.leavePath(LinkPath::source, profile);
    model.leavePath(LinkPath::destination, profile);
    Answers host;
    EXPECT_FALSE(model.create(host));
    EXPECT_EQ(host.told, std::vector<std::string>{texts::kLinkNotMade});
}

TEST(DeviceLinkModel, AnOutputWithoutANameIsRefused) {
    Making making;
    making.model.leavePath(LinkPath::output, "");
    expectRefused(making, LinkPath::output, texts::kNeedsOutput);
}

TEST(DeviceLinkModel, AnOutputThatCannotBeWrittenIsToldWithItsReason) {
    Making making;
    making.model.leavePath(LinkPath::output, making.folder.path("missing/made.icc"));
    EXPECT_FALSE(making.model.create(making.host));
    EXPECT_EQ(making.host.told, std::vector<std::string>{texts::kLinkNotWritten});
    ASSERT_EQ(making.host.problems.size(), 1u);
    EXPECT_EQ(making.host.problems[0].field, LinkPath::output);
}

TEST(DeviceLinkModel, AfterAFailureTheSameModelCanMakeTheLink) {
    Making making;
    making.model.leavePath(LinkPath::black, making.folder.path("missing.bkc"));
    EXPECT_FALSE(making.model.create(making.host));
    making.model.leavePath(LinkPath::black, "");
    EXPECT_TRUE(making.model.create(making.host));
    EXPECT_EQ(making.model.failedField(), std::nullopt);
    EXPECT_TRUE(test::exists(making.output));
}

TEST(DeviceLinkModel, ANameWithoutTheExtensionGetsIt) {
    for (const auto& [name, made] : {std::pair{"link", "link.icc"}, {"link.lut", "link.lut.icc"},
                                     {"a b.c.icc", "a b.c.icc"}, {"LINK.ICM", "LINK.ICM"}}) {
        Making making;
        making.model.leavePath(LinkPath::output, making.folder.path(name));
        EXPECT_TRUE(making.model.create(making.host)) << name;
        EXPECT_TRUE(test::exists(making.folder.path(made))) << name;
    }
}

TEST(DeviceLinkModel, APathThatCannotBeNamedLeavesTheOldOneAndKeepsTheLinkFromBeingMade) {
    Making making;
    making.model.leavePath(LinkPath::base, "");
    making.model.leavePath(LinkPath::base, std::nullopt);
    EXPECT_TRUE(making.model.isRefused(LinkPath::base));
    EXPECT_EQ(making.model.firstRefused(), LinkPath::base);
    EXPECT_EQ(making.model.path(LinkPath::base), "");
    expectRefused(making, LinkPath::base, texts::kPathUnnameable);
    EXPECT_FALSE(test::exists(making.output));
    making.model.leavePath(LinkPath::base, "");
    EXPECT_EQ(making.model.firstRefused(), std::nullopt);
    EXPECT_TRUE(making.model.create(making.host));
}

TEST(DeviceLinkModel, AnOutputThatCannotBeNamedIsNotWrittenUnderItsOldName) {
    Making making;
    making.model.leavePath(LinkPath::output, std::nullopt);
    expectRefused(making, LinkPath::output, texts::kPathUnnameable);
    EXPECT_FALSE(test::exists(making.output));
}

TEST(DeviceLinkModel, SaysWhatTheFileOfAPathIs) {
    Making making;
    making.model.leavePath(LinkPath::source, test::testData("CGATS001Compat-v2-micro.icc"));
    const auto fact = making.model.fact(LinkPath::source);
    ASSERT_TRUE(fact.has_value());
    EXPECT_STREQ(fact->kind, texts::kInputProfile);
    EXPECT_EQ(fact->conversion, "CMYK - Lab, A2B0");
    EXPECT_EQ(fact->problem, std::nullopt);
    making.model.leavePath(LinkPath::source, "");
    EXPECT_EQ(making.model.fact(LinkPath::source), std::nullopt);
}

TEST(DeviceLinkModel, SaysWhyTheFileOfAPathCannotBeUsedThere) {
    Making making;
    making.model.leavePath(LinkPath::source, test::testData("sRGB-v2-magic.icc"));
    ASSERT_TRUE(making.model.fact(LinkPath::source).has_value());
    EXPECT_STREQ(making.model.fact(LinkPath::source)->problem->sentence, texts::kWrongSpace);
    making.model.leavePath(LinkPath::black, making.folder.path("missing.bkc"));
    EXPECT_STREQ(making.model.fact(LinkPath::black)->problem->sentence, texts::kFileMissing);
    making.model.leavePath(LinkPath::base, test::testData("CGATS001Compat-v2-micro.icc"));
    EXPECT_STREQ(making.model.fact(LinkPath::base)->problem->sentence, texts::kNoLink);
}

TEST(DeviceLinkModel, WhatAFileIsFollowsTheIntent) {
    Making making;
    making.model.leavePath(LinkPath::source, test::testData("CGATS001Compat-v2-micro.icc"));
    EXPECT_EQ(making.model.fact(LinkPath::source)->problem, std::nullopt);
    making.model.chooseIntent(2);  // it has no table of that
    EXPECT_STREQ(making.model.fact(LinkPath::source)->problem->sentence, texts::kTagMissing);
}

}  // namespace
}  // namespace ko::front
