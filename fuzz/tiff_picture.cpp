// Any bytes may fail to be a picture; the rows of one that is stay in their buffers.
#include "cli/tiff_picture.h"

#include "cli/errors.h"
#include "fuzz/temp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ko::cli;
    static TempFile file;
    const std::string path = file.with(data, size);
    const InputFile picture{.path = path, .size = size, .bytes = {}};
    try {
        const TiffPtr tiff = openTiff(path);
        for (int number = 0; number < 3; ++number) {
            const Page page = readPage(picture, tiff.get());
            std::vector<TiffPtr> more;
            RowReader reader(path, page, channelHandles(path, page, tiff.get(), number, more));
            std::vector<uint8_t> row(size_t{page.width} * static_cast<size_t>(channelsOf(page.space)) *
                                     (page.bits == 16 ? 2 : 1));
            for (uint32_t y = 0; y < page.height && y < 300; ++y) reader.read(y, row.data());
            if (!TIFFReadDirectory(tiff.get())) break;
        }
    } catch (const Failure&) {}
    return 0;
}
