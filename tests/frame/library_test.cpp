// The shared library as a host finds it: where it is loaded from decides its product folder.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "frame/path.h"
#include "frame/text.h"
#include "kolink/link_settings.h"
#include "tests/frame/code_page.h"
#include "tests/support/files.h"

namespace ko {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;

// A product laid out in a folder: app/bin with the library, app/data with the plug-in.
class Product {
public:
    explicit Product(const fs::path& folder) : bin_(folder / "app" / "bin") {
        fs::create_directories(bin_ / "ini");
        fs::create_directories(folder / "app" / "data");
        fs::copy_file(KO_TEST_LIBRARY, bin_ / fs::path(KO_TEST_LIBRARY).filename());
        putPlugin(folder / "app" / "data");
    }

    void putPlugin(const fs::path& folder) const {
        fs::copy_file(KO_TEST_PLUGIN, folder / (std::string("LutRead") + platform::kPluginSuffix));
    }
    void putDamagedPlugin(const fs::path& folder) const {
        test::writeFile((folder / (std::string("LutRead") + platform::kPluginSuffix)).string(),
                        "no library");
    }
    void setFolder(const std::string& value) const {
        std::ofstream(bin_ / "ini" / "KoLink.ini", std::ios::binary)
            << "<INI>\n    KO_FOLDER = " << value << "\n</INI>\n";
    }
    const fs::path& bin() const { return bin_; }

    // Whether the library, loaded from its path as bytes, finds the plug-in.
    bool findsPlugin(std::string folder) const {
        const std::string library =
            joinPath(folder, fs::path(KO_TEST_LIBRARY).filename().string());
        void* const module = platform::loadModule(library.c_str());
        EXPECT_NE(module, nullptr) << library;
        if (!module) return false;
        using Init = int32_t (*)(CmsLinkSettings*);
        using Combine = void* (*)(const CmsLinkSettings*);
        const auto init = reinterpret_cast<Init>(platform::findSymbol(module, "jCmsInitCms"));
        const auto combine =
            reinterpret_cast<Combine>(platform::findSymbol(module, "jKoCmykCombineProfile"));
        const TempFolder marks;
        CmsLinkSettings settings;
        init(&settings);
        EXPECT_TRUE(copyPath(settings.sourcePath, marks.path("mark.nqp").c_str()));
        platform::setLastError(0);
        EXPECT_EQ(combine(&settings), nullptr);
        EXPECT_NE(platform::lastError(), 0u);  // there is a reason for each
        platform::freeModule(module);
        return test::exists(marks.path("mark.nqp"));
    }
    bool findsPlugin() const { return findsPlugin(bin_.string()); }

private:
    fs::path bin_;
};

TEST(Library, LooksForItsPluginInTheFolderOfItsSettings) {
    const TempFolder folder;
    const Product product(folder.folder());
    product.setFolder("..\\data");
    EXPECT_TRUE(product.findsPlugin());
}

TEST(Library, TakesAFolderBehindAnAtSign) {
    const TempFolder folder;
    const Product product(folder.folder());
    product.setFolder("@..\\data");
    EXPECT_TRUE(product.findsPlugin());
}

TEST(Library, TakesAnAbsoluteFolder) {
    const TempFolder folder;
    const Product product(folder.folder());
    product.setFolder((folder.folder() / "app" / "data").string());
    EXPECT_TRUE(product.findsPlugin());
}

TEST(Library, LooksBesideItselfWithoutSettings) {
    const TempFolder folder;
    const Product product(folder.folder());
    EXPECT_FALSE(product.findsPlugin());
    product.putPlugin(product.bin());
    EXPECT_TRUE(product.findsPlugin());
}

// A folder that is the current one while this lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const fs::path& folder) : before_(fs::current_path()) {
        fs::current_path(folder);
    }
    ~CurrentFolder() {
        std::error_code ignored;
        fs::current_path(before_, ignored);
    }
    CurrentFolder(const CurrentFolder&) = delete;

private:
    fs::path before_;
};

TEST(Library, TakesAFolderWithoutADotFromBesideItselfAlone) {
    const TempFolder folder, elsewhere;
    const Product product(folder.folder());
    product.setFolder("data");
    fs::create_directory(elsewhere.folder() / "data");
    product.putPlugin(elsewhere.folder() / "data");
    product.putPlugin(elsewhere.folder());
    const CurrentFolder current(elsewhere.folder());
    EXPECT_FALSE(product.findsPlugin());
    fs::create_directory(product.bin() / "data");
    product.putPlugin(product.bin() / "data");
    EXPECT_TRUE(product.findsPlugin());
}

TEST(Library, LoadsNothingForAPlugInThatIsNoLibrary) {
    const TempFolder folder;
    const Product product(folder.folder());
    product.putDamagedPlugin(product.bin());
    EXPECT_FALSE(product.findsPlugin());
}

// The path does not fit, so that there is no folder to look in: not the current one either.
TEST(Library, UnderAPathThatIsTooLongHasNoPlugin) {
    if (test::onWindows()) GTEST_SKIP() << "the system loads nothing from such a path";
    const TempFolder folder, elsewhere;
    const Product product(folder.folder() / std::string(200, 'x') / std::string(60, 'y'));
    product.putPlugin(product.bin());
    product.putPlugin(elsewhere.folder());
    const CurrentFolder current(elsewhere.folder());
    EXPECT_FALSE(product.findsPlugin());
}

TEST(Library, CarriesTheTablesInTheirEncodings) {
    const std::string bytes = test::readText(KO_TEST_LIBRARY);
    for (const char* line : {"<japanese>\n", "    col(0006) = \x8d\xca\x93\x78\n",    // Shift-JIS
                             "<english>\n", "    col(0007) = Absolute\n",  // ASCII
                             "<chinese>\n", "    KoCalib(0003) = \xc8\xab\xcd\xa8\xb5\xc0\n"})
        EXPECT_NE(bytes.find(line), bytes.npos) << line;  // the last one is GB2312
}

TEST(Library, LivesInAFolderWhoseNameHasABackslashByte) {
    if (test::onWindows() && !test::onCodePage932())
        GTEST_SKIP() << "this code page has no such names";
    for (const auto& awkward : test::kAwkward) {
        const TempFolder folder;
        const std::u8string name(awkward.name);
        const Product product(folder.folder() / fs::path(name));
        product.setFolder("..\\data");
        const std::string bytes = test::onWindows() ? std::string(awkward.shiftJis)
                                                    : std::string(name.begin(), name.end());
        EXPECT_TRUE(product.findsPlugin(
            joinPath(joinPath(joinPath(folder.folder().string(), bytes), "app"), "bin")));
    }
}

}  // namespace
}  // namespace ko
