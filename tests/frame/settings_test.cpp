#include "frame/settings.h"

#include <gtest/gtest.h>

#include "frame/file.h"
#include "tests/frame/code_page.h"
#include "tests/support/files.h"

namespace ko {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;
using test::writeFile;

const SettingsTree::Key* keyOf(const SettingsTree& tree, std::string_view path,
                               std::string_view key) {
    const auto* directory = tree.find(path);
    return directory ? directory->findKey(key) : nullptr;
}

std::string valueIn(std::string_view text, std::string_view path, std::string_view key) {
    const SettingsTree tree = SettingsTree::parse(text);
    const auto* found = keyOf(tree, path, key);
    return found ? found->value : "(none)";
}

constexpr char kNested[] =
    "<CALIB>\n"
    "    TITLE = Paper\n"
    "    <CURVE_00>\n"
    "        NAME = Cyan\n"
    "    </CURVE_00>\n"
    "    LIMIT = 255\n"
    "</CALIB>\n";

TEST(SettingsReader, FindsKeysInNestedDirectories) {
    EXPECT_EQ(valueIn(kNested, "\\CALIB", "TITLE"), "Paper");
    EXPECT_EQ(valueIn(kNested, "\\CALIB\\CURVE_00", "NAME"), "Cyan");
    EXPECT_EQ(valueIn(kNested, "\\CALIB", "LIMIT"), "255");
    EXPECT_EQ(valueIn(kNested, "CALIB", "LIMIT"), "255");
}

TEST(SettingsReader, KeepsDirectoriesApart) {
    EXPECT_EQ(valueIn(kNested, "\\CALIB", "NAME"), "(none)");
    EXPECT_EQ(valueIn(kNested, "\\CALIB\\CURVE_00", "TITLE"), "(none)");
    EXPECT_EQ(valueIn(kNested, "\\CURVE_00", "NAME"), "(none)");
    EXPECT_EQ(valueIn(kNested, "", "TITLE"), "(none)");
}

TEST(SettingsReader, ReadsKeysOutsideEveryDirectory) {
    EXPECT_EQ(valueIn("A = 1\n", "", "A"), "1");
    EXPECT_EQ(valueIn("A = 1\n", "\\", "A"), "1");
}

TEST(SettingsReader, TakesAnyLineEnd) {
    for (const char* text : {"<A>\nK = v\nL = w\n</A>", "<A>\r\nK = v\r\nL = w\r\n</A>\r\n",
                             "<A>\rK = v\rL = w\r</A>\r"}) {
        EXPECT_EQ(valueIn(text, "\\A", "K"), "v");
        EXPECT_EQ(valueIn(text, "\\A", "L"), "w");
    }
}

TEST(SettingsReader, TakesAnyIndent) {
    EXPECT_EQ(valueIn("\t<A>  \n \tK=v\n  </A>\t\nK = root", "\\A", "K"), "v");
    EXPECT_EQ(valueIn("\t<A>  \n \tK=v\n  </A>\t\nK = root", "", "K"), "root");
}

TEST(SettingsReader, NamesAreComparedWithoutCase) {
    EXPECT_EQ(valueIn("<ini>\nKo_Folder = x\n</INI>\n", "\\INI", "KO_FOLDER"), "x");
}

TEST(SettingsReader, SkipsLinesItCannotRead) {
    const char text[] =
        "; a remark\n<A>\nnonsense\n<>\n</>\n<B\n = no name\n<C>x\n</NEVER>\nK = v\n</A>\n";
    EXPECT_EQ(valueIn(text, "\\A", "K"), "v");
    EXPECT_EQ(SettingsTree::parse(text).find("\\A")->keys.size(), 1u);
}

TEST(SettingsReader, SkipsLinesWithNulBytes) {
    constexpr char kBytes[] = "<A>\nK\0 = 1\nL = \0\nM = 2\n</A>\n";
    const std::string text(kBytes, sizeof kBytes - 1);
    EXPECT_EQ(valueIn(text, "\\A", "K"), "(none)");
    EXPECT_EQ(valueIn(text, "\\A", "L"), "(none)");
    EXPECT_EQ(valueIn(text, "\\A", "M"), "2");
}

TEST(SettingsReader, StepsOverAByteOrderMark) {
    EXPECT_EQ(valueIn("\xef\xbb\xbf<A>\nK = v\n", "\\A", "K"), "v");
}

TEST(SettingsReader, OneBlankBehindTheSignIsNotTheValues) {
    EXPECT_EQ(valueIn("K =  v ", "", "K"), " v ");
    EXPECT_EQ(valueIn("K =v", "", "K"), "v");
    EXPECT_EQ(valueIn("K =", "", "K"), "");
    EXPECT_EQ(valueIn("K = ", "", "K"), "");
}

TEST(SettingsReader, ValueMayHoldTheSign) {
    EXPECT_EQ(valueIn("K = a = b", "", "K"), "a = b");
    EXPECT_EQ(valueIn("K = <x>", "", "K"), "<x>");
}

TEST(SettingsReader, LaterLineSetsTheKeyAgain) {
    EXPECT_EQ(valueIn("K = 1\nk = 2\n", "", "K"), "2");
}

TEST(SettingsReader, DirectoryMayBeOpenedAgain) {
    const char text[] = "<A>\nK = 1\n</A>\n<B>\n</B>\n<A>\nL = 2\n</A>\n";
    EXPECT_EQ(valueIn(text, "\\A", "K"), "1");
    EXPECT_EQ(valueIn(text, "\\A", "L"), "2");
}

TEST(SettingsReader, ClosingADirectoryClosesWhatIsOpenInIt) {
    const char text[] = "<A>\n<B>\nK = 1\n</A>\nL = 2\n";
    EXPECT_EQ(valueIn(text, "\\A\\B", "K"), "1");
    EXPECT_EQ(valueIn(text, "", "L"), "2");
}

TEST(SettingsReader, EndOfTheTextClosesEverything) {
    EXPECT_EQ(valueIn("<A>\n<B>\nK = 1", "\\A\\B", "K"), "1");
}

TEST(SettingsReader, DirectoriesThatLieTooDeepAreLeftOut) {
    std::string text, path;
    for (int depth = 0; depth < 20; ++depth) {
        text += "<D>\nK = " + std::to_string(depth) + "\n";
        path += "\\D";
    }
    for (int depth = 20; depth > 0; --depth) text += "</D>\n";
    text += "K = root\n";
    const std::string_view deepest = std::string_view(path).substr(0, 2 * SettingsTree::kMaxDepth);
    EXPECT_EQ(valueIn(text, deepest, "K"), "15");
    EXPECT_EQ(valueIn(text, path, "K"), "(none)");
    EXPECT_EQ(valueIn(text, "", "K"), "root");
}

TEST(SettingsReader, NumberOfEntriesIsBounded) {
    std::string text;
    for (size_t key = 0; key < SettingsTree::kMaxEntries + 10; ++key)
        text += "K" + std::to_string(key) + "=\n";
    EXPECT_EQ(SettingsTree::parse(text).root().keys.size(), SettingsTree::kMaxEntries);
}

TEST(SettingsReader, OpeningsAndClosingsWithoutEndAreReadInTime) {
    std::string text;
    for (int line = 0; line < 500000; ++line) text += line % 2 ? "<A>\n" : "</B>\n";
    EXPECT_NE(SettingsTree::parse(text).find("\\A"), nullptr);
}

TEST(SettingsReader, LongLinesAreWholeValues) {
    const std::string value(10000, 'x');
    EXPECT_EQ(valueIn("K = " + value + "\nL = 1\n", "", "K"), value);
    EXPECT_EQ(valueIn("K = " + value + "\nL = 1\n", "", "L"), "1");
}

TEST(SettingsReader, ShiftJisDirectoryMayHoldABackslashByte) {
    for (const auto& awkward : test::kAwkward) {
        const std::string name = awkward.shiftJis;
        const std::string text = "<" + name + ">\n<B>\nK = 1\n</B>\n</" + name + ">\n";
        EXPECT_EQ(valueIn(text, "\\" + name + "\\B", "K"), "1");
    }
}

TEST(SettingsWriter, IndentsFourSpacesALevel) {
    SettingsTree tree;
    EXPECT_TRUE(tree.set("\\CALIB", "TITLE", "Paper"));
    EXPECT_TRUE(tree.set("\\CALIB\\CURVE_00", "NAME", "Cyan"));
    EXPECT_TRUE(tree.set("\\CALIB", "LIMIT", "255"));
    EXPECT_EQ(tree.text(),
              "<CALIB>\r\n"
              "    TITLE = Paper\r\n"
              "    LIMIT = 255\r\n"
              "    <CURVE_00>\r\n"
              "        NAME = Cyan\r\n"
              "    </CURVE_00>\r\n"
              "</CALIB>\r\n");
}

TEST(SettingsWriter, WrittenTextReadsBackTheSame) {
    SettingsTree tree;
    const std::string values[] = {"",    " ",     "  a",         "a  ",      "\ta",
                                  "a=b", "</A>",  "\x95\x5c",    "\"quoted\"", std::string(9000, 'y'),
                                  "<A>", "; no remark"};
    for (size_t at = 0; at < std::size(values); ++at)
        ASSERT_TRUE(tree.set("\\A\\B", "K" + std::to_string(at), values[at]));
    const SettingsTree again = SettingsTree::parse(tree.text());
    for (size_t at = 0; at < std::size(values); ++at) {
        const auto* key = keyOf(again, "\\A\\B", "K" + std::to_string(at));
        ASSERT_NE(key, nullptr) << at;
        EXPECT_EQ(key->value, values[at]);
    }
    EXPECT_EQ(again.text(), tree.text());
}

TEST(SettingsWriter, LineEndsInAValueBecomeBlanks) {
    SettingsTree tree;
    EXPECT_TRUE(tree.set("\\A", "K", std::string_view("a\r\nb\0</A>", 9)));
    EXPECT_EQ(keyOf(tree, "\\A", "K")->value, "a  b </A>");
    EXPECT_EQ(valueIn(tree.text(), "\\A", "K"), "a  b </A>");
}

TEST(SettingsWriter, RefusesNamesThatCannotBeReadBack) {
    SettingsTree tree;
    for (const char* key : {"", " K", "K ", "a=b", "<K", "a\nb", "\xef\xbb\xbfK"})
        EXPECT_FALSE(tree.set("\\A", key, "v")) << key;
    for (const char* path : {"\\<A", "\\A>", "\\/A", "\\ A", "\\a\nb"})
        EXPECT_FALSE(tree.set(path, "K", "v")) << path;
    EXPECT_EQ(tree.text(), "");
}

TEST(SettingsWriter, RefusesWhatLiesTooDeep) {
    SettingsTree tree;
    std::string path;
    for (size_t depth = 0; depth < SettingsTree::kMaxDepth; ++depth) path += "\\D";
    EXPECT_TRUE(tree.set(path, "K", "v"));
    EXPECT_FALSE(tree.set(path + "\\D", "K", "v"));
}

TEST(SettingsFile, ThatIsMissingIsNotOpened) {
    const TempFolder folder;
    EXPECT_FALSE(SettingsFile::open(folder.path("missing").c_str()));
    EXPECT_FALSE(SettingsFile::open(folder.folder().string().c_str()));
    EXPECT_FALSE(SettingsFile::open(nullptr));
}

TEST(SettingsFile, ThatIsEmptyHasNoKeys) {
    const TempFolder folder;
    writeFile(folder.path("a"), "");
    auto file = SettingsFile::open(folder.path("a").c_str());
    ASSERT_TRUE(file);
    EXPECT_EQ(file->value("K"), nullptr);
}

TEST(SettingsFile, ThatIsHugeIsNotOpened) {
    const TempFolder folder;
    writeFile(folder.path("a"), std::string(SettingsTree::kMaxFileSize + 1, ' '));
    EXPECT_FALSE(SettingsFile::open(folder.path("a").c_str()));
}

TEST(SettingsFile, GivesTheValueOfTheSelectedDirectory) {
    const TempFolder folder;
    writeFile(folder.path("a"), "K = 1\n<A>\nK = ab\x95\x5c\n</A>\n");
    auto file = SettingsFile::open(folder.path("a").c_str());
    ASSERT_TRUE(file);
    file->select("\\A");
    ASSERT_NE(file->value("k"), nullptr);
    EXPECT_EQ(*file->value("k"), "ab\x95\x5c");
}

TEST(SettingsFile, StartedAfreshReplacesTheOldOneWhenItIsSaved) {
    const TempFolder folder;
    writeFile(folder.path("a"), "<A>\nOLD = 1\n</A>\n");
    auto file = SettingsFile::startAfresh(folder.path("a").c_str());
    ASSERT_TRUE(file);
    file->select("\\A");
    EXPECT_EQ(file->value("OLD"), nullptr);
    EXPECT_TRUE(file->set("NEW", "2"));
    EXPECT_EQ(test::readText(folder.path("a")), "<A>\nOLD = 1\n</A>\n");
    EXPECT_TRUE(file->save());
    file.reset();
    EXPECT_EQ(test::readText(folder.path("a")), "<A>\r\n    NEW = 2\r\n</A>\r\n");
}

TEST(SettingsFile, KeepsItsOtherKeysWhenOneIsSet) {
    const TempFolder folder;
    writeFile(folder.path("a"), "<A>\nK = 1\nL = 2\n</A>\n");
    auto file = SettingsFile::open(folder.path("a").c_str());
    file->select("\\A");
    EXPECT_TRUE(file->set("k", "3"));
    EXPECT_TRUE(file->save());
    EXPECT_EQ(test::readText(folder.path("a")), "<A>\r\n    K = 3\r\n    L = 2\r\n</A>\r\n");
}

TEST(SettingsFile, ChangesNothingOnDiskUntilItIsSaved) {
    const TempFolder folder;
    writeFile(folder.path("a"), "<A>\nK = 1\n</A>\n");
    auto file = SettingsFile::open(folder.path("a").c_str());
    file->select("\\A");
    EXPECT_TRUE(file->set("K", "2"));
    file.reset();
    EXPECT_EQ(test::readText(folder.path("a")), "<A>\nK = 1\n</A>\n");
}

TEST(SettingsFile, ThatCannotBeWrittenLeavesTheOldOne) {
    const TempFolder folder;
    EXPECT_FALSE(SettingsFile::startAfresh(""));
    EXPECT_FALSE(SettingsFile::startAfresh(nullptr));
    auto nowhere = SettingsFile::startAfresh(folder.path("missing/a").c_str());
    EXPECT_TRUE(nowhere->set("K", "1"));
    EXPECT_FALSE(nowhere->save());
    fs::create_directory(folder.folder() / "b");
    auto taken = SettingsFile::startAfresh(folder.path("b").c_str());
    EXPECT_TRUE(taken->set("K", "1"));
    EXPECT_FALSE(taken->save());
    EXPECT_TRUE(fs::is_directory(folder.folder() / "b"));
}

TEST(SettingsFile, ThatCouldNotBeReadBackIsNotWritten) {
    const TempFolder folder;
    writeFile(folder.path("a"), "K = 1\n");
    auto file = SettingsFile::startAfresh(folder.path("a").c_str());
    EXPECT_TRUE(file->set("K", std::string(SettingsTree::kMaxFileSize, 'x')));
    EXPECT_FALSE(file->save());
    EXPECT_EQ(test::readText(folder.path("a")), "K = 1\n");
}

const test::Bytes& goodFile() {
    static const test::Bytes bytes = [] {
        SettingsTree tree;
        for (int curve = 0; curve < 4; ++curve) {
            const std::string path = "\\CALIB\\CURVE_0" + std::to_string(curve);
            EXPECT_TRUE(tree.set(path, "NAME", "\x95\x5c = <x>"));
            for (int tone = 0; tone < 5; ++tone)
                EXPECT_TRUE(tree.set(path, "TONE_00" + std::to_string(tone), "0,255"));
        }
        const std::string text = tree.text();
        return test::Bytes(text.begin(), text.end());
    }();
    return bytes;
}

// Whatever was read must be what a save and a second reading give.
void expectStable(const test::Bytes& bytes) {
    const std::string text(bytes.begin(), bytes.end());
    const std::string once = SettingsTree::parse(text).text();
    EXPECT_EQ(SettingsTree::parse(once).text(), once);
}

TEST(SettingsReader, ReadsEveryBeginningOfAFile) {
    test::forEachTruncation(goodFile(), 100000, expectStable);
}

TEST(SettingsReader, ReadsDamagedFiles) {
    for (uint32_t seed = 0; seed < 5000; ++seed) expectStable(test::mutated(goodFile(), seed));
}

TEST(SettingsReader, ReadsDamagedFilesFromDisk) {
    const TempFolder folder;
    for (uint32_t seed = 0; seed < 200; ++seed) {
        writeFile(folder.path("a"), test::mutated(goodFile(), seed));
        auto file = SettingsFile::open(folder.path("a").c_str());
        ASSERT_TRUE(file);
        file->select("\\CALIB\\CURVE_01");
        const std::string* const value = file->value("NAME");
        EXPECT_TRUE(!value || value->find_first_of(std::string_view("\r\n\0", 3)) == value->npos);
    }
}

}  // namespace
}  // namespace ko
