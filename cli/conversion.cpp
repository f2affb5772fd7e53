#include "cli/conversion.h"

#include <algorithm>
#include <array>

#include "cli/arguments.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/icc_input.h"
#include "cli/table_file.h"
#include "link/link.h"

namespace ko::cli {
namespace {

// Rows are handed on in portions that stay in the cache.
constexpr int32_t kPortion = 1024;

class LinkConversion final : public Conversion {
public:
    LinkConversion(link::Link link, ColourSpace in, ColourSpace out) : link_(std::move(link)) {
        input = in;
        output = out;
    }
    void convert(const uint8_t* in, int32_t pixels, uint16_t* out) override {
        if (output == ColourSpace::cmyk) return jKoLinkCOLtoCMYK16Row(link_.get(), in, pixels, out);
        // A link to RGB has a fourth value of 0 in every pixel.
        std::array<uint16_t, 4 * kPortion> four;
        for (; pixels > 0; pixels -= kPortion) {
            const int32_t count = std::min(pixels, kPortion);
            jKoLinkCOLtoCMYK16Row(link_.get(), in, count, four.data());
            in += count * channelsOf(input);
            for (int32_t pixel = 0; pixel < count; ++pixel, out += 3)
                std::copy_n(&four[static_cast<size_t>(pixel) * 4], 3, out);
        }
    }

private:
    link::Link link_;
};

// A saved link: its input curves, its grid, its output curves.
class ProfileConversion final : public Conversion {
public:
    explicit ProfileConversion(CmykProfilePtr profile) : profile_(std::move(profile)) {
        jKoCmykMakeCurveTables(profile_.get(), &tables_);
    }
    void convert(const uint8_t* in, int32_t pixels, uint16_t* out) override {
        jKoCmykLinkCMYKtoCMYK16Row(profile_.get(), &tables_, in, pixels, out);
    }

private:
    CmykProfilePtr profile_;
    CmykCurveTables tables_{};
};

class TableConversion final : public Conversion {
public:
    explicit TableConversion(Table table) : table_(std::move(table)) {
        input = output = table_.cmyk ? ColourSpace::cmyk : ColourSpace::rgb;
    }
    void convert(const uint8_t* in, int32_t pixels, uint16_t* out) override {
        if (table_.cmyk) jKoCmykLutCMYKtoCMYK16Row(table_.cmyk.get(), in, pixels, out);
        else jKoRgbRGBtoRGB16Row(table_.rgb.get(), in, pixels, out);
    }

private:
    Table table_;
};

// The tables of a coated press that the library carries.
class BuiltinConversion final : public Conversion {
public:
    explicit BuiltinConversion(ColourSpace from) {
        input = from;
        output = from == ColourSpace::rgb ? ColourSpace::cmyk : ColourSpace::rgb;
    }
    void convert(const uint8_t* in, int32_t pixels, uint16_t* out) override {
        std::array<uint8_t, 4 * kPortion> levels;
        const int outputs = channelsOf(output);
        for (; pixels > 0; pixels -= kPortion) {
            const int32_t count = std::min(pixels, kPortion);
            if (input == ColourSpace::rgb) jColorRGBtoCMYKRow(in, count, levels.data());
            else jColorCMYKtoRGBRow(in, count, levels.data());
            for (int32_t at = 0; at < count * outputs; ++at)
                *out++ = static_cast<uint16_t>(levels[static_cast<size_t>(at)] * 16);
            in += count * channelsOf(input);
        }
    }
};

// The grey ink of what another conversion gives, or of the colours themselves.
class GreyConversion final : public Conversion {
public:
    GreyConversion(std::unique_ptr<Conversion> colour, ColourSpace from) : colour_(std::move(colour)) {
        input = colour_ ? colour_->input : from;
        output = ColourSpace::grey;
        if (colour_) files = colour_->files;
    }
    void convert(const uint8_t* in, int32_t pixels, uint16_t* out) override {
        std::array<uint16_t, 4 * kPortion> converted;
        std::array<uint8_t, 4 * kPortion> levels;
        const ColourSpace space = colour_ ? colour_->output : input;
        const int channels = channelsOf(space);
        for (; pixels > 0; pixels -= kPortion) {
            const int32_t count = std::min(pixels, kPortion);
            const uint8_t* row = in;
            if (colour_) {
                colour_->convert(in, count, converted.data());
                for (size_t at = 0; at < static_cast<size_t>(count * channels); ++at)
                    levels[at] = static_cast<uint8_t>(std::min((converted[at] + 8) / 16, 255));
                row = levels.data();
            }
            for (int32_t pixel = 0; pixel < count; ++pixel, row += channels)
                *out++ = static_cast<uint16_t>(
                    16 * (space == ColourSpace::rgb ? jColorRGBtoGRAY(row[0], row[1], row[2])
                                                    : jColorCMYKtoGRAY(row[0], row[1], row[2], row[3])));
            in += count * channelsOf(input);
        }
    }

private:
    std::unique_ptr<Conversion> colour_;
};

ColourSpace spaceOf(const IccInput& profile, const char* role) {
    const uint32_t space = profile.header().colourSpace;
    if (space == fourcc("RGB ")) return ColourSpace::rgb;
    if (space == fourcc("CMYK")) return ColourSpace::cmyk;
    failOn(profile.file().path, "is a profile for " + signatureText(space) + " where RGB or CMYK is needed (" +
                                    role + ")");
}

CmykProfilePtr linkProfile(const InputFile& file) {
    if (file.type == FileType::cmykTable || file.type == FileType::amatchTable)
        return cmykProfile(file);
    if (file.type != FileType::icc)
        failOn(file.path, "is neither an ICC profile nor a .lut or .amt table");
    const IccInput profile(file);
    if (spaceOf(profile, "link") != ColourSpace::cmyk)
        failOn(file.path, "is a profile for RGB where a CMYK link is needed");
    const IccLut* lut = profile.lut(fourcc("A2B0"));
    if (lut->inputChannels != 4 || lut->outputChannels != 4)
        failOn(file.path, "its table A2B0 does not convert CMYK to CMYK: it is no link");
    return cmykProfile(profile);
}

int32_t intentOf(const std::string& word) {
    static constexpr const char* kWords[] = {"perceptual", "relative", "saturation", "absolute"};
    return static_cast<int32_t>(std::find(std::begin(kWords), std::end(kWords), word) - std::begin(kWords));
}

}  // namespace

const char* nameOf(ColourSpace space) {
    return space == ColourSpace::cmyk ? "CMYK" : space == ColourSpace::rgb ? "RGB" : "grey";
}

void ConversionOptions::addTo(Command& command) {
    command.option("--link", link_, "A saved CMYK link, or a .lut or .amt table").called("FILE");
    command.option("--table", table_, "A CMYK or RGB table file, text or binary").called("FILE");
    command.flag("--builtin", builtin_,
                     "The built-in tables of a coated press: RGB to CMYK, or CMYK to RGB");
    command.option("--source", source_, "The ICC profile of the colours, RGB or CMYK").called("FILE");
    command.option("--destination", destination_, "The ICC profile to convert to").called("FILE");
    command.option("--engine", engine_,
                       "With two profiles: own (to CMYK only; the default there), or system, the\n"
                       "system's colour management")
        .oneOf({"own", "system"});
    command.option("--intent", intent_, "With two profiles: the rendering intent; absolute needs --engine system")
        .oneOf({"perceptual", "relative", "saturation", "absolute"});
    command.option("--preserve", preserve_, "With --engine own: keep pure inks pure")
        .oneOf({"none", "primaries", "secondaries"});
    command.option("--white", white_, "With --engine own: what white gets; clean is no ink (the default)")
        .oneOf({"profile", "clean"});
    command.flag("--grey", grey_, "The amount of grey ink that comes out, 0 for white");
}

std::unique_ptr<Conversion> ConversionOptions::make(std::optional<ColourSpace> inputHint) const {
    const int ways = link_.has_value() + table_.has_value() + builtin_ + (source_ || destination_);
    if (ways > 1) throw UsageFailure("--link, --table, --builtin and --source exclude each other");
    if (ways == 0 && !grey_)
        throw UsageFailure("tell how to convert: --link, --table, --builtin, or --source and --destination");
    if (ways == 0) {
        if (!inputHint || *inputHint == ColourSpace::grey)
            throw UsageFailure("--grey alone needs colours of three (RGB) or four (CMYK) numbers");
        return std::make_unique<GreyConversion>(nullptr, *inputHint);
    }
    auto colour = makeColour(inputHint);
    if (!grey_) return colour;
    return std::make_unique<GreyConversion>(std::move(colour), ColourSpace::cmyk);
}

std::unique_ptr<Conversion> ConversionOptions::makeColour(std::optional<ColourSpace> inputHint) const {
    if (!source_ && !destination_ && (engine_ || intent_ || preserve_ || white_))
        throw UsageFailure("--engine, --intent, --preserve and --white need --source and --destination");
    if (builtin_) {
        if (!inputHint || *inputHint == ColourSpace::grey)
            throw UsageFailure("--builtin needs colours of three (RGB) or four (CMYK) numbers; "
                               "tell with --from which they are");
        return std::make_unique<BuiltinConversion>(*inputHint);
    }
    if (table_) {
        const InputFile file = openInput(*table_);
        auto conversion = std::make_unique<TableConversion>(loadTable(file, std::nullopt));
        conversion->files = {*table_};
        return conversion;
    }
    if (link_) {
        auto profile = linkProfile(openInput(*link_));
        auto conversion = std::make_unique<ProfileConversion>(std::move(profile));
        conversion->files = {*link_};
        return conversion;
    }

    if (!source_ || !destination_) throw UsageFailure("--source and --destination go together");
    const IccInput source(openInput(*source_)), destination(openInput(*destination_));
    const ColourSpace from = spaceOf(source, "source"), to = spaceOf(destination, "destination");
    const int32_t intent = intentOf(intent_.value_or("perceptual"));
    const bool own = engine_.value_or(to == ColourSpace::cmyk && intent != 3 ? "own" : "system") == "own";
    if (own && to != ColourSpace::cmyk)
        failOn(*destination_, "is an RGB profile; --engine own converts to CMYK only, take --engine system");
    if (own && intent == 3) throw UsageFailure("--intent absolute needs --engine system");
    if (!own && (preserve_ || white_)) throw UsageFailure("--preserve and --white need --engine own");

    CmsLinkSettings settings;
    jCmsInitCms(&settings);
    const LibraryName sourceName(*source_), destinationName(*destination_);
    copyToField(settings.sourcePath, sourceName.path());
    copyToField(settings.destinationPath, destinationName.path());
    settings.intent = intent;
    settings.whiteMode = white_.value_or("clean") == "clean" ? 1 : 0;
    const std::string preserve = preserve_.value_or("none");
    settings.preservation = preserve == "secondaries" ? 2 : preserve == "primaries" ? 1 : 0;
    const auto combine = own ? from == ColourSpace::rgb ? jKoLinkCombineRgbProfile : jKoLinkCombineCmykProfile
                         : from == ColourSpace::rgb ? jKoLinkCombineIcmRgbProfile : jKoLinkCombineIcmCmykProfile;
    link::Link link(reasoned([&] { return combine(&settings); }));
    if (!link) {
        throwIfNotItsFault(*source_);
        static constexpr const char* kTables[] = {"B2A0", "B2A1", "B2A2", ""};
        if (own && !destination.find(fourcc("B2A0") + static_cast<uint32_t>(intent)))
            failOn(*destination_, std::string("tag ") + kTables[intent] + " is missing; it cannot be converted to");
        failOn(*source_, "cannot be linked with " + printable(*destination_) +
                             ": a table or colorant for this intent is missing or damaged");
    }
    auto conversion = std::make_unique<LinkConversion>(std::move(link), from, to);
    conversion->files = {*source_, *destination_};
    conversion->destinationProfile = destination.file();
    return conversion;
}

}  // namespace ko::cli
