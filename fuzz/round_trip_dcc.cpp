// DCC settings files, there and back.
#include "fuzz/round_trip.h"
#include <optional>

#include "tone/tone.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ko::tone;
    static const auto curve = createToneCurve(6);
    if (!curve) return 0;
    roundTrip(data, size, [](const char* path) {
        DccSettings settings{600, 600, 255, 100, curve.get()};
        return loadDcc(settings, path) ? std::optional(settings) : std::nullopt;
    }, saveDcc);
    return 0;
}
