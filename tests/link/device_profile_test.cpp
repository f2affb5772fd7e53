// Device profiles: the record and the file that it becomes.
#include <gtest/gtest.h>

#include "tests/link/source_profiles.h"

namespace {
using namespace ko::test;

using Device = OwnedDevice;

// Every entry of every table differs from its neighbours.
Device filled() {
    Device device(jKoDevsCreateProfile());
    for (uint32_t i = 0; i < KOLINK_DEVICE_NODES; ++i)
        device->labGrid[i] = (i & 255) | (i * 7 & 255) << 8 | (i * 13 & 255) << 16;
    for (uint32_t i = 0; i < KOLINK_LAB_NODES; ++i) {
        device->toCmyk0[i] = i * 0x01234567;
        device->toCmyk1[i] = i * 0x89abcdef;
        device->gamut[i] = static_cast<uint8_t>(i * 3);
    }
    device->whitePoint[0] = 0.875f;
    device->whitePoint[1] = 0.9375f;
    device->whitePoint[2] = 0.625f;
    std::strcpy(device->description, "made for a test");
    return device;
}

class DeviceFile : public testing::Test {
protected:
    Bytes saved(DeviceProfile& device) const {
        EXPECT_EQ(jKoDevsSaveProfile(&device, path.c_str()), 1);
        return readFile(path);
    }
    TempFolder folder;
    const std::string path = folder.path("device.icc");
};

// A table's element: 8-bit shape, identity matrix, identity curves; its grid.
Bytes gridOf(const Bytes& element, uint8_t inputs, uint8_t outputs, uint8_t gridPoints) {
    EXPECT_EQ(std::string(element.begin(), element.begin() + 4), "mft1");
    EXPECT_EQ(Bytes(element.begin() + 8, element.begin() + 11),
              (Bytes{inputs, outputs, gridPoints}));
    for (size_t i = 0; i < 9; ++i)
        EXPECT_EQ(get32(element, 12 + i * 4), i % 4 == 0 ? 0x10000u : 0u);
    const size_t gridAt = 48 + inputs * 256u, outputAt = element.size() - outputs * 256u;
    for (size_t at = 48; at < gridAt; ++at) EXPECT_EQ(element[at], (at - 48) % 256);
    for (size_t at = outputAt; at < element.size(); ++at)
        EXPECT_EQ(element[at], (at - outputAt) % 256);
    return Bytes(element.begin() + static_cast<std::ptrdiff_t>(gridAt),
                 element.begin() + static_cast<std::ptrdiff_t>(outputAt));
}

TEST(DeviceProfileRecord, StartsZeroedAndUntitled) {
    const Device device(jKoDevsCreateProfile());
    ASSERT_TRUE(device);
    EXPECT_EQ(std::string(device->name), "\x96\xb3\x91\xe8");  // in Shift-JIS
    const auto* bytes = reinterpret_cast<const uint8_t*>(device.get());
    for (size_t at = 5; at < sizeof(DeviceProfile); ++at) ASSERT_EQ(bytes[at], 0) << at;
}

TEST(DeviceProfileRecord, InitZeroesAllTablesAndReturns1) {
    const Device device = filled();
    EXPECT_EQ(jKoDevsInitProfile(device.get()), 1);
    const Device fresh(jKoDevsCreateProfile());
    EXPECT_EQ(std::memcmp(device.get(), fresh.get(), sizeof(DeviceProfile)), 0);
    EXPECT_EQ(jKoDevsInitProfile(nullptr), 0);
}

TEST(DeviceProfileRecord, ReleaseReturns1And0ForNull) {
    EXPECT_EQ(jKoDevsReleaseProfile(jKoDevsCreateProfile()), 1);
    EXPECT_EQ(jKoDevsReleaseProfile(nullptr), 0);
}

TEST_F(DeviceFile, IsAVersion2CmykPrinterProfileWithLab) {
    const Bytes file = saved(*filled());
    EXPECT_EQ(get32(file, 0), file.size());
    EXPECT_EQ(get32(file, 8), 0x02100000u);
    EXPECT_EQ(std::string(file.begin() + 12, file.begin() + 24), "prtrCMYKLab ");
}

TEST_F(DeviceFile, HoldsItsTagsInOrderWithSharedTables) {
    std::vector<std::string> names;
    const Bytes file = saved(*filled());
    for (const DirectoryEntry& entry : directoryOf(file)) names.push_back(entry.signature);
    EXPECT_EQ(names, (std::vector<std::string>{"cprt", "desc", "wtpt", "bkpt", "gamt", "A2B0",
                                               "A2B1", "A2B2", "B2A0", "B2A1", "B2A2"}));
    EXPECT_EQ(elementOf(file, "A2B1"), elementOf(file, "A2B0"));
    EXPECT_EQ(elementOf(file, "A2B2"), elementOf(file, "A2B0"));
    EXPECT_EQ(elementOf(file, "B2A2"), elementOf(file, "B2A1"));
    EXPECT_NE(elementOf(file, "B2A1"), elementOf(file, "B2A0"));
}

TEST_F(DeviceFile, SaysItsMarkerALineFeedAndTheDescription) {
    EXPECT_EQ(elementOf(saved(*filled()), "desc"),
              descriptionElement("_KOLINK_10J\nmade for a test"));
}

TEST_F(DeviceFile, HoldsTheWhitePoint) {
    EXPECT_EQ(elementOf(saved(*filled()), "wtpt"), xyzElement(0xe000, 0xf000, 0xa000));
}

TEST_F(DeviceFile, TakesTheBlackPointFromTheLastMeasurementWhateverComesBefore) {
    const Device device = filled();
    device->labGrid[KOLINK_DEVICE_NODES - 1] = 40 | 130 << 8 | 120 << 16;
    const Bytes black = elementOf(saved(*device), "bkpt");
    double colour[3] = {40, 130, 120};
    const double white[3] = {0.9642, 1.0, 0.8249};
    jIccLabDecode(colour, 1);
    jIccLabtoXYZ(colour, white);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(static_cast<int32_t>(get32(black, 8 + i * 4)), colour[i] * 65536, 0.51);
    for (size_t i = 0; i < KOLINK_DEVICE_NODES - 1; ++i) device->labGrid[i] = 0;
    EXPECT_EQ(elementOf(saved(*device), "bkpt"), black);
}

TEST_F(DeviceFile, HoldsTheMeasurementsAsLab) {
    const Device device = filled();
    const Bytes grid = gridOf(elementOf(saved(*device), "A2B0"), 4, 3, 9);
    ASSERT_EQ(grid.size(), 19683u);
    for (size_t i = 0; i < KOLINK_DEVICE_NODES; ++i)
        ASSERT_EQ(grid[i * 3] | grid[i * 3 + 1] << 8 | grid[i * 3 + 2] << 16,
                  static_cast<int32_t>(device->labGrid[i]));
}

TEST_F(DeviceFile, HoldsTheInksWithTheWordsMostSignificantByteFirst) {
    const Device device = filled();
    const Bytes file = saved(*device);
    const Bytes perceptual = gridOf(elementOf(file, "B2A0"), 3, 4, 17),
                colorimetric = gridOf(elementOf(file, "B2A1"), 3, 4, 17);
    ASSERT_EQ(perceptual.size(), 19652u);
    for (size_t i = 0; i < KOLINK_LAB_NODES; ++i) {
        ASSERT_EQ(get32(perceptual, i * 4), device->toCmyk0[i]);
        ASSERT_EQ(get32(colorimetric, i * 4), device->toCmyk1[i]);
    }
}

TEST_F(DeviceFile, HoldsTheGamut) {
    const Device device = filled();
    const Bytes grid = gridOf(elementOf(saved(*device), "gamt"), 3, 1, 17);
    EXPECT_EQ(grid, Bytes(device->gamut, device->gamut + KOLINK_LAB_NODES));
}

TEST_F(DeviceFile, OfANeverFilledRecordIsValidWithZerosInItsTablesAndWhitePoint) {
    const Device device(jKoDevsCreateProfile());
    const Bytes file = saved(*device);
    EXPECT_EQ(elementOf(file, "wtpt"), xyzElement(0, 0, 0));
    EXPECT_EQ(elementOf(file, "desc"), descriptionElement("_KOLINK_10J\n"));
    EXPECT_EQ(gridOf(elementOf(file, "A2B0"), 4, 3, 9), Bytes(19683));
    EXPECT_EQ(gridOf(elementOf(file, "B2A0"), 3, 4, 17), Bytes(19652));
    EXPECT_EQ(gridOf(elementOf(file, "B2A1"), 3, 4, 17), Bytes(19652));
    EXPECT_EQ(gridOf(elementOf(file, "gamt"), 3, 1, 17), Bytes(4913));
    const ProfileHandle profile(jIccLoadHeader(path.c_str()));
    ASSERT_TRUE(profile);
    for (const uint32_t tag : kLoadableTags)
        if (tag != signature("rXYZ") && tag != signature("gXYZ") && tag != signature("bXYZ") &&
            tag != signature("rTRC") && tag != signature("gTRC") && tag != signature("bTRC")) {
            EXPECT_NE(jIccLoadTag(profile.get(), tag), nullptr) << tag;
        }
}

TEST_F(DeviceFile, ADescriptionWithoutEndEndsWithItsField) {
    const Device device(jKoDevsCreateProfile());
    std::memset(device->description, 'd', sizeof device->description);
    EXPECT_EQ(elementOf(saved(*device), "desc"),
              descriptionElement("_KOLINK_10J\n" + std::string(500, 'd')));
}

TEST_F(DeviceFile, ItsPathIsKeptInTheRecord) {
    const Device device = filled();
    saved(*device);
    EXPECT_EQ(device->path, path);
}

TEST_F(DeviceFile, ItsPathIsKeptEvenWhenItCouldNotBeCreatedAndTheResultIs1) {
    const Device device = filled();
    const std::string nowhere = folder.path("nowhere") + path.substr(folder.path("").size() - 1);
    EXPECT_EQ(jKoDevsSaveProfile(device.get(), nowhere.c_str()), 1);
    EXPECT_EQ(device->path, nowhere);
    EXPECT_FALSE(exists(nowhere));
}

TEST_F(DeviceFile, IsNotWrittenForANullRecordAndAPathThatIsNullOrTooLong) {
    const Device device = filled();
    saved(*device);
    EXPECT_EQ(jKoDevsSaveProfile(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoDevsSaveProfile(device.get(), nullptr), 0);
    EXPECT_EQ(jKoDevsSaveProfile(device.get(), std::string(KOLINK_PATH_SIZE, 'x').c_str()), 0);
    EXPECT_EQ(device->path, path);
}

TEST_F(DeviceFile, DoesNotChangeTheTables) {
    const Device device = filled(), same = filled();
    saved(*device);
    std::memset(device->path, 0, sizeof device->path);
    EXPECT_EQ(std::memcmp(device.get(), same.get(), sizeof(DeviceProfile)), 0);
}

}  // namespace
