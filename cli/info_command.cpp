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
#include "cli/report.h"
#include "cli/system.h"
#include "cli/table_file.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink info proof.icc\n"
    "  kolink info --json press.bkc | jq .curves\n";

// A hostile file may claim millions of tags and texts of megabytes.
constexpr int32_t kMostTags = 200;
constexpr size_t kMostCharacters = 2000;

constexpr const char* kInks[] = {"C", "M", "Y", "K"};

std::string fieldText(const char* field, size_t size) {
    return system::fromShiftJis(std::string_view(field, strnlen(field, size)));
}

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
        {signatureOf("scnr"), "input device"},  {signatureOf("mntr"), "display device"},
        {signatureOf("prtr"), "output device"}, {signatureOf("link"), "device link"},
        {signatureOf("spac"), "colour space"},  {signatureOf("abst"), "abstract"},
        {signatureOf("nmcl"), "named colours"},
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

Json pointsOf(const uint8_t (&values)[65], const uint8_t (&flags)[65]) {
    Json points = Json::array();
    for (int j = 0; j < 65; ++j)
        if (flags[j]) points.push_back({4 * j - j / 64, values[j]});
    return points;
}

// What the grid does to the colours that matter first.
void addGridFacts(Json& report, const CmykProfile& profile) {
    uint32_t most = 0;
    uint8_t highest[4] = {};
    bool isIdentity = true;
    uint32_t node = 0;
    for (uint32_t c = 0; c < 33; ++c)
        for (uint32_t m = 0; m < 33; ++m)
            for (uint32_t y = 0; y < 33; ++y)
                for (uint32_t k = 0; k < 33; ++k, ++node) {
                    const uint32_t word = profile.grid[node];
                    const auto level = [](uint32_t index) { return 8 * index - index / 32; };
                    isIdentity = isIdentity && word == (level(c) << 24 | level(m) << 16 | level(y) << 8 | level(k));
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
    for (uint32_t k = 0; k < 33; ++k) others |= profile.grid[k] >> 8;
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
Json editingReport(const InputFile& file) {
    const CmykProfilePtr profile = newCmykProfile();
    if (jKoCmykLoadProfile(profile.get(), file.libraryPath.c_str()) != 1) failOn(file.path, "cannot be loaded");
    Json report;
    report["name"] = fieldText(profile->name, sizeof profile->name);
    report["comment"] = fieldText(profile->comment, sizeof profile->comment);
    addGridFacts(report, *profile);
    report["curves"] = Json::array();
    for (int curve = 0; curve < 8; ++curve)
        report["curves"].push_back({{"curve", std::string(curve < 4 ? "input " : "output ") + kInks[curve % 4]},
                                    {"controlPoints", pointsOf(profile->curveValues[curve], profile->curveFlags[curve])}});
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
    uint64_t entries = static_cast<uint64_t>(lut.outputChannels);
    for (int32_t axis = 0; axis < lut.inputChannels && entries <= file.size * 2; ++axis)
        entries *= static_cast<uint64_t>(lut.gridPoints);
    const bool isWhole = entry.offset + entries * lut.precision <= file.size;
    row["straightTables"] = tablesAreIdentity(lut);
    if (!isWhole) row["note"] = "cut short by the end of the file";
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

    const auto loaded = [&]() { return jIccLoadTag(icc.profile(), entry.signature); };
    switch (type) {
        case signatureOf("mft1"):
        case signatureOf("mft2"):
            if (const auto* lut = static_cast<const IccLut*>(loaded())) {
                Json table = {{"tag", signature}};
                describeLut(table, *lut, entry, icc.file());
                report["tables"].push_back(table);
            }
            break;
        case signatureOf("desc"):
        case signatureOf("text"):
            if (const auto* text = static_cast<const char*>(loaded()))
                report["texts"][signature] = cutTo(fromForeignText(text), kMostCharacters);
            break;
        case signatureOf("XYZ "):
            if (const auto* xyz = static_cast<const float*>(loaded()))
                report["colours"][signature] = {xyz[0], xyz[1], xyz[2]};
            break;
        case signatureOf("curv"):
            if (const auto* curve = static_cast<const IccCurve*>(loaded())) {
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

bool isOwn(const std::string& description) {
    return description.starts_with("_KOLINK_10J") || description.starts_with("_NQCMS_IJP10J");
}

Json iccReport(const InputFile& file) {
    const IccInput icc(file);
    Json report;
    report["header"] = headerReport(icc.header());
    if (icc.header().profileSize != file.size)
        report["header"]["note"] = "the size field differs from the file's size";
    const int32_t count = icc.profile()->tagCount;
    report["tagCount"] = count;
    report["tags"] = Json::array();
    for (int32_t i = 0; i < std::min(count, kMostTags); ++i) {
        const IccTagEntry& entry = icc.profile()->tags[i];
        addTag(report, icc, entry, icc.find(entry.signature) == &entry);
    }
    if (count > kMostTags) report["tagsNotListed"] = count - kMostTags;
    const auto& texts = report["texts"];
    const auto description = texts.is_object() ? texts.find("desc") : texts.end();
    if (texts.is_null()) report.erase("texts");
    else if (description != texts.end() && isOwn(description->get<std::string>()) && icc.find(signatureOf("A2B0"))) {
        report["texts"].erase("desc");  // the editing data says it in words
        report["editingData"] = editingReport(file);
    }
    return report;
}

Json tableReport(const InputFile& file) {
    const CmykProfilePtr profile = newCmykProfile();
    if (jKoCmykLoadProfile(profile.get(), file.libraryPath.c_str()) != 1) failOn(file.path, "cannot be loaded");
    Json report;
    report["name"] = fieldText(profile->name, sizeof profile->name);
    report["comment"] = fieldText(profile->comment, sizeof profile->comment);
    const uint64_t wanted = tableHeaderBytes(file.kind) + kTableBytes;
    if (file.size < wanted)
        report["note"] = "cut short: " + grouped(file.size) + " of " + grouped(wanted) + " bytes; the rest counts as 0";
    addGridFacts(report, *profile);
    return report;
}

Json curvesReport(const ToneCurve& curve, const std::vector<const char*>& channels) {
    Json list = Json::array();
    for (size_t channel = 0; channel < channels.size(); ++channel) {
        Json points = Json::array();
        const int16_t* flags = curve.table + channel * 512;
        for (int x = 0; x < 256; ++x)
            if (flags[x]) points.push_back({x, flags[256 + x]});
        list.push_back({{"curve", channels[channel]}, {"controlPoints", points}});
    }
    return list;
}

Json toneReport(const InputFile& file) {
    Json report;
    const char* path = file.libraryPath.c_str();
    bool loaded = false;
    if (file.kind == FileKind::blackCurve) {
        const ToneCurvePtr curve = newToneCurve(1);
        loaded = jKoToneLoadBkcCurve(curve.get(), path) == 1;
        report["title"] = fieldText(curve->title, sizeof curve->title);
        if (!hasLineBeginning(file, "TONE  ")) report["note"] = "holds no TONE line";
        report["curves"] = curvesReport(*curve, {"K"});
    } else if (file.kind == FileKind::cmykToneCurve) {
        const ToneCurvePtr curve = newToneCurve(4);
        loaded = jKoToneLoadCmykToneCurve(curve.get(), path) == 1;
        if (!hasLineBeginning(file, "TONE ")) report["note"] = "holds no TONE line";
        report["curves"] = curvesReport(*curve, {"C", "M", "Y", "K"});
    } else {
        const ToneCurvePtr curve = newToneCurve(6);
        DccSettings settings{};
        settings.curves = curve.get();
        loaded = jKoToneLoadDcc(&settings, path) == 1;
        report["printer"] = fieldText(curve->title, sizeof curve->title);
        report["resolution"] = {settings.DPIX, settings.DPIY};
        report["totalInk"] = settings.WINK;
        report["totalInkPercent"] = static_cast<double>(settings.WINK * int64_t{1000} / 255) / 10;
        report["lightInkDensityPercent"] = settings.LCLM;
        if (!hasLineBeginning(file, "TONE ")) report["note"] = "holds no TONE line";
        report["curves"] = curvesReport(*curve, {"C", "M", "Y", "K", "GCR", "UCR"});
    }
    if (!loaded) failOn(file.path, "cannot be loaded");
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
    switch (file.kind) {
        case FileKind::icc: return with("ICC profile", iccReport(file));
        case FileKind::cmykTable: return with("CMYK table (.lut)", tableReport(file));
        case FileKind::amatchTable: return with("CMYK table (.amt)", tableReport(file));
        case FileKind::blackCurve: return with("black-correction curve (.bkc)", toneReport(file));
        case FileKind::cmykToneCurve: return with("CMYK tone curves (.tnc)", toneReport(file));
        case FileKind::dcc: return with("DCC settings (.dcc)", toneReport(file));
        case FileKind::calibration: return with("calibration set (.clb)", calibReport(*loadCalib(file)));
        case FileKind::foreign: break;
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
