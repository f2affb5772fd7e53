#include "frame/arithmetic_mode.h"
#include "frame/boundary.h"
#include "link/link.h"

namespace {

LinkProfile* built(ko::link::Link (*builder)(const CmsLinkSettings&),
                   const CmsLinkSettings* settings) {
    if (!settings) return nullptr;
    return ko::atBoundary<LinkProfile*>(nullptr, [&] { return builder(*settings).release(); });
}

}  // namespace

static_assert(sizeof(LinkProfile) == (sizeof(void*) == 4 ? 1876 : 1880));

extern "C" LinkProfile* jKoLinkCreateProfile(int32_t inputChannels, int32_t gridPoints) {
    return ko::link::createProfile(inputChannels, gridPoints).release();
}

extern "C" int32_t jKoLinkReleaseProfile(LinkProfile* link) {
    if (!link) return 0;
    ko::link::LinkDeleter()(link);
    return 1;
}

extern "C" void jKoLinkCOLtoCMYK16(const LinkProfile* link, int32_t* values) {
    const ko::ArithmeticMode arithmetic;
    ko::link::convert(*link, values);
}

extern "C" void jKoLinkCOLtoCMYK16_3(const LinkProfile* link, int32_t* values) {
    const ko::ArithmeticMode arithmetic;
    ko::link::convert3(*link, values);
}

extern "C" void jKoLinkCOLtoCMYK16Row(const LinkProfile* link, const uint8_t* input,
                                      int32_t pixels, uint16_t* output) {
    const ko::ArithmeticMode arithmetic;
    ko::link::convertRow(*link, input, pixels, output);
}

extern "C" LinkProfile* jKoLinkCombineCmykProfile(const CmsLinkSettings* settings) {
    return built(ko::link::combineCmykProfile, settings);
}

extern "C" LinkProfile* jKoLinkCombineRgbProfile(const CmsLinkSettings* settings) {
    return built(ko::link::combineRgbProfile, settings);
}

extern "C" LinkProfile* jKoLinkCombineIcmRgbProfile(const CmsLinkSettings* settings) {
    return built(ko::link::combineIcmRgbProfile, settings);
}

extern "C" LinkProfile* jKoLinkCombineIcmCmykProfile(const CmsLinkSettings* settings) {
    return built(ko::link::combineIcmCmykProfile, settings);
}
