// ICC profiles with all tags that can be read, there and back. Not those in host order: the writer
// mixes both orders in them, as hosts know it.
#include "fuzz/round_trip.h"
#include "icc/tag_codecs.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ko::icc;
    roundTrip(data, size, [](const char* path) {
        ProfilePtr profile = loadHeader(path);
        bool any = false;
        if (profile && profile->swapBytes == 1)
            for (const TagCodec& codec : tagCodecs())
                if (loadTag(*profile, codec.signature)) any |= (codec.writers & kProfileWriter) != 0;
        return any ? std::move(profile) : nullptr;
    }, [](IccProfile& profile, const char* path) { return saveProfile(&profile, path); });
    return 0;
}
