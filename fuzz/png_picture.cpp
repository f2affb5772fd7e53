// Any bytes may fail to be a picture; the rows of one that is stay in their buffers.
#include "cli/picture.h"

#include "cli/errors.h"
#include "fuzz/temp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ko::cli;
    static TempFile file;
    const InputFile picture{.path = file.with(data, size), .size = size, .bytes = {}};
    try {
        const auto reader = openPng(picture);
        const Page page = reader->page();
        (void)reader->profile();
        (void)exifOf(reader->metadata());
        std::vector<uint8_t> row(size_t{page.width} * static_cast<size_t>(channelsOf(page.space)) *
                                 (page.bits == 16 ? 2 : 1));
        for (uint32_t y = 0; y < page.height && y < 300; ++y) reader->read(y, row.data());
        if (page.height <= 300) reader->finish();
    } catch (const Failure&) {}
    return 0;
}
