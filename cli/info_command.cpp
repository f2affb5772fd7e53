// kolink info: what a file is and what it holds.
#include <algorithm>
#include <cstring>
#include <map>
#include <memory>

#include "cli/arguments.h"
#include "cli/calib.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/icc_input.h"
#include "cli/precise.h"
#include "cli/report.h"
#include "cli/system.h"
#include "cli/table_file.h"
#include "cmyk/cmyk.h"
#include "cmyk/description.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink info proof.icc\n"
    "  kolink info --json press.bkc | jq .curves\n";

// A hostile file may claim millions of tags and texts of megabytes.
constexpr int32_t kMostTags = 200;
constexpr size_t kMostCharacters = 2000, kMostLines = 100;

constexpr const char* kInks[] = {"C", "M", "Y", "K"};

std::string date(const uint16_t (&parts)[6]) {
    const auto two = [](unsigned value) { return (value < 10 ? "0" : "") + std::to_string(value); };
    return std::to_string(parts[0]) + '-' + two(parts[1]) + '-' + two(parts[2]) + ' ' + two(parts[3]) +
           ':' + two(parts[4]) + ':' + two(parts[5]);
}

Json signatureReport(uint32_t signature) {
    return signature ? Json(signatureText(signature)) : Json(nullptr);
}

Json headerReport(const IccHeader& header) {
    static const std::map<uint32_t, const char*> kClasses = {
        {fourcc("scnr"), "input device"},  {fourcc("mntr"), "display device"},
        {fourcc("prtr"), "output device"}, {fourcc("link"), "device link"},
        {fourcc("spac"), "colour space"},  {fourcc("abst"), "abstract"},
        {fourcc("nmcl"), "named colours"},
    };
    static constexpr const char* kIntents[] = {"perceptual", "relative", "saturation", "absolute"};
    const auto known = kClasses.find(header.deviceClass);
    Json report;
    report["size"] = header.profileSize;
    report["version"] = std::to_string(header.version >> 24) + '.' + std::to_string(header.version >> 20 & 15) +
                        '.' + std::to_string(header.version >> 16 & 15);
    report["class"] = signatureReport(header.deviceClass);
    report["classMeaning"] = known == kClasses.end() ? "unknown" : known->second;
    report["colourSpace"] = signatureReport(header.colourSpace);
    report["connectionSpace"] = signatureReport(header.connectionSpace);
    report["created"] = date(header.dateTime);
    report["cmm"] = signatureReport(header.cmmType);
    report["platform"] = signatureReport(header.platform);
    report["flags"] = header.profileFlags;
    report["manufacturer"] = signatureReport(header.manufacturer);
    report["model"] = signatureReport(header.model);
    report["attributes"] = {header.attributes[0], header.attributes[1]};
    report["intent"] = header.renderingIntent < 4 ? Json(kIntents[header.renderingIntent])
                                                  : Json(header.renderingIntent);
    for (const int32_t part : header.illuminant) report["illuminant"].push_back(part / 65536.0);
    report["creator"] = signatureReport(header.creator);
    return report;
}

Json pointsOf(const CmykProfile& profile, int32_t curve) {
    Json points = Json::array();
    const cmyk::ControlPoints control = cmyk::controlPoints(profile, curve);
    for (int32_t at = 0; at < control.count; ++at)
        points.push_back({control.points[at].x, control.points[at].y});
    return points;
}

