// ICC version 2 profiles: the object and its tags, files, colour arithmetic, LUT evaluation.
// The exported functions of the same names are thin shells over these; include/kolink says what
// each one takes and returns.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "frame/block.h"
#include "frame/bytes.h"
#include "frame/file.h"
#include "icc/lut.h"
#include "kolink/icc_colour.h"
#include "kolink/icc_file.h"
#include "kolink/icc_lut.h"
#include "kolink/icc_profile.h"

namespace ko::icc {

// The profile object. A profile owns its directory and the data of its tags.
bool release(IccProfile* profile) noexcept;  // false for null
struct ProfileReleaser {
    void operator()(IccProfile* profile) const noexcept { release(profile); }
};
using ProfilePtr = std::unique_ptr<IccProfile, ProfileReleaser>;

constexpr uint32_t kCreateLink = 1;     // what create makes anyway
constexpr uint32_t kCreatePrinter = KOLINK_ICC_PRINTER;  // class 'prtr', PCS 'Lab '
constexpr uint32_t kCreateOtherMaker = KOLINK_ICC_OTHER_MAKER;

[[nodiscard]] ProfilePtr create(uint32_t flags) noexcept;
bool bindTag(IccProfile* profile, uint32_t signature, void* data) noexcept;
bool unbindTag(IccProfile* profile, uint32_t signature) noexcept;
std::span<IccTagEntry> tagsOf(const IccProfile& profile) noexcept;
IccTagEntry* findTag(const IccProfile& profile, uint32_t signature) noexcept;  // the first one

// Gives a block to the profile; false, the block freed, when memory is short.
template <class T>
[[nodiscard]] bool bindBlock(IccProfile& profile, uint32_t signature, Block<T> block) noexcept {
    if (!block || !bindTag(&profile, signature, block.get())) return false;
    (void)block.release();  // the profile's now
    return true;
}

// Files. loadHeader and loadTag each read the file anew, as the exported functions of these names.
[[nodiscard]] ProfilePtr loadHeader(const Path& path);
void* loadTag(IccProfile& profile, uint32_t signature);

// A profile and the bytes of its file, all of one moment: what the engine itself reads. The bytes
// may go when the last tag is loaded; the profile stays.
struct ProfileFile {
    ProfilePtr profile;  // null: it cannot be read, see platform::lastError
    FileBytes bytes;
    explicit operator bool() const noexcept { return profile != nullptr; }
};
[[nodiscard]] ProfileFile openProfile(const Path& path);
enum class TagResult {
    loaded,
    absent,       // no such tag, of another type, or with a claim that cannot be believed
    shortMemory,
};
// Binds the tag of that signature; findTag has it then.
[[nodiscard]] TagResult loadTag(ProfileFile& file, uint32_t signature) noexcept;

bool saveProfile(IccProfile* profile, const Path& path);
bool saveDeviceProfile(IccProfile* profile, const Path& path);
bool saveLinkProfile(IccProfile* profile, const Path& path);
// What saveLinkProfile writes; nothing when a tag cannot be written.
[[nodiscard]] std::optional<std::vector<uint8_t>> encodeLinkProfile(const IccProfile& profile);

// The same readers over bytes in memory. The decoded data is not bound.
[[nodiscard]] ProfilePtr parseHeader(std::span<const uint8_t> bytes,
                                     uint64_t claimTolerance = kClaimTolerance) noexcept;
struct Decoded {
    Block<void> data;
    TagResult result;
    explicit operator bool() const noexcept { return data != nullptr; }
    void* get() const noexcept { return data.get(); }
};
[[nodiscard]] Decoded decodeTag(const IccProfile& profile, std::span<const uint8_t> bytes,
                                uint32_t signature,
                                uint64_t claimTolerance = kClaimTolerance) noexcept;

// LUT blocks.
struct LutShape {
    int32_t inputChannels;
    int32_t outputChannels;
    int32_t gridPoints;
    int32_t precision;  // bytes per entry
    int32_t inputEntries = 256;
    int32_t outputEntries = 256;
};
// Bytes of the three parts, formed in 64 bits; UINT64_MAX where they pass that. A count below 0
// stands for 0.
struct LutSizes {
    uint64_t inputTables, clut, outputTables;
    uint64_t tables() const noexcept;  // of all three
};
LutShape shapeOf(const IccLut& lut) noexcept;
LutSizes sizesOf(const LutShape& shape) noexcept;
// A record of that shape with its tables in one block: identity matrix, tables zero, no work
// table. Null when memory is short or a count is negative.
[[nodiscard]] Block<IccLut> makeLut(const LutShape& shape) noexcept;

// Colour arithmetic.
void xyzToLab(double* colour, const double* white) noexcept;
void labToXyz(double* colour, const double* white) noexcept;
void labEncode(double* colour, int32_t bits) noexcept;
void labDecode(double* colour, int32_t bits) noexcept;
void xyzEncode(double* colour, int32_t bits) noexcept;
void xyzDecode(double* colour, int32_t bits) noexcept;
void trcColor(const IccCurve* curve, int32_t* value) noexcept;

// Byte order and fixed point.
constexpr uint32_t revLong(uint32_t value) noexcept { return reverse32(value); }
constexpr uint16_t revShort(uint16_t value) noexcept { return reverse16(value); }

// Copies count elements of elementSize bytes, the bytes of each in reverse order; dst may equal
// src. Returns elementSize * count, or 0 when there is nothing to do.
uint64_t IccReverseBytes(void* dst, const void* src, uint32_t elementSize,
                         uint64_t count) noexcept;

float IccFixedToFloat(int32_t value) noexcept;  // s15Fixed16
int32_t IccFloatToFixed(float value) noexcept;  // half away from zero; saturates, NaN gives 0

}  // namespace ko::icc
