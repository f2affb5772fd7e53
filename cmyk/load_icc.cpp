// Loading a CMYK profile from an ICC profile: editing data from its description, curves and grid
// from A2B0.
#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <optional>
#include <span>

#include "cmyk/description.h"
#include "cmyk/load.h"
#include "frame/bytes.h"
#include "frame/text.h"
#include "icc/lut_fast.h"
#include "icc/pair.h"

namespace ko::cmyk {
namespace {

using Slots = std::array<uint16_t, 256>;  // one channel's curve on the 0..255 scale
constexpr uint16_t kEmpty = 65535;        // no entry's high byte is that

// Spreads the first count entries of a channel's input table over the slots, then fills each gap
// on the straight line between the slots around it that hold entries. Integers; division
// truncates toward zero. Both counts are at least 1.
Slots spreadOverSlots(const IccLut& lut, int32_t channel, int32_t count) noexcept {
    const auto entry = [&](int32_t index) {
        const size_t start = static_cast<size_t>(lut.inputEntries) * static_cast<size_t>(channel);
        return icc::lutEntry(lut.inputTables, start + static_cast<size_t>(index), 2);
    };
    Slots slots;
    slots.fill(kEmpty);
    for (int32_t e = 0; e < count; ++e) {
        // A single entry has no place of its own: the curve is that value everywhere. Entries
        // beyond the table repeat its last.
        const size_t slot = count == 1 ? 0 : static_cast<size_t>(int64_t{e} * 255 / (count - 1));
        slots[slot] = static_cast<uint16_t>(entry(std::min(e, lut.inputEntries - 1)) >> 8);
    }
    int32_t low = 0;
    for (int32_t high = 1; high < 256; ++high) {
        if (slots[high] == kEmpty) continue;
        const int32_t from = slots[low], to = slots[high];
        for (int32_t slot = low + 1; slot < high; ++slot)
            slots[slot] = static_cast<uint16_t>(from + (to - from) * (slot - low) / (high - low));
        low = high;
    }
    std::fill(slots.begin() + low + 1, slots.end(), slots[low]);
    return slots;
}

void takeSlots(CmykProfile& profile, int32_t curve, const Slots& slots) noexcept {
    for (int32_t point = 0; point < kCurvePoints; ++point)
        profile.curveValues[curve][point] = static_cast<uint8_t>(slots[curveLevel(point)]);
}

void takeCurves8(CmykProfile& profile, int32_t curve, const uint8_t* table) noexcept {
    for (int32_t point = 0; point < kCurvePoints; ++point)
        profile.curveValues[curve][point] = table[curveLevel(point)];
}

// Node bytes in grid order, four a node, whatever the channel counts say; as far as the LUT's
// own grid goes, zero behind it.
void copyGrid(CmykProfile& profile, const IccLut& lut) noexcept {
    const uint64_t held = icc::sizesOf(icc::shapeOf(lut)).clut;
    const auto size = static_cast<size_t>(std::min<uint64_t>(held, sizeof profile.grid));
    std::memcpy(profile.grid, lut.clut, size);
    std::memset(reinterpret_cast<uint8_t*>(profile.grid) + size, 0, sizeof profile.grid - size);
    for (uint32_t& node : profile.grid) node = reverse32(node);
}

// Many colours through a LUT. One that cannot be evaluated leaves colours as they are.
class Evaluator {
public:
    explicit Evaluator(IccLut& lut) : lut_(lut) {
        if (!lut_) return;
        try {
            fast_.emplace(*lut_);
        } catch (const std::bad_alloc&) {
            // The plain evaluator needs no more memory and gives the same bits.
        }
    }

    void colours(std::span<icc::FastLut::Colour> values) const noexcept {
        if (fast_) return fast_->colours(values.data(), values.size());
        if (!lut_) return;
        for (auto& colour : values) icc::lutColor(*lut_, colour.data());
    }

private:
    icc::ReadyLut lut_;
    std::optional<icc::FastLut> fast_;
};

// Every node through the evaluator, a run along K at a time. 16-bit tables see levels of 256
// steps and give them back.
void evaluateGrid(CmykProfile& profile, IccLut& lut) {
    const Evaluator evaluator(lut);
    const int32_t scale = lut.precision == 2 ? 256 : 1;
    uint32_t* node = profile.grid;
    std::array<icc::FastLut::Colour, kGridPoints> run;
    grid::forEachNode<3>(kGridPoints, [&](const std::array<int32_t, 3>& cmy) {
        for (int32_t k = 0; k < kGridPoints; ++k)
            run[k] = {nodeValue(cmy[0]) * scale, nodeValue(cmy[1]) * scale,
                      nodeValue(cmy[2]) * scale, nodeValue(k) * scale};
        evaluator.colours(run);
        for (const auto& out : run)
            *node++ = packCmyk(out[0] / scale, out[1] / scale, out[2] / scale, out[3] / scale);
    });
}

}  // namespace

void takeCurves(CmykProfile& profile, const IccLut& lut) noexcept {
    for (int32_t channel = 0; channel < 4; ++channel) {
        if (lut.precision == 1) {
            if (channel < lut.inputChannels && lut.inputEntries == 256)
                takeCurves8(profile, channel,
                            static_cast<const uint8_t*>(lut.inputTables) + 256 * channel);
            if (channel < lut.outputChannels && lut.outputEntries == 256)
                takeCurves8(profile, 4 + channel,
                            static_cast<const uint8_t*>(lut.outputTables) + 256 * channel);
        } else if (lut.precision == 2 && channel < lut.inputChannels && lut.inputEntries > 0) {
            takeSlots(profile, channel, spreadOverSlots(lut, channel, lut.inputEntries));
            // The output curve has the output table's entry count, but its entries come from
            // the input table: profiles in the field were loaded so.
            if (lut.outputEntries > 0)
                takeSlots(profile, 4 + channel, spreadOverSlots(lut, channel, lut.outputEntries));
        }
    }
}

void takeGrid(CmykProfile& profile, IccLut& lut) {
    if (lut.precision == 1 && lut.gridPoints == kGridPoints) return copyGrid(profile, lut);
    evaluateGrid(profile, lut);
}

bool loadIccProfile(CmykProfile& profile, const Path& path) {
    constexpr uint32_t kTags[] = {fourcc("desc"), fourcc("A2B0")};
    icc::ProfileFile file = icc::openProfile(path);
    if (!file) return false;
    for (const uint32_t tag : kTags)
        if (icc::loadTag(file, tag) == icc::TagResult::shortMemory) return false;
    const icc::ProfilePtr source = std::move(file.profile);
    file = {};  // its bytes go before the grid is made
    const platform::WaitCursor cursor(platform::WaitCursor::Source::library);
    takeTags(profile, *source);
    path.copyTo(profile.path);
    return true;
}

void takeTags(CmykProfile& profile, const IccProfile& source) {
    const auto loaded = [&](uint32_t signature) -> void* {
        const IccTagEntry* const tag = icc::findTag(source, signature);
        return tag ? tag->data : nullptr;
    };
    if (void* data = loaded(fourcc("A2B0"))) {
        auto& lut = *static_cast<IccLut*>(data);
        takeGrid(profile, lut);  // first: it may want memory, and then nothing is changed
        takeCurves(profile, lut);
    }
    if (const void* text = loaded(fourcc("desc")))
        applyDescription(profile, static_cast<const char*>(text));
}

}  // namespace ko::cmyk
