#include "precise/link_file.h"

#include <algorithm>
#include <chrono>

#include "cmyk/cmyk.h"
#include "cmyk/description.h"
#include "frame/bytes.h"

namespace ko::precise {
namespace {

constexpr uint32_t kVersion = 0x02400000;

std::u16string utf16Of(const std::string& text) {
    std::u16string units;
    for (size_t at = 0; at < text.size();) {
        const auto first = static_cast<uint8_t>(text[at++]);
        int more = first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : first >= 0xc0 ? 1 : 0;
        uint32_t point = more == 3 ? first & 7u : more == 2 ? first & 15u : more == 1 ? first & 31u : first;
        for (; more > 0 && at < text.size(); --more)
            point = point << 6 | (static_cast<uint8_t>(text[at++]) & 63u);
        if (point >= 0x10000) {
            units += static_cast<char16_t>(0xd800 + ((point - 0x10000) >> 10 & 1023));
            units += static_cast<char16_t>(0xdc00 + (point & 1023));
        } else {
            units += static_cast<char16_t>(point);
        }
    }
    return units;
}

std::string asciiOf(const std::string& text) {
    std::string ascii;
    for (const char c : text)
        if (static_cast<signed char>(c) >= 32) ascii += c;
        else if ((static_cast<uint8_t>(c) & 0xc0) == 0xc0) ascii += '?';
    return ascii;
}

std::string number(double value) {  // at most one digit behind the point
    const auto tenths = static_cast<long long>(value * 10 + 0.5);
    std::string text = std::to_string(tenths / 10);
    if (tenths % 10) text += "." + std::to_string(tenths % 10);
    return text;
}

std::string nameOf(const Link::Origin& origin) {
    return origin.name.empty() ? "a profile without a name" : origin.name;
}

std::string hex(const std::array<uint8_t, 16>& id) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : id) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

}  // namespace

void putDescription(ByteWriter& out, const std::string& ascii, const std::string& readable) {
    out.u32(fourcc("desc"));
    out.u32(0);
    out.u32(static_cast<uint32_t>(ascii.size() + 1));
    out.append(std::string_view(ascii));
    out.u8(0);
    out.u32(readable.empty() ? 0 : 'e' << 24 | 'n' << 16 | 'U' << 8 | 'S');
    const std::u16string units = utf16Of(readable);
    out.u32(readable.empty() ? 0 : static_cast<uint32_t>(units.size() + 1));
    for (const char16_t unit : units) out.u16(unit);
    if (!readable.empty()) out.u16(0);
    const std::string script = asciiOf(readable).substr(0, 66);
    out.u16(0);
    out.u8(static_cast<uint8_t>(script.empty() ? 0 : script.size() + 1));
    out.append(std::string_view(script));
    out.zeros(67 - script.size());
}

std::string provenanceOf(const Link& link) {
    constexpr const char* kIntents[] = {"perceptual", "relative", "saturation", "absolute"};
    constexpr const char* kBlacks[] = {"", "plane", "match", "keep", "none", "curve"};
    constexpr const char* kPreserves[] = {"none", "primaries", "secondaries", "duplex", "triplex"};
    const LinkOptions& o = link.options;
    std::string text;
    const auto line = [&](const char* key, const std::string& value) {
        text += std::string(key) + ": " + asciiOf(value) + "\n";
    };
    if (link.origins.size() == 2) {
        line("source", nameOf(link.origins[0]));
        line("source-id", hex(link.origins[0].id));
        line("destination", nameOf(link.origins[1]));
        line("destination-id", hex(link.origins[1].id));
    }
    line("method", link.report.inverted ? "precise" : "tables");
    line("intent", kIntents[static_cast<size_t>(link.intent)]);
    line("bpc", o.compensateBlack ? "yes" : "no");
    if (link.destinationSpace == fourcc("CMYK")) {
        line("black", kBlacks[static_cast<size_t>(link.report.black)]);
        line("preserve", kPreserves[static_cast<size_t>(o.preserve)]);
        line("ink-limit", number(link.report.inkLimit * 100));
        line("save-ink", number(o.saveInk));
        line("clip", number(o.clip));
    }
    line("bits", std::to_string(link.bits));
    line("grid", std::to_string(link.gridPoints));
    line("nodes", link.nodes == Nodes::even ? "even" : "library");
    return text;
}

