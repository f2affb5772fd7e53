// From an empty desktop to a converted colour, in the example host's windows alone: a black
// correction, a device link on a picked paper, a colour of it corrected, and colours converted.
// Files and numbers are held against the library's functions, called without any window.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "kolink.h"
#include "tests/dialog/host.h"
#include "tests/dialog/language.h"
#include "tests/dialog/profile.h"

using namespace ko::test;

namespace {

constexpr char kDebian[] = "Z:\\usr\\share\\color\\icc\\ghostscript\\default_cmyk.icc";
constexpr int kMessageText = 0xffff;

using Levels = std::array<int32_t, 4>;  // C, M, Y, K

constexpr Levels kCorrected = {200, 104, 64, 0};  // a node of the grid
constexpr int32_t kMoreCyan = 20;
constexpr Levels kBesideIt = {203, 101, 66, 3};        // between nodes
constexpr Levels kOtherHue = {33, 45, 211, 0};

std::wstring result(const wchar_t* function, const std::string& path) {
    return std::wstring(function) + L" = 1  " + wide(path);
}

// The numbers after a name in a text of the host's, such as "paper: C 0 M 8 Y 26 K 5".
Levels numbersAfter(const std::wstring& text, const wchar_t* name) {
    Levels numbers{-1, -1, -1, -1};
    size_t at = text.find(name);
    for (int32_t& number : numbers) {
        at = text.find_first_of(L"0123456789", at);
        if (at == text.npos) break;
        number = static_cast<int32_t>(std::wcstol(&text[at], nullptr, 10));
        at = text.find_first_not_of(L"0123456789", at);
    }
    return numbers;
}

uint32_t packed(const Levels& cmyk) {
    uint32_t word = 0;
    for (const int32_t level : cmyk) word = word << 8 | static_cast<uint32_t>(level);
    return word;
}

size_t nodeOf(const Levels& cmyk) {
    size_t node = 0;
    for (const int32_t level : cmyk) node = node * 33 + static_cast<size_t>((level + 7) / 8);
    return node;
}

// A colour through a link's grid, in tenths of a level. Its curves are the identity.
std::wstring converted(const CmykProfile& link, const Levels& cmyk) {
    Levels values = cmyk;
    jKoCmykCMYKtoCMYK16(&link, values.data());
    std::wstring text;
    for (size_t ink = 0; ink < 4; ++ink) {
        const int32_t tenths = (values[ink] * 10 + 8) / 16;
        text += std::wstring(ink ? L" " : L"") + L"CMYK"[ink] + L' ';
        text += std::to_wstring(tenths / 10) + L'.' + std::to_wstring(tenths % 10);
    }
    return text;
}

std::wstring convertedBy(const HostProgram& host, const Levels& cmyk) {
    for (int ink = 0; ink < 4; ++ink)
        host.window().enter(IDC_IN_C + ink, std::to_wstring(cmyk[static_cast<size_t>(ink)]),
                            IDC_CONVERT);
    host.window().click(IDC_CONVERT);
    return host.window().text(IDC_OUT);
}

void browse(const DialogWindow& dialog, int button, const std::string& path) {
    dialog.press(button);
    dialog.asked().chooseFile(path);
    dialog.waitForQuiet();
}

void makeBlackCorrection(const HostProgram& host, const std::string& path) {
    const DialogWindow dialog = host.open(IDM_BKC_NEW);
    for (int index = 0; index < 32; ++index) dialog.key(IDC_GRAPH, VK_RIGHT);
    EXPECT_EQ(dialog.text(IDC_INPUT_K), L"50 %");
    dialog.enter(IDC_PERCENT_K, L"40");
    dialog.enter(IDC_TITLE, L"newspaper");
    dialog.press(IDC_SAVE);
    dialog.asked().chooseFile(path);
    dialog.waitForQuiet();
    dialog.press(IDOK);
    host.waitUntilClosed();
    EXPECT_EQ(host.lastCall(), result(L"jKoToneBkcCurveDlg", path));
}

void pickPaper(const DialogWindow& dialog) {
    dialog.press(IDC_LINK_SWATCH);
    const DialogWindow pick = dialog.asked();
    RECT field, strip;
    ::GetClientRect(pick.item(IDC_PICK_FIELD), &field);
    ::GetClientRect(pick.item(IDC_PICK_LIGHTNESS), &strip);
    const POINT hue{field.right / 6, field.bottom / 8}, light{strip.right / 2, strip.bottom / 20};
    pick.mouse(WM_LBUTTONDOWN, hue, IDC_PICK_FIELD);
    pick.drop(hue, IDC_PICK_FIELD);
    pick.mouse(WM_LBUTTONDOWN, light, IDC_PICK_LIGHTNESS);
    pick.drop(light, IDC_PICK_LIGHTNESS);
    pick.enter(IDC_PICK_K, L"2", IDC_PICK_C);
    pick.press(IDOK);
    dialog.waitForQuiet();
}

void makeLink(const HostProgram& host, const std::string& source, const std::string& black,
              const std::string& output) {
    const DialogWindow dialog = host.open(IDM_LINK);
    browse(dialog, IDC_LINK_BROWSE_SOURCE, source);
    browse(dialog, IDC_LINK_BROWSE_DESTINATION, kDebian);
    browse(dialog, IDC_LINK_BROWSE_BLACK, black);
    browse(dialog, IDC_LINK_BROWSE_OUTPUT, output);
    dialog.click(IDC_LINK_KEEP_PRIMARIES);
    dialog.click(IDC_LINK_WHITE_GIVEN);
    dialog.enter(IDC_LINK_AMOUNT, L"60", IDCANCEL);
    pickPaper(dialog);
    dialog.press(IDOK);
    const DialogWindow message = dialog.asked();
    EXPECT_EQ(message.text(kMessageText), shown(L"ﾌﾟﾛﾌｧｲﾙを作成しました。"));
    message.press(IDOK);
    host.waitUntilClosed();
    EXPECT_EQ(host.lastCall(), result(L"jCmsDeviceLinkDlg", output));
}

// More cyan where the link is now; the number of nodes that the page says it has changed.
int32_t correct(const HostProgram& host, const std::string& link, const std::string& saveAs,
                const Levels& current) {
    const DialogWindow dialog = host.open(IDM_PROFILE_OPEN, link);
    EXPECT_EQ(dialog.caption(), profileCaption(link));
    dialog.key(IDC_PAGES, VK_RIGHT);
    const DialogWindow page = pageOf(dialog);
    page.click(IDC_CUBE_256);
    const int picked[] = {IDC_CUBE_C, IDC_CUBE_M, IDC_CUBE_Y, IDC_CUBE_K};
    const int after[] = {IDC_CUBE_CURRENT_C, IDC_CUBE_CURRENT_M, IDC_CUBE_CURRENT_Y,
                         IDC_CUBE_CURRENT_K};
    for (size_t ink = 0; ink < 4; ++ink)
        page.enter(picked[ink], std::to_wstring(kCorrected[ink]), IDC_CUBE_AREA);
    for (size_t ink = 0; ink < 4; ++ink) {
        EXPECT_EQ(page.text(picked[ink]), std::to_wstring(kCorrected[ink]));
        EXPECT_EQ(page.text(after[ink]), std::to_wstring(current[ink])) << ink;
    }
    page.enter(IDC_CUBE_CHANGED_C, std::to_wstring(current[0] + kMoreCyan), IDC_CUBE_AREA);
    page.click(IDC_CUBE_CHANGE);
    const std::wstring text = page.text(IDC_STATUS);
    dialog.press(IDC_SAVE_AS);
    dialog.asked().chooseFile(saveAs);
    dialog.waitForQuiet();
    dialog.press(IDOK);
    host.waitUntilClosed();
    EXPECT_EQ(host.lastCall(), result(L"jKoCmykProfileDlg", saveAs));
    return numbersAfter(text, L"")[0];
}

TEST(WholeWay, FromAnEmptyDesktopToAConvertedColour) {
    const TempFolder folder;
    const std::string black = folder.path("newspaper.bkc"), link = folder.path("newspaper.icc"),
                      saved = folder.path("corrected.icc"), source = folder.path("press.icc");
    std::filesystem::copy_file(testData("CGATS001Compat-v2-micro.icc"), source);
    HostProgram host;

    makeBlackCorrection(host, black);
    const CurveFile curve = loaded(kBkc, black);
    EXPECT_EQ(curve.title, "newspaper");
    EXPECT_EQ(curve.value(0, 128), 102);

    makeLink(host, source, black, link);
    const Levels paper = numbersAfter(host.window().text(IDC_SETTINGS), L"paper:");
    EXPECT_GT(paper[0] + paper[1] + paper[2], 0);
    EXPECT_EQ(paper[3], 5);
    CmsLinkSettings settings;
    jCmsInitCms(&settings);
    source.copy(settings.sourcePath, 259);
    std::strcpy(settings.destinationPath, kDebian);
    black.copy(settings.blackPath, 259);
    settings.preservation = 1;
    settings.whiteMode = 2;
    settings.paperC = paper[0];
    settings.paperM = paper[1];
    settings.paperY = paper[2];
    settings.paperK = paper[3];
    settings.limit = 153;
    const Profile expected(jKoCmykCombineProfile(&settings));
    ASSERT_NE(expected, nullptr);
    const Profile made = loadedLink(link);
    EXPECT_EQ(std::memcmp(made->grid, expected->grid, sizeof made->grid), 0);
    EXPECT_EQ(made->grid[nodeOf({0, 0, 0, 200})], packed({0, 0, 0, curve.value(0, 200)}));
    for (const Levels& colour : {kCorrected, kBesideIt, kOtherHue})
        EXPECT_EQ(convertedBy(host, colour), converted(*expected, colour));

    Levels current = kCorrected;
    jKoCmykCMYKtoCMYK16(expected.get(), current.data());
    for (int32_t& ink : current) ink = (ink + 8) / 16;
    const int32_t count = correct(host, link, saved, current);
    EXPECT_EQ(std::memcmp(loadedLink(link)->grid, made->grid, sizeof made->grid), 0);
    const Profile corrected = loadedLink(saved);
    int32_t changed = 0;
    for (size_t node = 0; node < KOLINK_CMYK_NODES; ++node) {
        if (corrected->grid[node] == made->grid[node]) continue;
        ++changed;
        // Cyan alone, by no more than was asked for.
        const uint32_t more = (corrected->grid[node] >> 24) - (made->grid[node] >> 24);
        ASSERT_EQ(corrected->grid[node] << 8, made->grid[node] << 8) << node;
        ASSERT_LE(more, static_cast<uint32_t>(kMoreCyan)) << node;
    }
    EXPECT_GT(changed, 100);
    EXPECT_LE(changed, count);  // at the edge of the range the change fades to nothing
    EXPECT_LT(count, KOLINK_CMYK_NODES / 4);
    Levels wanted = current;
    wanted[0] += kMoreCyan;
    EXPECT_EQ(corrected->grid[nodeOf(kCorrected)], packed(wanted));

    // The host has gone over to the link that was saved.
    EXPECT_EQ(host.window().text(IDC_LINK_PATH), wide(saved));
    for (const Levels& colour : {kCorrected, kBesideIt})
        EXPECT_EQ(convertedBy(host, colour), converted(*corrected, colour));
    EXPECT_EQ(numbersAfter(convertedBy(host, kCorrected), L"C ")[0], wanted[0]);
    EXPECT_NE(converted(*corrected, kBesideIt), converted(*expected, kBesideIt));
    EXPECT_EQ(convertedBy(host, kOtherHue), converted(*expected, kOtherHue));
    EXPECT_EQ(host.close(), 0);
}

}  // namespace
