// Building a link through the system's colour management.
#include <optional>

#include "frame/file.h"
#include "frame/platform.h"
#include "icc/icc.h"
#include "link/link.h"
#include "link/system_cms.h"

namespace ko::link {
namespace {

// Null when the file is not a valid profile.
system::ProfileHandle openSystemProfile(const Path& path) {
    const FileGuard guard;
    system::ProfileHandle profile(system::openProfile(path.c_str()));
    if (profile && !system::isValid(*profile)) profile.reset();
    return profile;
}

// The destination's colours by its header. One that cannot be opened or is none, and any other
// space, counts as CMYK: whether a transform can be made of it is for the system to say. Empty
// when reading failed on the way, which says nothing about the colours.
std::optional<system::Colours> coloursOf(const Path& path) {
    const icc::ProfilePtr profile = icc::loadHeader(path);
    if (!profile && !platform::lastErrorIs(platform::Cause::damaged) &&
        readWhole(path, kProfileFiles, 1).result != ReadResult::notOpened)
        return std::nullopt;
    return profile && profile->header.colourSpace == fourcc("RGB ") ? system::Colours::rgb
                                                                    : system::Colours::cmyk;
}

// In storage order, one colour a call.
void fillGrid(LinkProfile& link, system::Transform& transform, system::Colours inputs,
              system::Colours outputs) {
    const platform::WaitCursor cursor(platform::WaitCursor::Source::system);
    const uint64_t nodes = nodeCount(link);
    uint16_t input[4] = {};
    for (uint64_t node = 0; node < nodes; ++node) {
        uint64_t rest = node;
        for (int32_t axis = link.inputChannels - 1; axis >= 0; --axis) {
            input[axis] = static_cast<uint16_t>(sourceLevel(static_cast<int32_t>(rest % kGridPoints)));
            rest /= kGridPoints;
        }
        uint16_t output[4] = {};
        system::translate(transform, input, inputs, output, outputs);
        if (outputs == system::Colours::rgb) output[3] = 0;
        for (size_t k = 0; k < 4; ++k) link.grid[node * 4 + k] = output[k] >> 4;
    }
}

Link combine(const CmsLinkSettings& settings, system::Colours inputs) {
    const Path sourcePath(settings.sourcePath), destinationPath(settings.destinationPath);
    if (!sourcePath || sourcePath.empty() || !destinationPath || destinationPath.empty())
        return nullptr;
    if (settings.intent < 0 || settings.intent > 3) return nullptr;
    const std::optional<system::Colours> outputs = coloursOf(destinationPath);
    if (!outputs) return nullptr;
    const system::ProfileHandle source = openSystemProfile(sourcePath);
    if (!source) return nullptr;
    const system::ProfileHandle destination = openSystemProfile(destinationPath);
    if (!destination) return nullptr;
    const system::TransformHandle transform(
        system::createTransform(*source, *destination, static_cast<uint32_t>(settings.intent)));
    if (!transform) return nullptr;
    Link link = createProfile(inputs == system::Colours::rgb ? 3 : 4, kGridPoints);
    if (link) fillGrid(*link, *transform, inputs, *outputs);
    return link;
}

}  // namespace

Link combineIcmRgbProfile(const CmsLinkSettings& settings) {
    return combine(settings, system::Colours::rgb);
}

Link combineIcmCmykProfile(const CmsLinkSettings& settings) {
    return combine(settings, system::Colours::cmyk);
}

}  // namespace ko::link