LinkFileParts linkFileParts(const Link& link, const LinkFileOptions& options, Problem& problem) {
    if (options.editable && (link.bits != 8 || link.gridPoints != cmyk::kGridPoints ||
                             link.inputs != 4 || link.outputs != 4)) {
        problem.set(Trouble::argument,
                    "editing data goes with 33 points and 8 bits from CMYK to CMYK only");
        return {};
    }
    std::string name = options.name;
    if (name.empty() && link.origins.size() == 2)
        name = nameOf(link.origins[0]) + " to " + nameOf(link.origins[1]);

    LinkFileParts file;
    file.table = link.table;
    std::vector<uint8_t>& bytes = file.around;
    ByteWriter out(bytes);
    constexpr int kTags = 5;
    out.zeros(128 + 4 + 12 * kTags);
    struct Entry {
        uint32_t signature, offset, size;
    };
    std::vector<Entry> directory;
    const auto begin = [&](uint32_t signature) {
        out.alignTo4();
        directory.push_back({signature, static_cast<uint32_t>(bytes.size()), 0});
    };
    const auto end = [&] {
        directory.back().size = static_cast<uint32_t>(bytes.size()) - directory.back().offset;
    };
    const auto text = [&](const std::string& content) {
        out.u32(fourcc("text"));
        out.u32(0);
        out.append(std::string_view(content));
        out.u8(0);
    };

    begin(fourcc("desc"));
    putDescription(out, options.editable ? cmyk::buildDescription(options.editName, options.editComment)
                                         : asciiOf(name), name);
    end();
    begin(fourcc("cprt"));
    text("The owner of the profile holds the copyright.");
    end();
    begin(fourcc("pseq"));
    out.u32(fourcc("pseq"));
    out.u32(0);
    out.u32(static_cast<uint32_t>(link.origins.size()));
    for (const Link::Origin& origin : link.origins) {
        out.u32(origin.manufacturer);
        out.u32(origin.model);
        out.u32(static_cast<uint32_t>(origin.attributes >> 32));
        out.u32(static_cast<uint32_t>(origin.attributes));
        out.u32(0);  // technology, which the header does not tell
        putDescription(out, "", "");
        putDescription(out, asciiOf(nameOf(origin)), "");
    }
    end();
    begin(fourcc("kprv"));
    text("KoLink\n" + provenanceOf(link) + options.provenance);
    end();

    begin(fourcc("A2B0"));
    out.u32(link.bits == 8 ? fourcc("mft1") : fourcc("mft2"));
    out.u32(0);
    out.u8(static_cast<uint8_t>(link.inputs));
    out.u8(static_cast<uint8_t>(link.outputs));
    out.u8(static_cast<uint8_t>(link.gridPoints));
    out.u8(0);
    for (int at = 0; at < 9; ++at) out.u32(at % 4 == 0 ? 0x10000 : 0);
    if (link.bits == 8) {
        for (int ch = 0; ch < link.inputs; ++ch)
            for (int at = 0; at < 256; ++at) out.u8(static_cast<uint8_t>(at));
    } else {
        out.u16(256);
        out.u16(2);
        for (int ch = 0; ch < link.inputs; ++ch)
            for (int at = 0; at < 256; ++at)
                out.u16(static_cast<uint16_t>(link.position(at / 255.0) * 65535 + 0.5));
    }
    file.tableAt = bytes.size();
    for (int ch = 0; ch < link.outputs; ++ch) {
        if (link.bits == 8) {
            for (int at = 0; at < 256; ++at) out.u8(static_cast<uint8_t>(at));
        } else {
            out.u16(0);
            out.u16(65535);
        }
    }
    end();
    directory.back().size += static_cast<uint32_t>(file.table.size());
    while (file.size() % 4 != 0) out.u8(0);

    // The header, now that the size is known.
    std::vector<uint8_t> head;
    ByteWriter header(head);
    header.u32(static_cast<uint32_t>(file.size()));
    header.u32(0);
    header.u32(kVersion);
    header.u32(fourcc("link"));
    header.u32(link.sourceSpace);
    header.u32(link.destinationSpace);
    using namespace std::chrono;
    const sys_seconds moment{seconds(std::clamp<int64_t>(options.date, 0, 253402300799))};
    const auto day = floor<days>(moment);
    const year_month_day date(day);
    const hh_mm_ss time(moment - day);
    header.u16(static_cast<uint16_t>(static_cast<int>(date.year())));
    header.u16(static_cast<uint16_t>(static_cast<unsigned>(date.month())));
    header.u16(static_cast<uint16_t>(static_cast<unsigned>(date.day())));
    header.u16(static_cast<uint16_t>(time.hours().count()));
    header.u16(static_cast<uint16_t>(time.minutes().count()));
    header.u16(static_cast<uint16_t>(time.seconds().count()));
    header.u32(fourcc("acsp"));
    header.zeros(24);  // platform, flags, manufacturer, model, attributes
    header.u32(static_cast<uint32_t>(link.intent));
    header.u32(0xf6d6);  // D50
    header.u32(0x10000);
    header.u32(0xd32d);
    header.zeros(128 - head.size());
    header.u32(static_cast<uint32_t>(directory.size()));
    for (const Entry& entry : directory) {
        header.u32(entry.signature);
        header.u32(entry.offset);
        header.u32(entry.size);
    }
    std::copy(head.begin(), head.end(), bytes.begin());
    return file;
}

std::vector<uint8_t> linkFile(const Link& link, const LinkFileOptions& options, Problem& problem) {
    const LinkFileParts file = linkFileParts(link, options, problem);
    std::vector<uint8_t> bytes;
    bytes.reserve(file.size());
    for (const auto part : file.inOrder()) bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

}  // namespace ko::precise
