// The link settings record as a host finds it before anything was chosen.
#include "front/front.h"

namespace ko::front {

void initSettings(CmsLinkSettings& settings) noexcept {
    settings = CmsLinkSettings{};
    settings.limit = 200;
}

}  // namespace ko::front