// What the grid does to the colours that matter first.
void addGridFacts(Json& report, const CmykProfile& profile) {
    uint32_t most = 0;
    uint8_t highest[4] = {};
    bool isIdentity = true;
    int32_t node = 0;
    for (int32_t c = 0; c < cmyk::kGridPoints; ++c)
        for (int32_t m = 0; m < cmyk::kGridPoints; ++m)
            for (int32_t y = 0; y < cmyk::kGridPoints; ++y)
                for (int32_t k = 0; k < cmyk::kGridPoints; ++k, ++node) {
                    const uint32_t word = profile.grid[node];
                    const auto level = [](int32_t index) {
                        return static_cast<uint32_t>(cmyk::nodeValue(index));
                    };
                    isIdentity = isIdentity && word == packCmyk(level(c), level(m), level(y), level(k));
                    uint32_t sum = 0;
                    for (int ink = 0; ink < 4; ++ink) {
                        const auto value = static_cast<uint8_t>(word >> (24 - 8 * ink));
                        highest[ink] = std::max(highest[ink], value);
                        sum += value;
                    }
                    most = std::max(most, sum);
                }
    const auto levels = [&](uint32_t index) {
        Json list;
        for (int shift = 24; shift >= 0; shift -= 8) list.push_back(profile.grid[index] >> shift & 255);
        return list;
    };
    uint32_t others = 0;  // ink beside K along the black axis
    for (int32_t k = 0; k < cmyk::kGridPoints; ++k) others |= profile.grid[k] >> 8;
    report["gridPoints"] = KOLINK_CMYK_GRID_POINTS;
    report["nodes"] = KOLINK_CMYK_NODES;
    report["identityGrid"] = isIdentity;
    report["whiteNode"] = levels(0);
    report["blackNode"] = levels(32);
    report["pureBlackStaysPure"] = others == 0;
    report["highestLevels"] = {highest[0], highest[1], highest[2], highest[3]};
    report["highestCoveragePercent"] = static_cast<double>(most * 1000 / 255) / 10;
}

// The library's own editing data behind its marker.
Json editingReport(const IccInput& icc) {
    const CmykProfilePtr profile = cmykProfile(icc);
    Json report;
    report["name"] = fieldText(profile->name);
    report["comment"] = fieldText(profile->comment);
    addGridFacts(report, *profile);
    report["curves"] = Json::array();
    for (int curve = 0; curve < 8; ++curve)
        report["curves"].push_back({{"curve", std::string(curve < 4 ? "input " : "output ") + kInks[curve % 4]},
                                    {"controlPoints", pointsOf(*profile, curve)}});
    return report;
}

bool tablesAreIdentity(const IccLut& lut) {
    const auto straight = [&](const void* tables, int32_t channels, int32_t entries) {
        for (int64_t i = 0; i < static_cast<int64_t>(channels) * entries; ++i) {
            const int64_t entry = i % entries;
            const int64_t full = lut.precision == 1 ? 255 : 65535;
            const int64_t value = lut.precision == 1 ? static_cast<const uint8_t*>(tables)[i]
                                                     : static_cast<const uint16_t*>(tables)[i];
            if (entries < 2 || std::abs(value * (entries - 1) - entry * full) > entries / 2) return false;
        }
        return true;
    };
    return straight(lut.inputTables, lut.inputChannels, lut.inputEntries) &&
           straight(lut.outputTables, lut.outputChannels, lut.outputEntries);
}

void describeLut(Json& row, const IccLut& lut, const IccTagEntry& entry, const InputFile& file) {
    // By value: the record is packed, and no reference may point into it.
    row["inputs"] = int32_t{lut.inputChannels};
    row["outputs"] = int32_t{lut.outputChannels};
    row["gridPoints"] = int32_t{lut.gridPoints};
    row["bits"] = lut.precision * 8;
    row["inputEntries"] = int32_t{lut.inputEntries};
    row["outputEntries"] = int32_t{lut.outputEntries};
    row["straightTables"] = tablesAreIdentity(lut);
    if (isCutShort(file, entry, lut)) row["note"] = "cut short by the end of the file";
}

