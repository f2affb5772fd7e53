// ICC profiles as the tool sees them: opened, their tags loaded, and judged before use.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/files.h"

namespace ko::cli {

struct ProfileDeleter {
    void operator()(IccProfile* profile) const { jIccRelease(profile); }
    void operator()(CmykProfile* profile) const { jKoCmykReleaseProfile(profile); }
    void operator()(ToneCurve* curve) const { jKoToneReleaseToneCurve(curve); }
};
using IccProfilePtr = std::unique_ptr<IccProfile, ProfileDeleter>;
using CmykProfilePtr = std::unique_ptr<CmykProfile, ProfileDeleter>;
using ToneCurvePtr = std::unique_ptr<ToneCurve, ProfileDeleter>;

// A new record, or a failure for want of memory.
CmykProfilePtr newCmykProfile();
ToneCurvePtr newToneCurve(int32_t channels);

constexpr uint32_t signatureOf(const char (&text)[5]) {
    return static_cast<uint32_t>(static_cast<uint8_t>(text[0])) << 24 |
           static_cast<uint32_t>(static_cast<uint8_t>(text[1])) << 16 |
           static_cast<uint32_t>(static_cast<uint8_t>(text[2])) << 8 |
           static_cast<uint32_t>(static_cast<uint8_t>(text[3]));
}
// The four characters, without trailing blanks, others than ASCII as escapes; empty for 0.
std::string signatureText(uint32_t signature);

class IccInput {
public:
    // Fails with a clear line when the file is no ICC profile.
    explicit IccInput(const InputFile& file);

    const InputFile& file() const { return file_; }
    const IccHeader& header() const { return profile_->header; }
    IccProfile* profile() const { return profile_.get(); }
    const IccTagEntry* find(uint32_t signature) const;  // null: no such tag
    uint32_t elementType(const IccTagEntry& entry) const;

    // The table of a tag that does exist; fails with a clear line when it cannot be used or is
    // cut short by the end of the file.
    IccLut* lut(uint32_t signature) const;

private:
    InputFile file_;
    IccProfilePtr profile_;
};

// A table made ready for evaluation for as long as this lives.
class ReadyLut {
public:
    explicit ReadyLut(IccLut* lut) : lut_(lut), ready_(lut && jIccLutSetup(lut) == 1) {}
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
