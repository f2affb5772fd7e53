#include "frame/language.h"
#include "frame/settings.h"

#include <gtest/gtest.h>

#include <cstring>

#include "frame/platform.h"

namespace ko {
namespace {

std::string_view resource(const char* name) {
    const auto bytes = platform::textResource(name);
    return {bytes.data(), bytes.size()};
}

// Shift-JIS and GB2312 by their bytes: no compiler's character set is between test and table.
constexpr char kSaturation[] = "\x8d\xca\x93\x78";
constexpr char kNotSet[] = "\x96\xa2\x90\xdd\x92\xe8";
constexpr char kPerceptual[] = "\x8e\x8b\x8a\x6f\x93\x49";
constexpr char kRelative[] = "\x91\x8a\x91\xce\x93\x49\x90\x46\x8d\xca";
constexpr char kAbsolute[] = "\x90\xe2\x91\xce\x93\x49\x90\x46\x8d\xca";
constexpr char kChannel[] = "\x83\x60\x83\x83\x83\x93\x83\x6c\x83\x8b %d";
constexpr char kAllChannels[] = "\x91\x53\x83\x60\x83\x83\x83\x93\x83\x6c\x83\x8b";
constexpr char kChannels[] = "%d \x83\x60\x83\x83\x83\x93\x83\x6c\x83\x8b";
constexpr char kEdit[] = "%s\x95\xd2\x8f\x57 - [%s]";
constexpr char kInitialise[] =
    "\x8f\x89\x8a\xfa\x89\xbb\x82\xb5\x82\xdc\x82\xb7\x81\x42\x82\xa2\x82\xa2\x82\xc5\x82\xb7"
    "\x82\xa9\x81\x48";

struct Entry {
    const char *japanese, *english, *chinese;
};
constexpr Entry kEntries[] = {
    {"KOSELECTDLG", "KOSELECTDLG_ENG", "KOSELECTDLG_CHN"},
    {kNotSet, "None", "\xce\xde"},
    {kPerceptual, "Perceptual", "\xbf\xc9\xb8\xd0\xd6\xaa"},
    {kRelative, "Relative", "\xcf\xe0\xb6\xd4\xb1\xc8\xc9\xab"},
    {kSaturation, "Saturation", "\xb1\xa5\xba\xcd\xb6\xc8"},
    {kAbsolute, "Absolute", "\xbe\xf8\xb6\xd4\xb1\xc8\xc9\xab"},
    {kChannel, "Channel %d", "\xcd\xa8\xb5\xc0 %d"},
    {"CALIBDLG", "CALIBDLG_ENG", "CALIBDLG_CHN"},
    {kAllChannels, "All channels", "\xc8\xab\xcd\xa8\xb5\xc0"},
    {kChannels, "%d channels", "%d \xcd\xa8\xb5\xc0"},
    {kEdit, "Edit %s - [%s]", "\xb1\xe0\xbc\xad %s - [%s]"},
    {kInitialise, "Everything is reset. Is that all right?",
     "\xd2\xaa\xbd\xf8\xd0\xd0\xb3\xf5\xca\xbc\xbb\xaf\xc2\xf0\xa3\xbf"},
};

TEST(Language, TablesAreCarriedByTheModule) {
    EXPECT_TRUE(resource("TEXT_JAPANESE").starts_with("<japanese>"));
    EXPECT_TRUE(resource("TEXT_ENGLISH").starts_with("<english>"));
    EXPECT_TRUE(resource("TEXT_CHINESE").starts_with("<chinese>"));
    EXPECT_TRUE(resource("TEXT_KLINGON").empty());
}

TEST(Language, EveryTextIsInAllThreeLanguagesWithItsPlaceholders) {
    const SettingsTree japanese = SettingsTree::parse(resource("TEXT_JAPANESE"));
    const auto placeholders = [](std::string_view text) {
        std::string found;
        for (size_t at = 0; (at = text.find('%', at)) != text.npos; at += 2)
            found += text.substr(at, 2);
        return found;
    };
    for (const char* const name : {"TEXT_ENGLISH", "TEXT_CHINESE"}) {
        const SettingsTree other = SettingsTree::parse(resource(name));
        const auto& texts = japanese.root().directories.front().keys;
        EXPECT_EQ(other.root().directories.front().keys.size(), texts.size());
        for (const auto& text : texts) {
            const auto* const translation = other.root().directories.front().findKey(text.name);
            ASSERT_NE(translation, nullptr) << text.name;
            EXPECT_EQ(placeholders(translation->value), placeholders(text.value)) << text.name;
        }
    }
}

TEST(Language, ATextOfSeveralLinesStandsInOneLineOfATable) {
    const LanguageTable table("<a>\n    k(1) = one<br>two\n</a>", "<b>\n    k(1) = 1<br>2\n</b>");
    EXPECT_STREQ(table.translated("one\ntwo"), "1\n2");
}

TEST(Language, EveryTextIsTranslatedIntoEnglish) {
    const LanguageTable table(resource("TEXT_JAPANESE"), resource("TEXT_ENGLISH"));
    for (const auto& entry : kEntries)
        EXPECT_STREQ(table.translated(entry.japanese), entry.english);
}

TEST(Language, EveryTextIsTranslatedIntoChinese) {
    const LanguageTable table(resource("TEXT_JAPANESE"), resource("TEXT_CHINESE"));
    for (const auto& entry : kEntries)
        EXPECT_STREQ(table.translated(entry.japanese), entry.chinese);
}

TEST(Language, NamesTheDestination) {
    const LanguageTable english(resource("TEXT_JAPANESE"), resource("TEXT_ENGLISH"));
    EXPECT_EQ(english.destinationLanguage(), "english");
    const LanguageTable chinese(resource("TEXT_JAPANESE"), resource("TEXT_CHINESE"));
    EXPECT_EQ(chinese.destinationLanguage(), "chinese");
}

TEST(Language, UnknownTextIsShownAsItIs) {
    const LanguageTable table(resource("TEXT_JAPANESE"), resource("TEXT_ENGLISH"));
    const char text[] = "CALIBDLG ";
    EXPECT_EQ(table.translated(text), text);
}

TEST(Language, MissingTextsTranslateNothing) {
    for (const auto& [from, to] : {std::pair<const char*, const char*>{"", "<english>\na = b\n"},
                                  {"<japanese>\na = b\n", ""}, {"", ""}}) {
        const LanguageTable table(from, to);
        EXPECT_STREQ(table.translated("b"), "b");
    }
}

TEST(Language, KeyWithoutATranslationLeavesTheText) {
    const LanguageTable table("<japanese>\nx(0001) = one\nx(0002) = two\n</japanese>",
                              "<english>\nx(0002) = 2\n</english>");
    EXPECT_STREQ(table.translated("one"), "one");
    EXPECT_STREQ(table.translated("two"), "2");
}

TEST(Language, FirstKeyServesForATextThatStandsTwice) {
    const LanguageTable table("<japanese>\nx(0001) = one\nx(0002) = one\n</japanese>",
                              "<english>\nx(0001) = first\nx(0002) = second\n</english>");
    EXPECT_STREQ(table.translated("one"), "first");
}

}  // namespace
}  // namespace ko