// One row for a tag and, for what the library decodes, its contents.
void addTag(Json& report, const IccInput& icc, const IccTagEntry& entry, bool isFirst) {
    const uint32_t type = icc.elementType(entry);
    const std::string signature = signatureText(entry.signature);
    Json row = {{"signature", signature}, {"type", type ? signatureText(type) : "?"},
                {"offset", entry.offset}, {"size", entry.size}};
    const uint64_t end = uint64_t{entry.offset} + entry.size;
    if (end > icc.file().size) row["note"] = "reaches beyond the end of the file";
    report["tags"].push_back(row);
    if (!isFirst) return;

    switch (type) {
        case fourcc("mft1"):
        case fourcc("mft2"):
            if (const auto* lut = icc.tag<const IccLut>(entry.signature)) {
                Json table = {{"tag", signature}};
                describeLut(table, *lut, entry, icc.file());
                report["tables"].push_back(table);
            }
            break;
        case fourcc("desc"):
        case fourcc("text"):
            if (const auto* text = icc.tag<const char>(entry.signature))
                report["texts"][signature] = cutTo(fromForeignText(text), kMostCharacters);
            break;
        case fourcc("XYZ "):
            if (const auto* xyz = icc.tag<const float>(entry.signature))
                report["colours"][signature] = {xyz[0], xyz[1], xyz[2]};
            break;
        case fourcc("curv"):
            if (const auto* curve = icc.tag<const IccCurve>(entry.signature)) {
                Json row2 = {{"tag", signature}, {"entries", curve->count}};
                row2["meaning"] = curve->count == 0   ? "identity"
                                  : curve->count == 1 ? "gamma " + number(curve->entries[0] / 256.0, 4)
                                                      : "sampled";
                report["toneCurves"].push_back(row2);
            }
            break;
        default: break;
    }
}

// What a link of this tool says of how it was made: the lines "key: value".
void addProvenance(Json& report, const IccInput& icc) {
    const std::string text = provenanceOf(icc);
    for (size_t at = 0, lines = 0; at < text.size() && lines < kMostLines; ++lines) {
        const size_t end = std::min(text.find('\n', at), text.size()), colon = text.find(": ", at);
        if (colon < end) report["provenance"][text.substr(at, colon - at)] = text.substr(colon + 2, end - colon - 2);
        at = end + 1;
    }
}

Json iccReport(const InputFile& file) {
    const IccInput icc(file);
    Json report;
    report["header"] = headerReport(icc.header());
    if (icc.header().profileSize != file.size)
        report["header"]["note"] = "the size field differs from the file's size";
    const int32_t count = icc.profile().tagCount;
    report["tagCount"] = count;
    report["tags"] = Json::array();
    for (int32_t i = 0; i < std::min(count, kMostTags); ++i) {
        const IccTagEntry& entry = icc.profile().tags[i];
        addTag(report, icc, entry, icc.find(entry.signature) == &entry);
    }
    if (count > kMostTags) report["tagsNotListed"] = count - kMostTags;
    addProvenance(report, icc);
    const auto& texts = report["texts"];
    const auto description = texts.is_object() ? texts.find("desc") : texts.end();
    if (texts.is_null()) report.erase("texts");
    else if (description != texts.end() && cmyk::holdsEditingData(description->get<std::string>()) && icc.find(fourcc("A2B0"))) {
        report["texts"].erase("desc");  // the editing data says it in words
        report["editingData"] = editingReport(icc);
    }
    return report;
}

Json tableReport(const InputFile& file) {
    const CmykProfilePtr profile = cmykProfile(file);
    Json report;
    report["name"] = fieldText(profile->name);
    report["comment"] = fieldText(profile->comment);
    const uint64_t wanted = wholeTableBytes(file.type);
    if (file.size < wanted)
        report["note"] = "cut short: " + grouped(file.size) + " of " + grouped(wanted) + " bytes; the rest counts as 0";
    addGridFacts(report, *profile);
    return report;
}

Json curvesReport(const ToneCurve& curve, const std::vector<const char*>& channels) {
    Json list = Json::array();
    for (size_t channel = 0; channel < channels.size(); ++channel) {
        Json points = Json::array();
        const auto flags = tone::flagsOf(curve, static_cast<int32_t>(channel));
        const auto values = tone::valuesOf(curve, static_cast<int32_t>(channel));
        for (size_t x = 0; x < flags.size(); ++x)
            if (flags[x]) points.push_back({x, values[x]});
        list.push_back({{"curve", channels[channel]}, {"controlPoints", points}});
    }
    return list;
}

