#include "cli/finish.h"

#include <algorithm>

#include "cli/icc_input.h"
#include "cli/precise.h"
#include "cmyk/description.h"
#include "frame/bytes.h"
#include "precise/link_file.h"

namespace ko::cli {
namespace {

void putText(ByteWriter& out, const std::string& text) {
    out.u32(fourcc("text"));
    out.u32(0);
    for (const char c : text) out.u8(c == '\n' || (c >= 32 && c < 127) ? static_cast<uint8_t>(c) : '?');
    out.u8(0);
}

void putWord(std::vector<uint8_t>& bytes, size_t at, uint32_t word) {
    for (size_t byte = 0; byte < 4; ++byte) bytes[at + byte] = static_cast<uint8_t>(word >> (24 - 8 * byte));
}

}  // namespace

SequenceEntry sequenceEntry(const InputFile& file) {
    SequenceEntry entry;
    entry.name = printable(fromPath(toPath(file.path).filename()));
    if (file.type != FileType::icc) return entry;
    const PreciseProfile profile(file);
    const IccInput icc(file);
    entry.manufacturer = icc.header().manufacturer;
    entry.model = icc.header().model;
    for (size_t at = 0; at < 2; ++at) entry.attributes[at] = icc.header().attributes[at];
    if (profile.info().name[0]) entry.name = printable(profile.info().name);
    entry.id = hex(profile.info().id);
    return entry;
}

std::vector<uint8_t> finished(std::span<const uint8_t> link, const CmykProfile& profile, const Finish& finish) {
    std::vector<uint8_t> bytes;
    bytes.reserve(link.size() + (size_t{1} << 16));  // texts are short beside the grid
    bytes.assign(link.begin(), link.begin() + 128);  // the header
    ByteWriter out(bytes);
    constexpr uint32_t kOwn[] = {fourcc("desc"), fourcc("cprt"), fourcc("pseq"), fourcc("kprv"), fourcc("A2B0")};
    out.u32(std::size(kOwn));
    out.zeros(12 * std::size(kOwn));
    const auto elementOf = [&](uint32_t signature) {
        ByteReader in(link.subspan(128));
        for (uint32_t count = in.u32(); count > 0 && in.ok(); --count) {
            const uint32_t found = in.u32(), offset = in.u32(), size = in.u32();
            if (found == signature && offset <= link.size() && size <= link.size() - offset)
                return link.subspan(offset, size);
        }
        return std::span<const uint8_t>();
    };
    size_t entry = 132;
    for (const uint32_t signature : kOwn) {
        out.alignTo4();
        const auto start = static_cast<uint32_t>(bytes.size());
        if (signature == fourcc("desc")) {
            precise::putDescription(out, cmyk::buildDescription(profile), finish.name);
        } else if (signature == fourcc("pseq")) {
            out.u32(fourcc("pseq"));
            out.u32(0);
            out.u32(static_cast<uint32_t>(finish.sequence.size()));
            for (const SequenceEntry& one : finish.sequence) {
                for (const uint32_t word : {one.manufacturer, one.model, one.attributes[0], one.attributes[1], 0u})
                    out.u32(word);  // the last one, the technology, is not known
                precise::putDescription(out, "", "");
                std::string ascii = one.name;
                std::replace_if(ascii.begin(), ascii.end(), [](char c) { return c < 32 || c > 126; }, '?');
                precise::putDescription(out, ascii, "");
            }
        } else if (signature == fourcc("kprv")) {
            putText(out, "KoLink\n" + finish.provenance);
        } else {
            out.append(elementOf(signature));
        }
        for (const uint32_t word : {signature, start, static_cast<uint32_t>(bytes.size()) - start}) {
            putWord(bytes, entry, word);
            entry += 4;
        }
    }
    out.alignTo4();
    putWord(bytes, 0, static_cast<uint32_t>(bytes.size()));
    putWord(bytes, 64, finish.intent);
    return bytes;
}

}  // namespace ko::cli
