// ICC profiles as the tool sees them: opened, their tags loaded, and judged before use.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/files.h"
#include "frame/block.h"
#include "frame/bytes.h"
#include "icc/icc.h"
#include "tone/tone.h"

namespace ko::cli {

using CmykProfilePtr = Block<CmykProfile>;
using ToneCurvePtr = tone::OwnedCurve;

// A new record, or a failure for want of memory.
CmykProfilePtr newCmykProfile();
ToneCurvePtr newToneCurve(int32_t channels);

// The four characters, without trailing blanks, others than ASCII as escapes; empty for 0.
std::string signatureText(uint32_t signature);

class IccInput {
public:
    // Fails with a clear line when the file is no ICC profile.
    explicit IccInput(InputFile file);

    const InputFile& file() const { return file_; }
    const IccHeader& header() const { return profile_->header; }
    const IccProfile& profile() const { return *profile_; }
    const IccTagEntry* find(uint32_t signature) const;  // null: no such tag
    uint32_t elementType(const IccTagEntry& entry) const;

    // What the tag holds, decoded once; null when there is no such tag or it cannot be read.
    template <class T>
    T* tag(uint32_t signature) const {
        return static_cast<T*>(loaded(signature));
    }
    // The table of a tag that does exist; fails with a clear line when it cannot be used or is
    // cut short by the end of the file.
    IccLut* lut(uint32_t signature) const;

private:
    void* loaded(uint32_t signature) const;

    InputFile file_;
    icc::ProfilePtr profile_;
};

// The library's profile from what was read: a link, or a .lut or .amt table.
CmykProfilePtr cmykProfile(const IccInput& icc);
CmykProfilePtr cmykProfile(const InputFile& table);

// Whether the file ends before the table does.
bool isCutShort(const InputFile& file, const IccTagEntry& entry, const IccLut& lut);

// A table made ready for evaluation for as long as this lives.
class ReadyLut {
public:
    explicit ReadyLut(IccLut* lut);
    ~ReadyLut() {
        if (ready_) jIccLutClose(lut_);
    }
    ReadyLut(const ReadyLut&) = delete;
    explicit operator bool() const { return ready_; }
    const IccLut& record() const { return *lut_; }
    double fullScale() const { return lut_->precision == 1 ? 255 : 65535; }
    // One colour, parts of the full scale in and out; on the table's own scale, where the top
    // level lies on the last grid point.
    std::array<double, 4> convert(const std::array<double, 4>& colour) const;

private:
    IccLut* lut_;
    bool ready_;
};

}  // namespace ko::cli
