// What pictures are made of: a million pixels of one of three kinds.
#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

namespace ko::bench {

enum Pixels : int64_t {
    kRandom,
    kSmooth,  // neighbours are a few levels apart, as in a photograph
    kRuns,    // of 64 equal pixels
};

inline std::vector<uint8_t> makePixels(size_t channels, int64_t kind = kRandom) {
    std::mt19937 random(2);
    std::vector<uint8_t> pixels(channels << 20);
    for (size_t at = 0; at < pixels.size(); ++at) {
        const auto any = static_cast<int32_t>(random() & 0xff);
        int32_t level = any;
        if (kind == kSmooth && at >= channels) level = pixels[at - channels] + any % 7 - 3;
        if (kind == kRuns && at / channels % 64 != 0) level = pixels[at - channels];
        pixels[at] = static_cast<uint8_t>(std::clamp(level, 0, 255));
    }
    return pixels;
}

}  // namespace ko::bench
