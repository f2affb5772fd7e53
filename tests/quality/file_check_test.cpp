#include <gtest/gtest.h>

#include <algorithm>

#include "quality/file_check.h"
#include "tests/support/profiles.h"

namespace ko::test {
namespace {

using quality::checkFile;
using quality::Fault;
using quality::FileForm;
using quality::Level;

std::vector<Fault> faultsOf(FileForm form, std::string_view text) {
    return checkFile(form, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}
std::vector<std::string> rulesOf(FileForm form, std::string_view text) {
    std::vector<std::string> rules;
    for (const Fault& fault : faultsOf(form, text)) rules.push_back(fault.rule);
    return rules;
}

std::string replaced(std::string text, std::string_view from, std::string_view to) {
    const size_t at = text.find(from);
    EXPECT_NE(at, text.npos) << from;
    return text.replace(at, from.size(), to);
}

const std::string kBlack =
    "------------------------------------------------\r\n"
    "  TONE CURVE file ver2.0\r\n"
    "------------------------------------------------\r\n"
    "TITLE  = Press 3\r\n"
    "TONE   =   0,  0\r\n"
    "TONE   = 128,140\r\n"
    "TONE   = 255,255\r\n";

const std::string kLine =
    "   0, +16, +32, +48, +64, +80, +96,+112,+128,+144,+160,+176,+192,+208,+224,+240, 255;\r\n";
const std::string kTones = "TONE c = " + kLine + "TONE m = " + kLine + "TONE y = " + kLine + "TONE k = " + kLine;
const std::string kPrinter =
    "DEV    = Printer X;\r\nDPIX   = 720;\r\nDPIY   = 1440;\r\nWINK   = 200;\r\nLCLM   = 33;\r\n" + kTones +
    "GCR    = " + kLine + "UCR    = " + kLine;

const std::string kKeyed =
    "<CALIB>\r\n    TITLE = Press 3\r\n    CHANNEL = 1\r\n    RANGE = 100\r\n    LIMIT = 100\r\n    CTYPE = 1\r\n"
    "    FORMAT_X = %.0f\r\n    FORMAT_Y = %.2f\r\n"
    "    <CURVE_00>\r\n        NAME = Cyan\r\n        LRGB = 0,174,239\r\n        TONE_000 = 0,0.00\r\n"
    "        TONE_001 = 50,61.75\r\n        TONE_002 = 100,100.00\r\n    </CURVE_00>\r\n</CALIB>\r\n";
const std::string kPlain =
    "TITLE   = Press 3\nCHANNEL = 1\nRANGE   = 100\nNAME 0  = Cyan\nLRGB 0  = 0,174,239\n"
    "TONE 0  = 0,0\nTONE 0  = 50,61.75\nTONE 0  = 100,100\n";

const std::string kSettings = "<INI>\r\n    KO_FOLDER = ..\\data\r\n</INI>\r\n";

std::string rgbTable() {
    std::string text = "#begindata\r\n";
    const auto level = [](int index) { return std::to_string(index < 16 ? 16 * index : 255); };
    for (int r = 0; r < 17; ++r)
        for (int g = 0; g < 17; ++g)
            for (int b = 0; b < 17; ++b) {
                const std::string node = level(r) + '\t' + level(g) + '\t' + level(b);
                text += node + '\t' + node + "\r\n";
            }
    return text;
}

std::string rawTable(size_t header) {
    std::string bytes = "A table";
    bytes.resize(header + 4743684);
    bytes.back() = 1;
    return bytes;
}

TEST(FileCheck, FindsNothingInSoundFiles) {
    const std::vector<std::string> none;
    EXPECT_EQ(rulesOf(FileForm::blackCurve, kBlack), none);
    EXPECT_EQ(rulesOf(FileForm::toneCurve, kTones), none);
    EXPECT_EQ(rulesOf(FileForm::printer, kPrinter), none);
    EXPECT_EQ(rulesOf(FileForm::calibration, kKeyed), none);
    EXPECT_EQ(rulesOf(FileForm::calibration, kPlain), none);
    EXPECT_EQ(rulesOf(FileForm::settings, kSettings), none);
    EXPECT_EQ(rulesOf(FileForm::table, rgbTable()), none);
    EXPECT_EQ(rulesOf(FileForm::lut, rawTable(972)), none);
    EXPECT_EQ(rulesOf(FileForm::amt, rawTable(256)), none);
}

struct Case {
    FileForm form;
    const char* rule;
    Level level;
    uint64_t line;
    std::string text;
};

// One file a rule, which breaks that rule and no other.
TEST(FileCheck, FindsTheOneRuleThatAFileBreaks) {
    using enum FileForm;
    using enum Level;
    const std::string nodes = rgbTable();
    const std::string longLine = kBlack + "TITLE  = x;" + std::string(300, 'x') + "\r\n";
    std::string deep;
    for (int at = 0; at < 17; ++at) deep += "<A>\r\n";
    for (int at = 0; at < 17; ++at) deep += "</A>\r\n";
    const Case cases[] = {
        {blackCurve, "line-length", warning, 8, longLine},
        {blackCurve, "line-unknown", warning, 8, kBlack + "TONES = 1\r\n"},
        {blackCurve, "nul", warning, 8, kBlack + std::string("TITLE  = a\0b\r\n", 14)},
        {blackCurve, "number", error, 6, replaced(kBlack, "128,140", "128,abc")},
        {blackCurve, "value", warning, 7, replaced(kBlack, "255,255", "255,300")},
        {blackCurve, "level", warning, 8, kBlack + "TONE   = 256,255\r\n"},
        {blackCurve, "level-twice", warning, 8, kBlack + "TONE   = 128,141\r\n"},
        {blackCurve, "text-length", warning, 4, replaced(kBlack, "Press 3", std::string(64, 'x'))},
        {blackCurve, "no-curve", error, 0, "TITLE  = nothing\r\n"},
        {blackCurve, "curve-ends", note, 0, replaced(kBlack, "TONE   =   0,  0\r\n", "")},
        {blackCurve, "curve-turns", warning, 0, replaced(kBlack, "255,255", "255,100")},
        {toneCurve, "fields", error, 2, replaced(kTones, "TONE m =    0, +16, +32, +48, +64, +80, +96,+112,+128,+144,"
                                                         "+160,+176,+192,+208,+224,+240, 255", "TONE m =    0")},
        {toneCurve, "fields", warning, 4, kTones.substr(0, kTones.size() - 3) + ", 7;\r\n"},
        {toneCurve, "computed", note, 1, replaced(kTones, "+128", "+129")},
        {toneCurve, "curve-twice", warning, 5, kTones + "TONE k = " + kLine},
        {toneCurve, "curve-missing", warning, 0, kTones.substr(0, 3 * (9 + kLine.size()))},
        {toneCurve, "no-curve", error, 0, "\r\n"},
        {printer, "number", error, 4, replaced(kPrinter, "200", "much")},
        {printer, "value", warning, 5, replaced(kPrinter, "33", "133")},
        {printer, "setting-missing", note, 0, replaced(kPrinter, "WINK   = 200;\r\n", "")},
        {printer, "text-length", warning, 1, replaced(kPrinter, "Printer X", std::string(64, 'x'))},
        {calibration, "channels", error, 0, replaced(kKeyed, "CHANNEL = 1", "CHANNEL = 17")},
        {calibration, "channel", warning, 0, replaced(kKeyed, "<CURVE_00>", "<CURVE_01>\r\n</CURVE_01>\r\n<CURVE_00>")},
        {calibration, "format", warning, 0, replaced(kKeyed, "%.0f", "%s")},
        {calibration, "number", error, 0, replaced(kKeyed, "CTYPE = 1", "CTYPE = x")},
        {calibration, "number", error, 0, replaced(kKeyed, "50,61.75", "50;61.75")},
        {calibration, "tones", warning, 0, replaced(kKeyed, "TONE_001", "TONE_300")},
        {calibration, "value", warning, 0, replaced(kKeyed, "100,100.00", "100,161.75")},
        {calibration, "curve-turns", warning, 0, replaced(kKeyed, "0,0.00", "0,70")},
        {calibration, "curve-ends", warning, 0, replaced(kKeyed, "= 0,0.00", "= 10,0.00")},
        {calibration, "range", error, 0, replaced(kKeyed, "LIMIT = 100", "LIMIT = -1")},
        {calibration, "directory-open", warning, 0, replaced(kKeyed, "</CALIB>\r\n", "")},
        {calibration, "line-unknown", warning, 9, kPlain + "TONES 0 = 5,5\n"},
        {calibration, "channel", warning, 9, kPlain + "TONE 1  = 5,5\n"},
        {calibration, "tone-order", error, 0, kPlain + "TONE 0  = 100,100\n"},
        {calibration, "number", error, 6, replaced(kPlain, "= 0,0\n", "= 0\n")},
        {calibration, "line-length", warning, 9, kPlain + "DESC    = " + std::string(300, 'x') + "\n"},
        {settings, "nul", warning, 4, kSettings + std::string("a\0 = 1\r\n", 8)},
        {settings, "line-unknown", warning, 4, kSettings + "nothing\r\n"},
        {settings, "key-twice", warning, 3, replaced(kSettings, "</INI>", "ko_folder = x\r\n</INI>")},
        {settings, "directory-end", warning, 4, kSettings + "</OTHER>\r\n"},
        {settings, "too-deep", error, 17, deep},
        {settings, "folder", note, 0, replaced(kSettings, "KO_FOLDER", "FOLDER")},
        {settings, "no-settings", error, 0, "\r\n"},
        {FileForm::table, "number", error, 2, replaced(nodes, "0\t0\t0\t0\t0\t0", "0\t0\t0\t0\t0\tx0")},
        {FileForm::table, "value", error, 2, replaced(nodes, "0\t0\t0\t0\t0\t0", "0\t0\t0\t0\t0\t256")},
        {FileForm::table, "numbers", error, 3, replaced(nodes, "0\t0\t16\t0\t0\t16", "0\t0\t16\t0\t0\t16\t0")},
        {FileForm::table, "level", error, 4915, nodes + "300\t0\t0\t0\t0\t0\r\n"},
        {FileForm::table, "node-twice", warning, 4915, nodes + "0\t0\t0\t0\t0\t0\r\n"},
        {FileForm::table, "line-unknown", warning, 4915, nodes + "x\r\n"},
        {FileForm::table, "level-between", warning, 3, replaced(nodes, "0\t0\t16\t0", "0\t0\t17\t0")},
        {FileForm::table, "nodes", warning, 0, replaced(nodes, "0\t0\t0\t0\t0\t0\r\n", "")},
        {FileForm::table, "no-table", error, 0, "just a text"},
        {FileForm::table, "length", error, 0, std::string(1000, '\1')},
        {lut, "length", error, 0, rawTable(972).substr(0, 2000)},
        {amt, "length", warning, 0, rawTable(256) + "x"},
        {lut, "text-length", warning, 0, std::string(64, 'x') + rawTable(972).substr(64)},
        {lut, "text-end", warning, 0, std::string(472, 'x') + rawTable(972).substr(472)},
        {amt, "white", note, 0, replaced(rawTable(256), std::string(5, '\0'), std::string(5, '\0')).replace(256, 1, "\x05")},
        {amt, "empty", error, 0, rawTable(256).replace(256 + 4743683, 1, 1, '\0')},
    };
    for (const Case& one : cases) {
        const auto faults = faultsOf(one.form, one.text);
        EXPECT_EQ(faults.size(), 1u) << one.rule << ": " << (faults.empty() ? "" : faults[0].text + " / " + faults.back().text);
        if (faults.empty()) continue;
        EXPECT_STREQ(faults[0].rule, one.rule) << faults[0].text;
        EXPECT_EQ(faults[0].level, one.level) << one.rule;
        EXPECT_EQ(faults[0].line, one.line) << one.rule;
        EXPECT_NE(*faults[0].remedy, '\0') << one.rule;
    }
}

TEST(FileCheck, TellsTheFirstFaultsOfAFileThatIsWrongThroughout) {
    std::string text = kBlack;
    for (int line = 0; line < 1000; ++line) text += "nothing\r\n";
    const auto faults = faultsOf(FileForm::blackCurve, text);
    ASSERT_EQ(faults.size(), 201u);
    EXPECT_EQ(faults.back().text, "and 800 more like these");
}

TEST(FileCheck, KeepsAnErrorBehindManyWarnings) {
    std::string text = kBlack;
    for (int line = 0; line < 1000; ++line) text += "nothing\r\n";
    const auto faults = faultsOf(FileForm::blackCurve, text + "TONE   = 100,x\r\n");
    EXPECT_TRUE(std::ranges::any_of(faults, [](const Fault& fault) { return fault.level == Level::error; }));
}

// ---- What the profile dialog loses -------------------------------------------------------------

Bytes link(std::string_view from, int points, bool wide, std::string_view description, bool more) {
    std::vector<Tag> tags = {{"desc", descriptionElement(description)},
                             {"A2B0", LutElement{static_cast<uint8_t>(from == "CMYK" ? 4 : 3), 4, static_cast<uint8_t>(points), wide}.bytes()}};
    if (more) tags.push_back({"kprv", textElement("KoLink")});
    Bytes header = profileHeader("link", from, "CMYK");
    put32(header, 36, 0x61637370);
    return profileBytes(tags, header);
}

std::string lostOf(const Bytes& bytes) {
    const auto lost = quality::lostInDialogs(bytes);
    return lost ? lost->text : "";
}

TEST(FileCheck, TellsWhatTheProfileDialogLoses) {
    constexpr std::string_view kEditable = "_KOLINK_10J\nNAME: x\n";
    EXPECT_EQ(lostOf(link("CMYK", 33, false, kEditable, false)), "");
    EXPECT_EQ(lostOf(link("CMYK", 33, true, kEditable, false)), "saved by the profile dialog it loses what is finer than 8 bits");
    EXPECT_EQ(lostOf(link("CMYK", 9, false, kEditable, false)),
              "saved by the profile dialog it loses its grid of 9 points, which become 33");
    EXPECT_EQ(lostOf(link("CMYK", 33, false, kEditable, true)), "saved by the profile dialog it loses the tag kprv");
    EXPECT_EQ(lostOf(link("CMYK", 33, false, "A link", false)), "saved by the profile dialog it loses its description");
    EXPECT_EQ(lostOf(link("RGB ", 2, false, kEditable, false)), "the profile dialog opens links from CMYK to CMYK alone");
    EXPECT_EQ(lostOf(profileBytes({}, profileHeader("prtr", "CMYK", "Lab "))), "");
}

}  // namespace
}  // namespace ko::test
