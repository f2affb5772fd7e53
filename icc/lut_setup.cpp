// The work table: a LUT's curves resampled into rows of eight.
#include <algorithm>
#include <limits>
#include <mutex>
#include <vector>

#include "frame/block.h"
#include "icc/lut.h"

namespace ko::icc {
namespace {

// Work tables that are alive and the records they were made for. A record that a host built may
// hold anything in its pointer before the first set-up, so a second set-up frees what it finds
// there only when it is this record's own.
class WorkTables {
public:
    void add(const void* table, const IccLut* owner) {
        const std::lock_guard lock(mutex_);
        tables_.push_back({table, owner});
    }
    bool remove(const void* table, const IccLut* owner) noexcept {
        return removeIf([=](const Entry& entry) {
            return entry.table == table && entry.owner == owner;
        });
    }
    void remove(const void* table) noexcept {
        removeIf([=](const Entry& entry) { return entry.table == table; });
    }

private:
    struct Entry {
        const void* table;
        const IccLut* owner;
    };
    template <class Test>
    bool removeIf(Test test) noexcept {
        const std::lock_guard lock(mutex_);
        const auto found = std::find_if(tables_.begin(), tables_.end(), test);
        if (found == tables_.end()) return false;
        *found = tables_.back();
        tables_.pop_back();
        return true;
    }
    std::mutex mutex_;
    std::vector<Entry> tables_;
};
WorkTables workTables;

// Spreads the entries of one 16-bit curve over the rows of a slot. Rows between entries lie on
// the straight line between the nearest rows that hold entries, division truncating toward zero.
void resample(const void* curve, int32_t entries, int32_t* slot) noexcept {
    constexpr int32_t kRows = lutRows(2);
    const auto row = [slot](int32_t r) -> int32_t& { return slot[size_t{kLutSlots} * r]; };
    if (entries == 0) {  // as in a curve tag: no entries, no change
        for (int32_t r = 0; r < kRows; ++r) row(r) = r * 65535 / (kRows - 1);
        return;
    }
    if (entries == 1) {
        for (int32_t r = 0; r < kRows; ++r) row(r) = lutEntry(curve, 0, 2);
        return;
    }
    // Rows of entries ascend, so the gap below each is complete when it is met.
    int32_t filled = 0;
    row(0) = lutEntry(curve, 0, 2);
    for (int32_t j = 1; j < entries; ++j) {
        const auto next = static_cast<int32_t>(int64_t{j} * (kRows - 1) / (entries - 1));
        const int32_t value = lutEntry(curve, j, 2);
        const int32_t from = row(filled);
        for (int32_t r = filled + 1; r < next; ++r) {
            row(r) = from + (value - from) * (r - filled) / (next - filled);
        }
        row(next) = value;  // a later entry of the same row replaces the earlier one
        filled = next;
    }
}

void copyCurve(const void* curve, int32_t* slot) noexcept {
    for (int32_t r = 0; r < lutRows(1); ++r) slot[kLutSlots * r] = lutEntry(curve, r, 1);
}

void fillSlots(const void* tables, int32_t channels, int32_t entries, int32_t precision,
               int32_t* slots) noexcept {
    const auto* curve = static_cast<const uint8_t*>(tables);
    const size_t stride = size_t{precision == 2 ? 2u : 1u} * static_cast<size_t>(entries);
    for (int32_t i = 0; i < channels; ++i, curve += stride) {
        if (precision == 2) {
            resample(curve, entries, slots + i);
        } else {
            copyCurve(curve, slots + i);
        }
    }
}

}  // namespace

bool isSupportedLut(const IccLut& lut) noexcept {
    if (lut.inputChannels < 1 || lut.inputChannels > kMaxLutChannels) return false;
    if (lut.outputChannels < 1 || lut.outputChannels > kMaxLutChannels) return false;
    if (lut.precision != 1 && lut.precision != 2) return false;
    if (lut.gridPoints < 2 || lut.gridPoints - 1 > lutMaximum(lut.precision)) return false;
    if (lut.precision == 1 && (lut.inputEntries != 256 || lut.outputEntries != 256)) return false;
    if (lut.inputEntries < 0 || lut.outputEntries < 0) return false;
    if (!lut.inputTables || !lut.clut || !lut.outputTables) return false;
    constexpr uint64_t kLimit = std::numeric_limits<ptrdiff_t>::max();
    uint64_t bytes = uint64_t{lut.precision} * static_cast<uint32_t>(lut.outputChannels);
    for (int32_t axis = 0; axis < lut.inputChannels; ++axis) {
        bytes *= static_cast<uint32_t>(lut.gridPoints);  // 65536 * 2^47 at most: no wrap
        if (bytes > kLimit || bytes > uint64_t{1} << 47) return false;
    }
    const uint64_t entries = uint64_t{lut.precision} * kMaxLutChannels *
                             static_cast<uint32_t>(std::max(+lut.inputEntries, +lut.outputEntries));
    return entries <= kLimit;
}

bool lutSetup(IccLut* lut) {
    if (!lut) return false;
    void* const held = lut->workTable;
    lut->workTable = nullptr;
    if (held && workTables.remove(held, lut)) jMemFree(held);
    if (!isSupportedLut(*lut)) return false;

    const int32_t rows = lutRows(lut->precision);
    const size_t slots = size_t{kLutSlots} * static_cast<size_t>(rows + 1);
    auto table = allocateBlock<int32_t>(slots * sizeof(int32_t));
    if (!table) return false;
    std::fill_n(table.get(), slots, 0);
    fillSlots(lut->inputTables, lut->inputChannels, lut->inputEntries, lut->precision,
              table.get());
    fillSlots(lut->outputTables, lut->outputChannels, lut->outputEntries, lut->precision,
              table.get() + kMaxLutChannels);
    int32_t* const extra = table.get() + size_t{kLutSlots} * rows;
    std::copy_n(extra - kLutSlots, kLutSlots, extra);

    workTables.add(table.get(), lut);
    lut->workTable = table.release();
    return true;
}

bool lutClose(IccLut* lut) noexcept {
    if (!lut || !lut->workTable) return false;
    workTables.remove(lut->workTable);
    jMemFree(lut->workTable);
    lut->workTable = nullptr;
    return true;
}

}  // namespace ko::icc
