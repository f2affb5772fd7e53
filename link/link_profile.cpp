// The link record: creation and release.
#include <cstring>

#include "frame/text.h"
#include "grid/cell.h"
#include "link/link.h"
#include "resources/texts.h"

namespace ko::link {
namespace {

constexpr uint64_t kMaxGridBytes = uint64_t{256} << 20;

}  // namespace

void LinkDeleter::operator()(LinkProfile* link) const noexcept {
    if (link->grid) jMemFree(link->grid);
    jMemFree(link);
}

uint64_t nodeCount(const LinkProfile& link) noexcept {
    if (!link.grid || link.gridPoints < 2 || link.gridPoints > 256) return 0;
    return grid::nodeCount(static_cast<uint64_t>(link.gridPoints), link.inputChannels == 3 ? 3 : 4);
}

Link createProfile(int32_t inputChannels, int32_t gridPoints) noexcept {
    if (inputChannels != 3 && inputChannels != 4) return nullptr;
    if (gridPoints < 2 || gridPoints > 256) return nullptr;
    const uint64_t bytes = grid::nodeCount(static_cast<uint64_t>(gridPoints), inputChannels) * 8;
    if (bytes > kMaxGridBytes) return nullptr;

    Link link(static_cast<LinkProfile*>(allocateBlock(sizeof(LinkProfile)).release()));
    if (!link) return nullptr;
    *link = LinkProfile{};
    link->grid = static_cast<uint16_t*>(allocateBlock(bytes).release());
    if (!link->grid) return nullptr;
    std::memset(link->grid, 0, static_cast<size_t>(bytes));  // a host may look before it fills

    copyText(link->name, texts::kUntitled);
    link->inputChannels = inputChannels;
    link->gridPoints = gridPoints;
    for (auto& curve : link->curveValues)
        for (int32_t point = 0; point < 65; ++point)
            curve[point] = static_cast<uint8_t>(grid::steppedLevel(point, 65));
    for (auto& flags : link->curveFlags) flags[0] = flags[64] = 1;
    return link;
}

}  // namespace ko::link
