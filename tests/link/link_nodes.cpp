// Builds a link and prints some of its nodes: the levels that go in, and what the node holds on
// the 16-bit scale.
//   link_nodes rgb|cmyk own|system SOURCE DESTINATION INTENT COUNT
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string_view>

#include "kolink.h"

int main(int argc, char** argv) {
    if (argc != 7) {
        std::fputs("usage: link_nodes rgb|cmyk own|system SOURCE DESTINATION INTENT COUNT\n",
                   stderr);
        return 2;
    }
    const bool rgb = std::string_view(argv[1]) == "rgb", own = std::string_view(argv[2]) == "own";
    CmsLinkSettings settings;
    jCmsInitCms(&settings);
    std::strncpy(settings.sourcePath, argv[3], KOLINK_PATH_SIZE - 1);
    std::strncpy(settings.destinationPath, argv[4], KOLINK_PATH_SIZE - 1);
    settings.intent = std::atoi(argv[5]);
    const auto build = rgb ? (own ? jKoLinkCombineRgbProfile : jKoLinkCombineIcmRgbProfile)
                           : (own ? jKoLinkCombineCmykProfile : jKoLinkCombineIcmCmykProfile);
    LinkProfile* link = build(&settings);
    if (!link) {
        std::fputs("link_nodes: the link cannot be built\n", stderr);
        return 1;
    }
    std::mt19937 random(20);
    for (int left = std::atoi(argv[6]); left > 0; --left) {
        unsigned long node = 0;
        for (int32_t axis = 0; axis < link->inputChannels; ++axis) {
            const auto index = random() % 17;
            node = node * 17 + index;
            std::printf("%lu ", static_cast<unsigned long>(index * 4080));
        }
        for (unsigned long k = 0; k < 4; ++k) std::printf(" %d", link->grid[node * 4 + k] * 16);
        std::printf("\n");
    }
    jKoLinkReleaseProfile(link);
    return 0;
}
