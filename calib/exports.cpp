// Exported functions of the calibration curve sets.
#include "calib/calib.h"

#include <cstddef>
#include <string_view>

#include "frame/arithmetic_mode.h"
#include "frame/boundary.h"
#include "frame/text.h"

static_assert(sizeof(CalibTone) == 8);
static_assert(sizeof(CalibChannel) == 2088);
static_assert(sizeof(CalibCurveSet) == 548 + 2088);
static_assert(offsetof(CalibCurveSet, channels) == 548);

namespace {

using ko::calib::channelsOf;

bool hasChannel(const CalibCurveSet* set, int32_t channel) noexcept {
    return set && channel >= 0 && static_cast<size_t>(channel) < channelsOf(*set).size();
}

void copyIn(std::span<char> field, const char* text) noexcept {
    if (text) ko::copyText(field, text);
}

// Into a buffer as large as the field, NUL-terminated even when the field is not.
void copyOut(char* buffer, std::span<const char> field) noexcept {
    if (buffer) ko::copyText(std::span<char>(buffer, field.size()), ko::textIn(field));
}

}  // namespace

extern "C" CalibCurveSet* jKoCalibCreateCurve(int32_t channelCount, int32_t range, int32_t limit) {
    return ko::atBoundary<CalibCurveSet*>(
        nullptr, [&] { return ko::calib::createCurve(channelCount, range, limit).release(); });
}

extern "C" int32_t jKoCalibReleaseCurve(CalibCurveSet* set) {
    return ko::releaseRecord(set);
}

extern "C" int32_t jKoCalibInitCurve(CalibCurveSet* set) {
    const ko::ArithmeticMode arithmetic;
    if (!set) return 0;
    ko::calib::initCurve(*set);
    return 1;
}

extern "C" CalibCurveSet* jKoCalibLoadCurve(const char* path) {
    return ko::atBoundary<CalibCurveSet*>(nullptr,
                                          [&] { return ko::calib::loadCurve(path).release(); });
}

extern "C" int32_t jKoCalibSaveCurve(CalibCurveSet* set, const char* path) {
    return ko::isGiven(set) && ko::atBoundary(false, [&] { return ko::calib::saveCurve(*set, path); });
}

extern "C" int32_t jKoCalibGetCurveInfo(const CalibCurveSet* set, int32_t* channelCount,
                                        int32_t* range, int32_t* limit) {
    if (!set) return 0;
    if (channelCount) *channelCount = set->channelCount;
    if (range) *range = set->range;
    if (limit) *limit = set->limit;
    return 1;
}

extern "C" float jKoCalibGetToneValue(const CalibCurveSet* set, int32_t channel, float x) {
    const ko::ArithmeticMode arithmetic;
    return set ? ko::calib::toneValue(*set, channel, x) : 0.0f;
}

extern "C" int32_t jKoCalibSetToneValue(CalibCurveSet* set, int32_t channel, float x, float y) {
    const ko::ArithmeticMode arithmetic;
    return set && ko::calib::setToneValue(*set, channel, x, y);
}

extern "C" int32_t jKoCalibDeleteToneValue(CalibCurveSet* set, int32_t channel, float x) {
    const ko::ArithmeticMode arithmetic;
    return set && ko::calib::deleteToneValue(*set, channel, x);
}

extern "C" int32_t jKoCalibSetTitle(CalibCurveSet* set, const char* title, const char* desc) {
    if (!set) return 0;
    copyIn(set->title, title);
    copyIn(set->desc, desc);
    return 1;
}

extern "C" int32_t jKoCalibGetTitle(const CalibCurveSet* set, char* title, char* desc) {
    if (!set) return 0;
    copyOut(title, set->title);
    copyOut(desc, set->desc);
    return 1;
}

extern "C" int32_t jKoCalibSetToneName(CalibCurveSet* set, int32_t channel, const char* name,
                                       uint32_t lrgb) {
    if (!hasChannel(set, channel)) return 0;
    CalibChannel& found = channelsOf(*set)[static_cast<size_t>(channel)];
    copyIn(found.name, name);
    found.lrgb = lrgb;
    return 1;
}

extern "C" int32_t jKoCalibGetToneName(const CalibCurveSet* set, int32_t channel, char* name,
                                       uint32_t* lrgb) {
    if (!hasChannel(set, channel)) return 0;
    const CalibChannel& found = channelsOf(*set)[static_cast<size_t>(channel)];
    copyOut(name, found.name);
    if (lrgb) *lrgb = found.lrgb;
    return 1;
}

extern "C" int32_t jKoCalibGetPath(const CalibCurveSet* set, char* path) {
    if (!set) return 0;
    if (path && !ko::copyPath(std::span<char>(path, sizeof set->path), set->path)) *path = '\0';
    return 1;
}
