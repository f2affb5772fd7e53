#include "frame/state.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "frame/file.h"
#include "frame/path.h"
#include "tests/frame/code_page.h"
#include "tests/support/files.h"

namespace ko {
namespace {

namespace fs = std::filesystem;
using test::native;
using test::TempFolder;

constexpr char kSaturation[] = "\x8d\xca\x93\x78";

// Attached for one test, with the library in app/bin of a folder and the settings given.
class Attached {
public:
    explicit Attached(const std::string& ini, const std::string& language = "japanese") {
        fs::create_directories(folder_.folder() / "app" / "bin" / "ini");
        if (!ini.empty()) test::writeFile(folder_.path("app/bin/ini/KoLink.ini"), ini);
        app_ = joinPath(folder_.folder().string(), "app");
        attach({joinPath(joinPath(app_, "bin"), "KoLink.dll"), language});
    }
    ~Attached() { detach(); }
    std::string app(const char* name) const { return joinPath(app_, name); }
    std::string productFolder() const { return processState().productFolder; }

private:
    TempFolder folder_;
    std::string app_;
};

std::string iniWith(const std::string& value) {
    return "<INI>\r\n    KO_FOLDER = " + value + "\r\n</INI>\r\n";
}

TEST(State, KnowsWhereTheModuleIs) {
    const Attached attached("");
    EXPECT_NE(processState().moduleHandle, nullptr);
    EXPECT_EQ(processState().modulePath, joinPath(attached.app("bin"), "KoLink.dll"));
    EXPECT_EQ(processState().moduleFolder, attached.app("bin"));
}

TEST(State, ProductFolderIsTheModulesOwnWithoutSettings) {
    const Attached attached("");
    EXPECT_EQ(attached.productFolder(), attached.app("bin"));
}

TEST(State, ProductFolderIsTheModulesOwnWithoutTheSectionOrTheKey) {
    for (const char* ini : {"<OTHER>\n    KO_FOLDER = x\n</OTHER>\n", "KO_FOLDER = x\n",
                            "<INI>\n    KO_OTHER = x\n</INI>\n", "\n"}) {
        const Attached attached(ini);
        EXPECT_EQ(attached.productFolder(), attached.app("bin")) << ini;
    }
}

TEST(State, ProductFolderBehindADotIsRelativeToTheModule) {
    const Attached attached(iniWith(native("../data")));
    EXPECT_EQ(attached.productFolder(), attached.app("data"));
}

TEST(State, ProductFolderBehindAnAtSignIsRelativeToTheModule) {
    {
        const Attached attached(iniWith(native("@../data")));
        EXPECT_EQ(attached.productFolder(), attached.app("data"));
    }
    const Attached attached(iniWith("@data"));
    EXPECT_EQ(attached.productFolder(), joinPath(attached.app("bin"), "data"));
}

TEST(State, ProductFolderIsWrittenWithBackslashesOnEveryPlatform) {
    for (const char* value : {"..\\data", "@..\\data", ".\\..\\data"}) {
        const Attached attached(iniWith(value));
        EXPECT_EQ(attached.productFolder(), attached.app("data")) << value;
    }
}

TEST(State, AbsoluteProductFolderStandsAsItIs) {
    const std::vector<std::string> values =
        test::onWindows() ? std::vector<std::string>{"D:\\colour", "D:/colour", "\\\\server\\colour"}
                    : std::vector<std::string>{"/opt/colour"};
    for (const std::string& value : values) {
        const Attached attached(iniWith(value));
        EXPECT_EQ(attached.productFolder(), value);
    }
}

TEST(State, ProductFolderIsNeverUnderTheCurrentFolder) {
    const Attached attached(iniWith("colour"));
    EXPECT_EQ(attached.productFolder(), joinPath(attached.app("bin"), "colour"));
}

TEST(State, PathsWithoutADriveAndARootAreNotAbsolute) {
    for (const char* path : {"", "a", "./a", "a/b", "C:a", "C:"})
        EXPECT_FALSE(platform::isAbsolute(path)) << path;
    EXPECT_EQ(platform::isAbsolute("/a"), !test::onWindows());
    EXPECT_EQ(platform::isAbsolute("\\a"), false);
    EXPECT_EQ(platform::isAbsolute("C:\\a"), test::onWindows());
    EXPECT_EQ(platform::isAbsolute("//server/share"), true);
}

TEST(State, DotAloneIsTheModulesFolder) {
    const Attached attached(iniWith("."));
    EXPECT_EQ(attached.productFolder(), attached.app("bin"));
}

TEST(State, ProductFolderThatCannotBeResolvedStandsAsItIs) {
    const std::string name(240, 'x');  // fits a field, but not behind the module's folder
    {
        const Attached attached(iniWith("." + name));
        EXPECT_EQ(attached.productFolder(), "." + name);
    }
    const Attached attached(iniWith("@" + name));
    EXPECT_EQ(attached.productFolder(), name);
}

TEST(State, ProductFolderThatIsEmptyOrTooLongIsNone) {
    for (const auto& value : {std::string(), std::string("@"), std::string(260, 'x')}) {
        const Attached attached(iniWith(value));
        EXPECT_EQ(attached.productFolder(), attached.app("bin")) << value;
    }
}

TEST(State, ProductFolderKeepsItsBackslashBytes) {
    if (test::onWindows() && !test::onCodePage932())
        GTEST_SKIP() << "this code page has no such names";
    for (const auto& awkward : test::kAwkward) {
        const Attached attached(iniWith(native("../") + awkward.shiftJis));
        EXPECT_EQ(attached.productFolder(), attached.app(awkward.shiftJis));
    }
}

TEST(State, EnglishUserSeesEnglishTexts) {
    const Attached attached("", "english");
    EXPECT_STREQ(translated(kSaturation), "Saturation");
    EXPECT_STREQ(translated("KOSELECTDLG"), "KOSELECTDLG_ENG");
}

TEST(State, ChineseUserSeesChineseTexts) {
    const Attached attached("", "chinese");
    EXPECT_STREQ(translated("KOSELECTDLG"), "KOSELECTDLG_CHN");
}

TEST(State, AnyOtherLanguageSeesEnglishTexts) {
    for (const char* language : {"german", "de", "Japanese", "x"}) {
        const Attached attached("", language);
        EXPECT_STREQ(translated(kSaturation), "Saturation") << language;
    }
}

TEST(State, JapaneseOrUnknownUserSeesJapaneseTexts) {
    for (const char* language : {"japanese", ""}) {
        const Attached attached("", language);
        EXPECT_EQ(processState().languageTable, nullptr);
        EXPECT_EQ(translated(kSaturation), kSaturation);
    }
}

TEST(State, LanguageOfTheUserIsTheSystems) {
    const char* locale = std::getenv("LC_ALL");
    if (!locale) GTEST_SKIP() << "nothing is said";
    if (std::string_view(locale).starts_with("ja_JP"))
        EXPECT_EQ(platform::userLanguage(), "japanese");
    else
        EXPECT_NE(platform::userLanguage(), "japanese");
}

TEST(State, AttachingTwiceChangesNothing) {
    const Attached attached(iniWith(native("../data")));
    attach({native("/elsewhere/KoLink.dll"), "english"});
    EXPECT_EQ(attached.productFolder(), attached.app("data"));
    EXPECT_EQ(processState().languageTable, nullptr);
}

TEST(State, IsEmptyAfterDetaching) {
    { const Attached attached(iniWith("x"), "english"); }
    EXPECT_EQ(processState().moduleHandle, nullptr);
    EXPECT_STREQ(processState().productFolder, "");
    EXPECT_EQ(processState().languageTable, nullptr);
    EXPECT_EQ(processState().fileMutex, nullptr);
    detach();  // once more does no harm
}

TEST(State, ModulePathThatDoesNotFitLeavesTheFoldersEmpty) {
    attach({std::string(300, 'x'), "japanese"});
    EXPECT_STREQ(processState().modulePath, "");
    EXPECT_STREQ(processState().productFolder, "");
    detach();
}

TEST(State, ModuleOfAProgramIsTheProgram) {
    attach();
    EXPECT_TRUE(std::string_view(fileNameOf(processState().modulePath)).starts_with("engine_tests"))
        << processState().modulePath;
    detach();
}

TEST(State, FileMutexIsInBeingWhileAttached) {
    const Attached attached("");
    ASSERT_NE(processState().fileMutex, nullptr);
    platform::NamedMutex* const mutex = platform::openNamedMutex("_KOLINK_MUTEX");
    ASSERT_NE(mutex, nullptr);
    EXPECT_TRUE(platform::lock(*mutex, nullptr));
    platform::unlockAndClose(mutex);
}

TEST(State, FileWorkGoesOnUnguardedWithoutAMutex) {
    detach();
    const FileGuard guard;
    const TempFolder folder;
    EXPECT_EQ(replaceWhole(folder.path("a").c_str(), kProfileFiles, "x"), SaveResult::written);
}

}  // namespace
}  // namespace ko
