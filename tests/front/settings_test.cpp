#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "kolink/link_settings.h"

namespace {

TEST(LinkSettings, StartWithEmptyPathsZerosAndALimitOf200) {
    CmsLinkSettings settings;
    std::memset(&settings, 0x55, sizeof settings);
    EXPECT_EQ(jCmsInitCms(&settings), 1);
    CmsLinkSettings expected{};
    expected.limit = 200;
    EXPECT_EQ(std::memcmp(&settings, &expected, sizeof settings), 0);
}

TEST(LinkSettings, RefuseANullRecord) { EXPECT_EQ(jCmsInitCms(nullptr), 0); }

}  // namespace
