#include "icc/words.h"

#include "frame/bytes.h"

namespace ko::icc {

std::string signatureText(uint32_t signature) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto character = static_cast<char>(signature >> shift & 255);
        text += character >= 0x20 && character < 0x7f ? character : '?';
    }
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

std::string descriptionLine(IccProfile& profile) {
    std::string line;
    const auto* text = static_cast<const char*>(loadTag(profile, fourcc("desc")));
    for (; text && *text && line.size() < 100; ++text) {
        if (*text == '\r' || *text == '\n') break;
        if (static_cast<unsigned char>(*text) >= 0x20) line += *text;
    }
    return line;
}

}  // namespace ko::icc
