// TIFF pictures being read: pages, and their rows in constant memory.
#pragma once

#include <tiffio.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cli/conversion.h"
#include "cli/files.h"

namespace ko::cli {

// Every call of the TIFF library that may take memory goes through here. That library drops a tag
// that it gets no memory for, often without a word, and then walks over a list that is not there.
// The C library tells: inTiff throws std::bad_alloc, and the pictures are never touched again.
void runInTiff(void (*call)(void*), void* data);
template <class Call>
auto inTiff(Call&& call) {
    struct Work {
        Call& call;
        decltype(call()) result;
    } work{call, {}};
    runInTiff([](void* data) { static_cast<Work*>(data)->result = static_cast<Work*>(data)->call(); }, &work);
    return work.result;
}

struct TiffCloser {
    void operator()(TIFF* tiff) const;  // one that ran short of memory is left to the system
};
using TiffPtr = std::unique_ptr<TIFF, TiffCloser>;

// The TIFF library reports errors through a function without context, so the first one since
// forgetTiffError is kept; one picture is worked on at a time.
void forgetTiffError();
bool hasTiffError();
[[noreturn]] void failWith(const std::string& path, const std::string& what);  // with that error

TiffPtr openTiff(const std::string& path);  // to be read; fails with a clear line
// Fails when a read of the picture opened last has failed, also one of a tag that the TIFF library
// then took for absent.
void requireWholeReading(const std::string& path);
// A picture that is written through the door, which outlives it. Null: see hasTiffError.
TiffPtr newTiff(NewFile& file, bool large);

// What a page is, as far as it matters here.
struct Page {
    uint32_t width = 0, height = 0;
    uint16_t bits = 0, samples = 0, compression = COMPRESSION_NONE;
    bool planar = false, tiled = false;
    bool whiteIsZero = false;  // of grey
    ColourSpace space = ColourSpace::rgb;
};

// Of the handle's present page; fails with a clear line when the page cannot be converted.
Page readPage(const InputFile& file, TIFF* tiff);

// The handle, and for a planar page in strips one more a channel, so that each goes through its
// own strips in order. more owns the further ones, from one page to the next.
std::vector<TIFF*> channelHandles(const std::string& path, const Page& page, TIFF* tiff, int number,
                                  std::vector<TiffPtr>& more);

// The ICC profile of the handle's present page; empty when there is none.
std::vector<uint8_t> embeddedProfile(TIFF* tiff);

// The rows of a page, one after the other, as interleaved samples of its colour channels, of the
// bits that the page has. White is the top level of grey.
class RowReader {
public:
    RowReader(const std::string& path, const Page& page, std::vector<TIFF*> handles);
    void read(uint32_t row, uint8_t* pixels);  // rows in rising order; samples of 8 or 16 bits

private:
    void take(const uint8_t* from, size_t step, uint32_t count, uint8_t* to) const;
    void readTiled(uint32_t row, uint8_t* pixels);

    const std::string& path_;
    const Page& page_;
    std::vector<TIFF*> handles_;
    size_t channels_, sample_;  // bytes of a sample
    std::vector<uint8_t> buffer_;
    uint32_t tileWidth_ = 0, tileHeight_ = 0;
    uint64_t tileBytes_ = 0;
};

}  // namespace ko::cli
