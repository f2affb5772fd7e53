// Combining profiles: the whole chain of a settings record baked into a new grid.
#pragma once

#include "cmyk/cmyk.h"
#include "kolink/link_settings.h"

namespace ko::cmyk {

// As the exported functions of these names; null when something does not load.
[[nodiscard]] Block<CmykProfile> combineProfile(const CmsLinkSettings& settings);
[[nodiscard]] Block<CmykProfile> combineIccProfile(const CmsLinkSettings& settings);

}  // namespace ko::cmyk
