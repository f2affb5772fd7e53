// The colour front end: what a host needs for display and editing.
#pragma once

#include "kolink/link_settings.h"

namespace ko::front {

// Empty paths, zeros, limit 200.
void initSettings(CmsLinkSettings& settings) noexcept;

}  // namespace ko::front