Json toneReport(const InputFile& file) {
    Json report;
    if (file.type == FileType::blackCurve) {
        const ToneCurvePtr curve = newToneCurve(1);
        tone::readBkcCurve(*curve, file.text());
        report["title"] = fieldText(curve->title);
        if (!hasLineBeginning(file, "TONE  ")) report["note"] = "holds no TONE line";
        report["curves"] = curvesReport(*curve, {"K"});
    } else if (file.type == FileType::cmykToneCurve) {
        const ToneCurvePtr curve = newToneCurve(4);
        tone::readCmykToneCurve(*curve, file.text());
        if (!hasLineBeginning(file, "TONE ")) report["note"] = "holds no TONE line";
        report["curves"] = curvesReport(*curve, {"C", "M", "Y", "K"});
    } else {
        const ToneCurvePtr curve = newToneCurve(6);
        DccSettings settings{};
        settings.curves = curve.get();
        tone::readDcc(settings, file.text());
        report["printer"] = fieldText(curve->title);
        report["resolution"] = {settings.DPIX, settings.DPIY};
        report["totalInk"] = settings.WINK;
        report["totalInkPercent"] = static_cast<double>(settings.WINK * int64_t{1000} / 255) / 10;
        report["lightInkDensityPercent"] = settings.LCLM;
        if (!hasLineBeginning(file, "TONE ")) report["note"] = "holds no TONE line";
        report["curves"] = curvesReport(*curve, {"C", "M", "Y", "K", "GCR", "UCR"});
    }
    return report;
}

Json colourTableReport(const InputFile& file) {
    const Table table = loadTable(file, std::nullopt);
    Json report;
    report["converts"] = table.cmyk ? "CMYK to CMYK" : "RGB to RGB";
    report["form"] = table.isText ? "text" : "binary";
    report["gridPoints"] = 17;
    if (!table.isText) return report;
    const TableReport text = checkTableText(file, table);
    report["nodes"] = text.nodes;
    report["nodesGiven"] = text.nodesGiven;
    report["oddLines"] = text.warnings.size() + text.moreWarnings;
    return report;
}

Json infoReport(const std::string& path) {
    const InputFile file = openInput(path);
    Json report = {{"file", wellFormed(path)}};
    const auto with = [&](const char* kind, const Json& more) {
        report["kind"] = kind;
        report["fileSize"] = file.size;
        report.update(more);
        return report;
    };
    switch (file.type) {
        case FileType::icc: return with("ICC profile", iccReport(file));
        case FileType::cmykTable: return with("CMYK table (.lut)", tableReport(file));
        case FileType::amatchTable: return with("CMYK table (.amt)", tableReport(file));
        case FileType::blackCurve: return with("black-correction curve (.bkc)", toneReport(file));
        case FileType::cmykToneCurve: return with("CMYK tone curves (.tnc)", toneReport(file));
        case FileType::dcc: return with("DCC settings (.dcc)", toneReport(file));
        case FileType::calibration: return with("calibration set (.clb)", calibReport(*loadCalib(file)));
        case FileType::foreign: break;
    }
    if (isTable(file)) return with("colour table", colourTableReport(file));
    failOn(path, "is no ICC file and no colour table, and its extension is none of .lut, .amt, .bkc, .tnc, .dcc, .clb");
}

}  // namespace

void addInfoCommand(Command& app) {
    struct Options {
        std::string file;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    Command command = app.command("info", "Show what a profile, table or curve file holds");
    command.examples(kExamples);
    command.option("file", options->file, "An ICC profile, a table, a .lut, .amt, .bkc, .tnc, .dcc or .clb file")
        .called("FILE").required();
    command.flag("--json", options->json, "JSON for programs");
    command.does([options] {
        const Json report = infoReport(options->file);
        writeOut(options->json ? toJson(report) : toLines(report));
    });
}

}  // namespace ko::cli
