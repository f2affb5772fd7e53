#include "front/front.h"

static_assert(sizeof(CmsLinkSettings) == 1332);

extern "C" int32_t jCmsInitCms(CmsLinkSettings* settings) {
    if (!settings) return 0;
    ko::front::initSettings(*settings);
    return 1;
}
