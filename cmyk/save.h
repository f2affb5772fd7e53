// The steps of saveProfile, apart from each other for tests.
#pragma once

#include "cmyk/cmyk.h"
#include "icc/icc.h"

namespace ko::cmyk {

// The A2B0 table of the link; null when memory is short.
[[nodiscard]] Block<IccLut> makeLinkLut(const CmykProfile& profile) noexcept;

// Gives a new link its tags; false when memory is short.
[[nodiscard]] bool fillLink(IccProfile& link, const CmykProfile& profile);

// Fills a new link and writes it. True when all went well, and also without a link.
bool saveInto(icc::ProfilePtr link, const CmykProfile& profile, const Path& path);

}  // namespace ko::cmyk
