// Files of the small tables, in both forms.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/files.h"
#include "tests/support/owned.h"

namespace ko::test {
namespace {

struct CmykTableFile : testing::Test {
    TempFolder folder;
    std::string path = folder.path("table.txt");
    OwnedCmykLut cmyk = newCmykLut();
    OwnedRgbLut rgb = newRgbLut();

    int32_t loadCmyk(std::string_view text) {
        writeFile(path, text);
        return jKoCmykLoadCmykLut(cmyk.get(), path.c_str());
    }
    int32_t loadRgb(std::string_view text) {
        writeFile(path, text);
        return jKoRgbLoadRgbLut(rgb.get(), path.c_str());
    }
    bool isFresh() const {
        return std::memcmp(cmyk.get(), newCmykLut().get(), sizeof(CmykLut)) == 0 &&
               std::memcmp(rgb.get(), newRgbLut().get(), sizeof(RgbLut)) == 0;
    }
    // The nodes that differ from a fresh table, in order.
    std::vector<size_t> changed() const {
        std::vector<size_t> nodes;
        const auto fresh = newCmykLut();
        for (size_t node = 0; node < KOLINK_CMYK_LUT_NODES; ++node)
            if (cmyk->nodes[node] != fresh->nodes[node]) nodes.push_back(node);
        return nodes;
    }
    std::vector<std::string> lines() const {
        std::istringstream in(readText(path));
        std::vector<std::string> result;
        for (std::string line; std::getline(in, line);) result.push_back(line);
        return result;
    }
};

constexpr size_t kLast = KOLINK_CMYK_LUT_NODES - 1;

TEST_F(CmykTableFile, IdentitySavedAndLoadedIsUnchanged) {
    ASSERT_EQ(jKoCmykSaveCmykLut(cmyk.get(), path.c_str()), 1);
    std::memset(cmyk.get(), 9, sizeof(CmykLut));
    ASSERT_EQ(jKoCmykLoadCmykLut(cmyk.get(), path.c_str()), 1);
    EXPECT_TRUE(isFresh());
}

TEST_F(CmykTableFile, RandomTablesSavedAndLoadedAreUnchanged) {
    std::mt19937 random(1);
    for (auto& node : cmyk->nodes) node = static_cast<uint32_t>(random());
    for (auto& node : rgb->nodes) node = static_cast<uint32_t>(random()) & 0xffffff;
    const auto otherCmyk = newCmykLut();
    const auto otherRgb = newRgbLut();
    ASSERT_EQ(jKoCmykSaveCmykLut(cmyk.get(), path.c_str()), 1);
    ASSERT_EQ(jKoCmykLoadCmykLut(otherCmyk.get(), path.c_str()), 1);
    EXPECT_EQ(std::memcmp(otherCmyk.get(), cmyk.get(), sizeof(CmykLut)), 0);
    ASSERT_EQ(jKoRgbSaveRgbLut(rgb.get(), path.c_str()), 1);
    ASSERT_EQ(jKoRgbLoadRgbLut(otherRgb.get(), path.c_str()), 1);
    EXPECT_EQ(std::memcmp(otherRgb.get(), rgb.get(), sizeof(RgbLut)), 0);
}

TEST_F(CmykTableFile, FirstDataLineIsEightZerosAndTheLastEightTimes255) {
    ASSERT_EQ(jKoCmykSaveCmykLut(cmyk.get(), path.c_str()), 1);
    const auto written = lines();
    ASSERT_EQ(written.size(), 83522u);
    EXPECT_EQ(written[0], "#begindata\r");
    EXPECT_EQ(written[1], "0\t0\t0\t0\t0\t0\t0\t0\r");
    EXPECT_EQ(written.back(), "255\t255\t255\t255\t255\t255\t255\t255\r");
}

TEST_F(CmykTableFile, LinesStandInNodeOrderWithInputsThenOutputs) {
    cmyk->nodes[1] = 0x01020304;
    cmyk->nodes[17] = 0xff000080;
    ASSERT_EQ(jKoCmykSaveCmykLut(cmyk.get(), path.c_str()), 1);
    const auto written = lines();
    EXPECT_EQ(written[2], "0\t0\t0\t16\t1\t2\t3\t4\r");
    EXPECT_EQ(written[18], "0\t0\t16\t0\t255\t0\t0\t128\r");
    EXPECT_EQ(written[1 + 4913], "16\t0\t0\t0\t16\t0\t0\t0\r");
}

TEST_F(CmykTableFile, RgbLinesHoldSixNumbersWithRFirst) {
    rgb->nodes[1] = 0x030201;
    ASSERT_EQ(jKoRgbSaveRgbLut(rgb.get(), path.c_str()), 1);
    const auto written = lines();
    ASSERT_EQ(written.size(), 4914u);
    EXPECT_EQ(written[0], "#begindata\r");
    EXPECT_EQ(written[2], "0\t0\t16\t1\t2\t3\r");
    EXPECT_EQ(written.back(), "255\t255\t255\t255\t255\t255\r");
}

TEST_F(CmykTableFile, LevelsBetweenCommasAndOutputsBetweenBlanksSetTheLastNode) {
    ASSERT_EQ(loadCmyk("#begindata\n255,255,255,255 1 2 3 4\n"), 1);
    EXPECT_EQ(cmyk->nodes[kLast], 0x01020304u);
    EXPECT_EQ(changed(), std::vector<size_t>{kLast});
}

TEST_F(CmykTableFile, TextWithoutTheBeginLineDoesNotLoad) {
    EXPECT_EQ(loadCmyk("0\t0\t0\t0\t1\t1\t1\t1\r\n"), 0);
    EXPECT_EQ(loadRgb("0\t0\t0\t1\t1\t1\r\n"), 0);
    EXPECT_TRUE(isFresh());
}

TEST_F(CmykTableFile, EmptyFileDoesNotLoad) {
    EXPECT_EQ(loadCmyk(""), 0);
    EXPECT_EQ(loadRgb(""), 0);
    EXPECT_TRUE(isFresh());
}

TEST_F(CmykTableFile, ControlByteInTheFirstLineMakesARawTableFromOffset0) {
    std::string bytes = "ab";
    bytes += '\x05';
    bytes += "d";
    ASSERT_EQ(loadCmyk(bytes), 1);
    EXPECT_EQ(cmyk->nodes[0], 0x64056261u);
}

TEST_F(CmykTableFile, EveryByteThatNoTextHoldsMakesAFileBinary) {
    for (int byte = 1; byte < 32; ++byte) {
        const bool binary = byte <= 8 || byte >= 14;
        ASSERT_EQ(loadRgb("some text" + std::string(1, static_cast<char>(byte))), binary) << byte;
    }
}

TEST_F(CmykTableFile, ControlByteInALaterLineStillMakesTheFileBinary) {
    ASSERT_EQ(loadCmyk("abcd\nefg\nh\x1f"), 1);
    EXPECT_EQ(cmyk->nodes[0], 0x64636261u);
}

TEST_F(CmykTableFile, ControlByteBehindTheBeginLineChangesNothing) {
    ASSERT_EQ(loadCmyk("#begindata\n255 255 255 255 1 2 3 4 \x05\n"), 1);
    EXPECT_EQ(changed(), std::vector<size_t>{kLast});
}

TEST_F(CmykTableFile, ControlByteInTheLineOfTheBeginWordMakesTheFileBinary) {
    ASSERT_EQ(loadCmyk("#begindata\x01\n"), 1);
    EXPECT_EQ(std::memcmp(cmyk->nodes, "#begindata\x01\n", 12), 0);
}

TEST_F(CmykTableFile, BinaryWordsAreLittleEndianInNodeOrder) {
    std::vector<uint32_t> words(KOLINK_CMYK_LUT_NODES);
    for (uint32_t at = 0; at < words.size(); ++at) words[at] = at * 2654435761u + 1;
    ASSERT_EQ(loadCmyk({reinterpret_cast<const char*>(words.data()), words.size() * 4}), 1);
    EXPECT_EQ(std::memcmp(cmyk.get(), words.data(), sizeof(CmykLut)), 0);
}

TEST_F(CmykTableFile, IdentityAsRawWordsIsRecognisedAsBinary) {
    const auto fresh = newCmykLut();
    const auto freshRgb = newRgbLut();
    std::memset(cmyk.get(), 9, sizeof(CmykLut));
    std::memset(rgb.get(), 9, sizeof(RgbLut));
    ASSERT_EQ(loadCmyk({reinterpret_cast<const char*>(fresh.get()), sizeof(CmykLut)}), 1);
    ASSERT_EQ(loadRgb({reinterpret_cast<const char*>(freshRgb.get()), sizeof(RgbLut)}), 1);
    EXPECT_TRUE(isFresh());
}

TEST_F(CmykTableFile, TruncatedBinaryIsReadAsFarAsItGoesAndTheRestStays) {
    const auto fresh = newCmykLut();
    ASSERT_EQ(loadCmyk({"\x01\x02\x03\x04\x05\x06", 6}), 1);
    EXPECT_EQ(cmyk->nodes[0], 0x04030201u);
    EXPECT_EQ(cmyk->nodes[1], (fresh->nodes[1] & 0xffff0000u) | 0x0605u);
    EXPECT_EQ(std::memcmp(cmyk->nodes + 2, fresh->nodes + 2, sizeof(CmykLut) - 8), 0);
}

TEST_F(CmykTableFile, BytesBehindARawTableAreIgnored) {
    ASSERT_EQ(loadRgb(std::string(sizeof(RgbLut) + 100, '\x02')), 1);
    EXPECT_EQ(rgb->nodes[KOLINK_RGB_LUT_NODES - 1], 0x02020202u);
}

TEST_F(CmykTableFile, RawRgbWordsAreKeptWhole) {
    ASSERT_EQ(loadRgb({"\x01\x02\x03\xff", 4}), 1);
    EXPECT_EQ(rgb->nodes[0], 0xff030201u);
    int32_t colour[3] = {0, 0, 0};
    jKoRgbRGBtoRGB16(rgb.get(), colour);
    EXPECT_EQ(colour[2], 48);
}

TEST_F(CmykTableFile, BeginLineIsFoundInAnyCase) {
    ASSERT_EQ(loadCmyk("#BeginDATA\n255 255 255 255 1 2 3 4"), 1);
    EXPECT_EQ(cmyk->nodes[kLast], 0x01020304u);
}

TEST_F(CmykTableFile, BeginLineHoldsNothingElse) {
    for (const char* text : {" #begindata\n", "#begindata \n", "#begindata2\n", "#begindat\n", "begindata\n"})
        EXPECT_EQ(loadCmyk(text), 0) << text;
}

TEST_F(CmykTableFile, LinesBeforeTheBeginLineAreSkipped) {
    ASSERT_EQ(loadCmyk("0 0 0 0 9 9 9 9\nremark\n\n#begindata\n"), 1);
    EXPECT_TRUE(isFresh());
}

TEST_F(CmykTableFile, TextWithoutDataLinesLoads) {
    ASSERT_EQ(loadCmyk("#begindata"), 1);
    EXPECT_TRUE(isFresh());
}

TEST_F(CmykTableFile, LinesMayComeInAnyOrder) {
    ASSERT_EQ(loadCmyk("#begindata\n0 0 0 32 1 1 1 1\n0 0 0 16 2 2 2 2\n"), 1);
    EXPECT_EQ(cmyk->nodes[1], 0x02020202u);
    EXPECT_EQ(cmyk->nodes[2], 0x01010101u);
}

TEST_F(CmykTableFile, NodesWithoutALineKeepWhatTheyHeld) {
    cmyk->nodes[7] = 0xcafe;
    ASSERT_EQ(loadCmyk("#begindata\n0 0 0 16 2 2 2 2\n"), 1);
    EXPECT_EQ(cmyk->nodes[7], 0xcafeu);
}

TEST_F(CmykTableFile, OfTwoLinesForANodeTheLaterCounts) {
    ASSERT_EQ(loadCmyk("#begindata\n0 0 0 16 2 2 2 2\n0 0 0 16 3 3 3 3\n"), 1);
    EXPECT_EQ(cmyk->nodes[1], 0x03030303u);
}

TEST_F(CmykTableFile, LevelBelongsToTheCellItLiesIn) {
    for (const auto& [level, index] :
         {std::pair{0, 0}, {15, 0}, {16, 1}, {31, 1}, {239, 14}, {240, 15}, {254, 15}, {255, 16}, {270, 16}}) {
        jKoCmykInitCmykLut(cmyk.get());
        ASSERT_EQ(loadCmyk("#begindata\n0 0 0 " + std::to_string(level) + " 1 2 3 4\n"), 1);
        EXPECT_EQ(cmyk->nodes[index], 0x01020304u) << level;
    }
}

TEST_F(CmykTableFile, LineWithALevelOutsideTheGridIsSkipped) {
    for (const char* level : {"-1", "-300", "271", "272", "100000", "99999999999999999999", "-99999999999999999999"})
        for (int axis = 0; axis < 4; ++axis) {
            std::string line;
            for (int at = 0; at < 4; ++at) line += std::string(at == axis ? level : "255") + " ";
            ASSERT_EQ(loadCmyk("#begindata\n" + line + "1 2 3 4\n"), 1);
            ASSERT_TRUE(isFresh()) << line;
        }
}

TEST_F(CmykTableFile, OutputsAreTakenModulo256) {
    ASSERT_EQ(loadCmyk("#begindata\n0 0 0 0 256 511 -1 -256\n"), 1);
    EXPECT_EQ(cmyk->nodes[0], 0x00ffff00u);
}

TEST_F(CmykTableFile, MissingNumbersAreZero) {
    ASSERT_EQ(loadCmyk("#begindata\n255 255 255 255 7\n"), 1);
    EXPECT_EQ(cmyk->nodes[kLast], 0x07000000u);
    ASSERT_EQ(loadCmyk("#begindata\n16\n"), 1);
    EXPECT_EQ(cmyk->nodes[4913], 0u);
}

TEST_F(CmykTableFile, LineWithoutAnyDigitIsEightZeros) {
    for (const char* line : {"remark", "", "# none", "-", ","}) {
        cmyk->nodes[0] = 0x01020304;
        ASSERT_EQ(loadCmyk(std::string("#begindata\n") + line + "\n"), 1);
        EXPECT_EQ(cmyk->nodes[0], 0u) << line;
    }
}

TEST_F(CmykTableFile, LineThatBeginsWithBlanksIsReadFromItsFirstNumber) {
    ASSERT_EQ(loadCmyk("#begindata\n \t  255 255 255 255 1 2 3 4\n"), 1);
    EXPECT_EQ(changed(), std::vector<size_t>{kLast});
    EXPECT_EQ(cmyk->nodes[kLast], 0x01020304u);
}

TEST_F(CmykTableFile, AnyRunOfSeparatorsIsOne) {
    ASSERT_EQ(loadCmyk("#begindata\n255 ,\t, 255\t\t255,,,255 , 1,2 3\t4 , \n"), 1);
    EXPECT_EQ(cmyk->nodes[kLast], 0x01020304u);
}

TEST_F(CmykTableFile, RestOfATokenIsSkipped) {
    ASSERT_EQ(loadCmyk("#begindata\n255.9 255x 255-7 255;5 1% 2 +3 4\n"), 1);
    EXPECT_EQ(cmyk->nodes[kLast], 0x01020304u);
}

TEST_F(CmykTableFile, NumbersBeyondTheEighthAreIgnored) {
    ASSERT_EQ(loadCmyk("#begindata\n255 255 255 255 1 2 3 4 5 6 7\n"), 1);
    EXPECT_EQ(cmyk->nodes[kLast], 0x01020304u);
}

TEST_F(CmykTableFile, EveryLineEndIsOne) {
    for (const char* end : {"\n", "\r\n", "\r"}) {
        jKoCmykInitCmykLut(cmyk.get());
        ASSERT_EQ(loadCmyk(std::string("#begindata") + end + "255 255 255 255 1 2 3 4" + end + "0 0 0 16 5 6 7 8"), 1);
        EXPECT_EQ(cmyk->nodes[kLast], 0x01020304u);
        EXPECT_EQ(cmyk->nodes[1], 0x05060708u);
        EXPECT_EQ(changed().size(), 2u);
    }
}

TEST_F(CmykTableFile, LineEndAcrossTheReadBufferIsOne) {
    for (size_t fill = 16384 - 30; fill < 16384 + 5; ++fill) {
        jKoCmykInitCmykLut(cmyk.get());
        std::string text = std::string(fill - 500, 'x') + "\r\n#begindata\r\n";
        text.insert(0, std::string(480, 'y') + "\r\n");
        ASSERT_EQ(loadCmyk(text + "255 255 255 255 1 2 3 4\r\n"), 1);
        ASSERT_EQ(changed(), std::vector<size_t>{kLast}) << fill;
    }
}

TEST_F(CmykTableFile, LinesCountUpToTheir511thByte) {
    const std::string blanks(511 - 23, ' ');  // behind them 23 bytes of numbers still fit
    ASSERT_EQ(loadCmyk("#begindata\n" + blanks + "255 255 255 255 1 2 3 45\n"), 1);
    EXPECT_EQ(cmyk->nodes[kLast], 0x01020304u);
}

TEST_F(CmykTableFile, LineOfTenThousandBytesIsOneLine) {
    ASSERT_EQ(loadCmyk("#begindata\n255 255 255 255 1 2 3 4" + std::string(10000, '1') + "\n0 0 0 16 5 6 7 8\n"), 1);
    EXPECT_EQ(changed().size(), 2u);
    EXPECT_EQ(cmyk->nodes[1], 0x05060708u);
}

TEST_F(CmykTableFile, NulEndsALine) {
    ASSERT_EQ(loadCmyk({"#begindata\0x\n255 255 255 255 1\0 2 3 4\n", 39}), 1);
    EXPECT_EQ(cmyk->nodes[kLast], 0x01000000u);
}

TEST_F(CmykTableFile, RgbTextSetsItsNode) {
    ASSERT_EQ(loadRgb("#begindata\r\n255\t0\t16\t1\t2\t3\r\n"), 1);
    EXPECT_EQ(rgb->nodes[(16 * 17 + 0) * 17 + 1], 0x030201u);
}

TEST_F(CmykTableFile, NullTableGivesZero) {
    ASSERT_EQ(jKoCmykSaveCmykLut(cmyk.get(), path.c_str()), 1);
    const std::string other = folder.path("other.txt");
    EXPECT_EQ(jKoCmykLoadCmykLut(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoRgbLoadRgbLut(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoCmykSaveCmykLut(nullptr, other.c_str()), 0);
    EXPECT_EQ(jKoRgbSaveRgbLut(nullptr, other.c_str()), 0);
    EXPECT_FALSE(exists(other));
}

TEST_F(CmykTableFile, NullPathGivesZero) {
    EXPECT_EQ(jKoCmykLoadCmykLut(cmyk.get(), nullptr), 0);
    EXPECT_EQ(jKoRgbSaveRgbLut(rgb.get(), nullptr), 0);
}

TEST_F(CmykTableFile, FileThatCannotBeOpenedGivesZero) {
    EXPECT_EQ(jKoCmykLoadCmykLut(cmyk.get(), folder.path("none.txt").c_str()), 0);
    EXPECT_EQ(jKoRgbLoadRgbLut(rgb.get(), folder.folder().string().c_str()), 0);
    EXPECT_EQ(jKoCmykSaveCmykLut(cmyk.get(), folder.path("no-folder/t.txt").c_str()), 0);
    EXPECT_EQ(jKoRgbSaveRgbLut(rgb.get(), folder.folder().string().c_str()), 0);
}

#ifdef __linux__
TEST_F(CmykTableFile, DiskWithoutSpaceGivesZero) {
    EXPECT_EQ(jKoCmykSaveCmykLut(cmyk.get(), "/dev/full"), 0);
}
#endif

TEST_F(CmykTableFile, SavingReplacesALongerFile) {
    writeFile(path, std::string(9000000, 'x'));
    ASSERT_EQ(jKoRgbSaveRgbLut(rgb.get(), path.c_str()), 1);
    EXPECT_EQ(lines().size(), 4914u);
}

TEST_F(CmykTableFile, DamagedCmykTextStaysInsideTheTable) {
    const std::string good = "remark\n#begindata\n0\t0\t0\t0\t1\t1\t1\t1\n255,255,255,255 9 8 7 6\r\n 16 32 48 64 1 2 3 4\n";
    const Bytes seed(good.begin(), good.end());
    for (uint32_t variant = 0; variant < 1500; ++variant) {
        const Bytes bytes = mutated(seed, variant);
        writeFile(path, bytes);
        const int32_t result = jKoCmykLoadCmykLut(cmyk.get(), path.c_str());
        ASSERT_TRUE(result == 0 || result == 1);
    }
    forEachTruncation(seed, 200, [&](const Bytes& bytes) {
        writeFile(path, bytes);
        // The begin line counts as soon as it is there, with or without its end.
        ASSERT_EQ(jKoCmykLoadCmykLut(cmyk.get(), path.c_str()), bytes.size() >= 17);
    });
}

TEST_F(CmykTableFile, DamagedRgbFilesStayInsideTheTable) {
    const std::string good = "#begindata\n0\t0\t0\t1\t1\t1\n255,255,255 9 8 7\r\n 16 32 48 1 2 3\n";
    const Bytes text(good.begin(), good.end());
    Bytes raw(300);
    for (size_t at = 0; at < raw.size(); ++at) raw[at] = static_cast<uint8_t>(at * 7);
    for (uint32_t variant = 0; variant < 1500; ++variant) {
        writeFile(path, mutated(variant % 2 ? text : raw, variant));
        const int32_t result = jKoRgbLoadRgbLut(rgb.get(), path.c_str());
        ASSERT_TRUE(result == 0 || result == 1);
    }
}

}  // namespace
}  // namespace ko::test
