// The directories and keys of the keyed form that reader and writer make up from numbers.
#pragma once

#include <cstdio>
#include <string>

namespace ko::calib {

constexpr char kSetDirectory[] = "\\CALIB";
constexpr char kNameKey[] = "NAME";
constexpr char kColourKey[] = "LRGB";

inline std::string numbered(const char* format, int number) {
    char text[32];
    const int length = std::snprintf(text, sizeof text, format, number);
    return {text, static_cast<size_t>(length)};
}
inline std::string channelDirectory(int index) { return numbered("\\CALIB\\CURVE_%02d", index); }
inline std::string toneKey(int index) { return numbered("TONE_%03d", index); }

}  // namespace ko::calib
