#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "frame/ascii.h"
#include "frame/path.h"
#include "frame/text.h"
#include "tests/frame/code_page.h"
#include "tests/support/files.h"

namespace ko {
namespace {

using test::native;
using test::onCodePage932;
using test::onWindows;

// "ab" and the two bytes of a Shift-JIS character.
constexpr char kMixed[] = "ab\x95\x5c";

TEST(Text, IsCutAtAWholeCharacter) {
    EXPECT_EQ(wholeCharacters(kMixed, 4), 4u);
    EXPECT_EQ(wholeCharacters(kMixed, 3), 2u);
    EXPECT_EQ(wholeCharacters(kMixed, 2), 2u);
}

TEST(Text, HalfWidthKatakanaIsOneByte) {
    EXPECT_EQ(wholeCharacters("\xb1\xb2\xb3", 2), 2u);
}

TEST(Text, FieldEndsAtAWholeCharacterAndIsZeroedBehindIt) {
    char field[4];
    std::memset(field, 'x', sizeof field);
    copyText(field, "ab\x95\x5c");
    EXPECT_EQ(std::string(field, 4), std::string("ab\0\0", 4));
}

TEST(Text, FieldTakesTextUpToItsFirstNul) {
    char field[8];
    copyText(field, std::string_view("ab\0cd", 5));
    EXPECT_EQ(std::string(field, 8), std::string("ab\0\0\0\0\0\0", 8));
}

TEST(Text, FieldMayBeGivenItsOwnText) {
    char field[8] = "abcdef";
    copyText(field, std::string_view(field + 2, 4));
    EXPECT_STREQ(field, "cdef");
}

TEST(Text, FieldWithoutTerminatorIsReadToItsEnd) {
    const char field[3] = {'a', 'b', 'c'};
    EXPECT_EQ(textIn(field), "abc");
}

TEST(Ascii, CaseOfLettersIsIgnoredAndOfNothingElse) {
    EXPECT_TRUE(sameIgnoringCase("Title", "tITLE"));
    EXPECT_FALSE(sameIgnoringCase("a[", "a{"));
    EXPECT_FALSE(sameIgnoringCase("\x83\x41", "\x83\x42"));
}

TEST(Ascii, ComparesBytesAndTheShorterFirst) {
    EXPECT_LT(compareIgnoringCase("abc", "abcd"), 0);
    EXPECT_GT(compareIgnoringCase("abcd", "ABC"), 0);
    EXPECT_LT(compareIgnoringCase("z", "\x83"), 0);
    EXPECT_EQ(compareIgnoringCase("abc", "ABC"), 0);
}

TEST(Ascii, BeginningsAreComparedAsFarAsTheyGo) {
    EXPECT_TRUE(startsIgnoringCase("CHANNEL 4", "channel "));
    EXPECT_FALSE(startsIgnoringCase("CHANNEL 4", "channel 1"));
    EXPECT_FALSE(startsIgnoringCase("CHAN", "channel"));
}

TEST(Ascii, TrimmingTakesBlanksAtBothEnds) {
    EXPECT_EQ(trimmed(" \ta b\t "), "a b");
    EXPECT_EQ(trimmed(" \r\n"), "\r\n");
    EXPECT_EQ(trimmed("\r\n a\r\n", kBlanksAndLineEnds), "a");
    EXPECT_EQ(trimmed("  "), "");
}

TEST(Text, CorrectionTrimsBlanks) {
    char text[260] = "  C:\\some folder\\a.icc \t";
    correctTyped(text);
    EXPECT_STREQ(text, "C:\\some folder\\a.icc");
}

TEST(Text, CorrectionDropsHalfACharacterAtTheEnd) {
    char text[5] = {'a', 'b', 'c', '\x95', '\0'};
    correctTyped(text);
    EXPECT_STREQ(text, "abc");
}

TEST(Text, CorrectionTerminatesAFullField) {
    char text[4] = {'a', 'b', 'c', 'd'};
    correctTyped(text);
    EXPECT_STREQ(text, "abc");
}

TEST(Text, CorrectionLeavesLineEndsInside) {
    char text[32] = "one\r\ntwo\r\n";
    correctTyped(text);
    EXPECT_STREQ(text, "one\r\ntwo");
}

TEST(Text, CorrectionOfBlanksAloneIsEmpty) {
    char text[8] = "   ";
    correctTyped(text);
    EXPECT_STREQ(text, "");
}

TEST(Text, PlainGb2312IsToldFromJapanese) {
    EXPECT_TRUE(couldBeGb2312("\xcd\xa8\xb5\xc0 1"));       // "channel 1" in Chinese
    EXPECT_TRUE(couldBeGb2312("Cyan"));
    EXPECT_FALSE(couldBeGb2312("\x83\x56\x83\x41\x83\x93"));  // katakana in Shift-JIS
    EXPECT_FALSE(couldBeGb2312("\xbc\xb1\xdd"));              // half of a character is left
    EXPECT_FALSE(couldBeGb2312("\xb0"));
}

TEST(Text, IsCutAtAWholeCharacterOfItsEncoding) {
    // The second byte of this Chinese character is a first byte in Shift-JIS.
    const std::string text = "a\xb5\xe3";
    EXPECT_EQ(wholeCharacters(text, 2, Encoding::gb2312), 1u);
    EXPECT_EQ(wholeCharacters(text, 3, Encoding::gb2312), 3u);
    char field[4];
    copyText(field, text + "\xb5\xe3", Encoding::gb2312);
    EXPECT_EQ(textIn(field), text);
}

TEST(Text, CorrectionKeepsAChineseCharacterAtTheEnd) {
    char field[8] = " \xb5\xe3 ";
    correctTyped(field, Encoding::gb2312);
    EXPECT_EQ(textIn(field), "\xb5\xe3");
    std::memcpy(field, "\xb5\xe3\xb5\0", 4);
    correctTyped(field, Encoding::gb2312);
    EXPECT_EQ(textIn(field), "\xb5\xe3");
}

TEST(Path, ATypedOneLosesBlanksAndQuotationMarks) {
    char field[12];
    copyTypedPath(field, " \" a b.icc\" ");
    EXPECT_STREQ(field, "a b.icc");
    copyTypedPath(field, "12345678901 ");
    EXPECT_STREQ(field, "12345678901");
    copyTypedPath(field, "1234567890 2");
    EXPECT_STREQ(field, "1234567890");
}

TEST(Path, ATypedOneKeepsALastByteThatBeginsACharacterElsewhere) {
    char field[12];
    copyTypedPath(field, "caf\xe9");  // half a character of Shift-JIS, a whole one of Latin 1
    EXPECT_STREQ(field, "caf\xe9");
}

TEST(Path, IsSplitAtItsLastSeparator) {
    const std::string path = native("/app/bin/a.icc");
    EXPECT_EQ(folderOf(path), native("/app/bin"));
    EXPECT_EQ(fileNameOf(path), "a.icc");
    EXPECT_EQ(extensionOf(path), ".icc");
}

TEST(Path, FolderHasNoTrailingSeparator) {
    EXPECT_EQ(folderOf(native("/app//a.icc")), native("/app"));
    EXPECT_EQ(folderOf(native("app/bin/")), native("app/bin"));
    EXPECT_EQ(fileNameOf(native("app/bin/")), "");
}

TEST(Path, RootKeepsItsSeparator) {
    EXPECT_EQ(folderOf(native("/a.icc")), native("/"));
    EXPECT_EQ(joinPath(native("/"), "a.icc"), native("/a.icc"));
}

TEST(Path, DriveKeepsItsColonAndItsRoot) {
    if (!onWindows()) GTEST_SKIP() << "no drives here";
    EXPECT_EQ(folderOf("C:\\a.icc"), "C:\\");
    EXPECT_EQ(folderOf("C:a.icc"), "C:");
    EXPECT_EQ(fileNameOf("C:a.icc"), "a.icc");
    EXPECT_EQ(joinPath("C:", "a.icc"), "C:a.icc");
}

TEST(Path, BothSeparatorsCountOnWindows) {
    if (!onWindows()) GTEST_SKIP() << "a backslash is a character of a name here";
    EXPECT_EQ(folderOf("C:/app\\bin/a.icc"), "C:/app\\bin");
    EXPECT_EQ(fileNameOf("C:/app\\bin/a.icc"), "a.icc");
}

TEST(Path, BareNameHasNoFolder) {
    EXPECT_EQ(folderOf("a.icc"), "");
    EXPECT_EQ(fileNameOf("a.icc"), "a.icc");
    EXPECT_EQ(joinPath("", "a.icc"), "a.icc");
}

TEST(Path, DotOfAFolderIsNoExtension) {
    EXPECT_EQ(extensionOf(native("app.d/bin")), "");
    EXPECT_EQ(extensionOf(native("app.d/a.b.icc")), ".icc");
}

TEST(Path, ExtensionIsComparedWithoutCase) {
    EXPECT_TRUE(hasExtension("a.IcC", ".icc"));
    EXPECT_FALSE(hasExtension("a.icc2", ".icc"));
    EXPECT_FALSE(hasExtension("icc", ".icc"));
    EXPECT_FALSE(hasExtension("", ".icc"));
}

TEST(Path, ThatIsTooLongForAFieldIsRefused) {
    char field[4] = "old";
    EXPECT_FALSE(copyPath(field, "abcd"));
    EXPECT_STREQ(field, "old");
    EXPECT_FALSE(copyPath(field, nullptr));
    EXPECT_TRUE(copyPath(field, "abc"));
    EXPECT_STREQ(field, "abc");
}

// The code page decides whether the second byte of such a character is a separator.
TEST(CodePage, SecondByteIsNoSeparatorOn932) {
    for (const auto& awkward : test::kAwkward) {
        const std::string character = awkward.shiftJis;
        const std::string path = native("/app/") + character + ".icc";
        if (onWindows() && !onCodePage932()) {
            EXPECT_EQ(folderOf(path), "\\app\\" + character.substr(0, 1));
            EXPECT_EQ(fileNameOf(path), ".icc");
        } else {
            EXPECT_EQ(folderOf(path), native("/app"));
            EXPECT_EQ(fileNameOf(path), character + ".icc");
            EXPECT_EQ(folderOf(native("/app/") + character + native("/a.icc")),
                      native("/app/") + character);
        }
    }
}

TEST(CodePage, NothingIsAddedToAFolderThatEndsInABackslashByte) {
    for (const auto& awkward : test::kAwkward) {
        if (onWindows() && !onCodePage932()) continue;
        const std::string folder = native("/app/") + awkward.shiftJis;
        EXPECT_EQ(joinPath(folder, "a.icc"), folder + native("/") + "a.icc");
    }
}

// The suite runs on a Japanese code page too, and says so; that run cannot pass without one.
TEST(CodePage, IsJapaneseWhereTheUserIs) {
    const char* locale = std::getenv("LC_ALL");
    if (!onWindows() || !locale) GTEST_SKIP() << "nothing is said";
    EXPECT_EQ(onCodePage932(), std::string_view(locale).starts_with("ja_JP"));
}

}  // namespace
}  // namespace ko
