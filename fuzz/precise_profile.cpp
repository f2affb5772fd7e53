// A profile of any version: header, texts, white, every table both ways and colours through them;
// then a link from it to itself, where that can be, and back from its file.
#include "precise/forward.h"
#include "precise/link.h"
#include "precise/link_file.h"
#include "precise/transform.h"

using namespace ko::precise;

namespace {
volatile double sink;
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Problem problem;
    const auto profile = Profile::parse({data, size}, problem);
    if (!profile) return 0;
    double sum = profile->mediaWhite()[0] + profileId(profile->bytes())[3];
    for (int intent = 0; intent < 4; ++intent)
        for (const bool to : {true, false}) {
            Problem here;
            auto pipeline = to ? profile->toConnection(static_cast<Intent>(intent), here)
                               : profile->fromConnection(static_cast<Intent>(intent), here);
            if (!pipeline) continue;
            const Evaluator evaluator(std::move(*pipeline));
            for (const double level : {0.0, 0.37, 1.0, 60.0}) {
                sum += evaluator.at({level, 1 - level, 0.5, level})[0];
                sum += evaluator.slopesAt({level, 1 - level, 0.5, level}).slopes[1][2];
            }
        }
    sum += destinationBlack(*profile, Intent::relative)[1];
    LinkOptions options;
    options.gridPoints = 9;
    options.inkLimit = 250;
    options.preserve = Preserve::triplex;
    int32_t part = 0;
    Problem linking;
    if (const auto link = makeLink(*profile, *profile, nullptr, options, linking, part)) {
        Problem writing;
        const auto bytes = linkFile(*link, {}, writing);
        if (!Profile::parse(bytes, writing)) __builtin_trap();
        sum += link->at({0.1, 0.9, 0.3, 0.7})[0];
    }
    sink = sum;
    return 0;
}
