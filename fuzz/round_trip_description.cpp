// The description that carries what was edited in a CMYK profile, there and back.
#include <cstdlib>
#include <string_view>

#include "cmyk/cmyk.h"
#include "cmyk/description.h"
#include "frame/text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const auto profile = ko::cmyk::createProfile();
    if (!profile) return 0;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    ko::cmyk::applyDescription(*profile, text);
    // A line of the comment that looks like a keyword counts as one when it is read again.
    const std::string_view comment = ko::textIn(profile->comment);
    if (ko::cmyk::asPlainText(comment) != comment) return 0;
    const std::string once = ko::cmyk::buildDescription(*profile);
    ko::cmyk::applyDescription(*profile, once);
    if (ko::cmyk::buildDescription(*profile) != once) std::abort();
    return 0;
}
