// The exported functions of the small tables.
#include "frame/arithmetic_mode.h"
#include "frame/boundary.h"
#include "table/table.h"

static_assert(sizeof(CmykLut) == 334084 && sizeof(RgbLut) == 19652);

namespace {

template <class Table>
int32_t init(Table* table) noexcept {
    if (!table) return 0;
    ko::table::init(*table);
    return 1;
}

template <class Table>
int32_t load(Table* table, const char* path) noexcept {
    return ko::isGiven(table) &&
           ko::atBoundary(false, [&] { return ko::table::load(*table, path); });
}

template <class Table>
int32_t save(const Table* table, const char* path) noexcept {
    return ko::isGiven(table) &&
           ko::atBoundary(false, [&] { return ko::table::save(*table, path); });
}

template <class Table>
void convertRow(const Table* table, const uint8_t* input, int32_t pixels,
                uint16_t* output) noexcept {
    const ko::ArithmeticMode arithmetic;
    ko::table::convertRow(*table, input, pixels, output);
}

}  // namespace

extern "C" CmykLut* jKoCmykCreateCmykLut(void) { return ko::table::create<CmykLut>().release(); }
extern "C" RgbLut* jKoRgbCreateRgbLut(void) { return ko::table::create<RgbLut>().release(); }
extern "C" int32_t jKoCmykReleaseCmykLut(CmykLut* table) { return ko::releaseRecord(table); }
extern "C" int32_t jKoRgbReleaseRgbLut(RgbLut* table) { return ko::releaseRecord(table); }
extern "C" int32_t jKoCmykInitCmykLut(CmykLut* table) { return init(table); }
extern "C" int32_t jKoRgbInitRgbLut(RgbLut* table) { return init(table); }

extern "C" int32_t jKoCmykLoadCmykLut(CmykLut* table, const char* path) {
    return load(table, path);
}
extern "C" int32_t jKoRgbLoadRgbLut(RgbLut* table, const char* path) { return load(table, path); }
extern "C" int32_t jKoCmykSaveCmykLut(const CmykLut* table, const char* path) {
    return save(table, path);
}
extern "C" int32_t jKoRgbSaveRgbLut(const RgbLut* table, const char* path) {
    return save(table, path);
}

extern "C" int32_t jKoCmykLutCMYKtoCMYK16(const CmykLut* table, int32_t* cmyk) {
    const ko::ArithmeticMode arithmetic;
    ko::table::convert(*table, cmyk);
    return cmyk[3];
}
extern "C" int32_t jKoRgbRGBtoRGB16(const RgbLut* table, int32_t* rgb) {
    const ko::ArithmeticMode arithmetic;
    ko::table::convert(*table, rgb);
    return rgb[2];
}
extern "C" void jKoCmykLutCMYKtoCMYK16Row(const CmykLut* table, const uint8_t* input,
                                          int32_t pixels, uint16_t* output) {
    convertRow(table, input, pixels, output);
}
extern "C" void jKoRgbRGBtoRGB16Row(const RgbLut* table, const uint8_t* input, int32_t pixels,
                                    uint16_t* output) {
    convertRow(table, input, pixels, output);
}
