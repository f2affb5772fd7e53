#include "cli/conversion.h"

#include <algorithm>
#include <array>

#include "cli/arguments.h"
#include "cli/classic_link.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/icc_input.h"
#include "cli/precise.h"
#include "cli/table_file.h"
#include "link/link.h"

namespace ko::cli {
namespace {

// Rows are handed on in portions that stay in the cache.
constexpr size_t kPortion = 1024;

template <class Level>
Level levelOf(double value) {
    constexpr double kTop = static_cast<Level>(~Level{0});
    return static_cast<Level>(std::clamp(value, 0.0, 1.0) * kTop + 0.5);
}

// The library's own ways take whole levels of 255 and give the 16-scale, 0..4080.
class LevelConversion : public Conversion {
public:
    void convert8(const uint8_t* in, size_t count, uint8_t* out) override {
        convert(in, count, [&](uint32_t value) { *out++ = static_cast<uint8_t>((value + 8) / 16); },
                [](uint8_t level) { return level; });
    }
    void convert16(const uint16_t* in, size_t count, uint16_t* out) override {
        convert(in, count, [&](uint32_t value) { *out++ = static_cast<uint16_t>((value * 65535 + 2040) / 4080); },
                [](uint16_t level) { return static_cast<uint8_t>((level + 128u) / 257); });
    }
    void convertFloats(const float* in, size_t count, float* out) override {
        convert(in, count, [&](uint32_t value) { *out++ = static_cast<float>(value / 4080.0); },
                [](float value) { return levelOf<uint8_t>(static_cast<double>(value)); });
    }

protected:
    virtual void convertRow(const uint8_t* in, int32_t pixels, uint16_t* out) = 0;

private:
    template <class Value, class Put, class Level>
    void convert(const Value* in, size_t count, Put&& put, Level&& level) {
        std::array<uint8_t, 4 * kPortion> levels;
        std::array<uint16_t, 4 * kPortion> row;
        const auto inputs = static_cast<size_t>(channelsOf(input)), outputs = static_cast<size_t>(channelsOf(output));
        while (count > 0) {
            const size_t part = std::min(count, kPortion);
            std::transform(in, in + part * inputs, levels.begin(), level);
            convertRow(levels.data(), static_cast<int32_t>(part), row.data());
            for (size_t at = 0; at < part * outputs; ++at) put(std::min<uint32_t>(row[at], 4080));
            in += part * inputs;
            count -= part;
        }
    }
};

class LinkConversion final : public LevelConversion {
public:
    LinkConversion(link::Link link, ColourSpace in, ColourSpace out) : link_(std::move(link)) {
        input = in;
        output = out;
    }
    void convertRow(const uint8_t* in, int32_t pixels, uint16_t* out) override {
        if (output == ColourSpace::cmyk) return jKoLinkCOLtoCMYK16Row(link_.get(), in, pixels, out);
        // A link to RGB has a fourth value of 0 in every pixel.
        std::array<uint16_t, 4 * kPortion> four;
        jKoLinkCOLtoCMYK16Row(link_.get(), in, pixels, four.data());
        for (int32_t pixel = 0; pixel < pixels; ++pixel, out += 3)
            std::copy_n(&four[static_cast<size_t>(pixel) * 4], 3, out);
    }

private:
    link::Link link_;
};

// A link of the library: its input curves, its grid, its output curves.
class ProfileConversion final : public LevelConversion {
public:
    explicit ProfileConversion(CmykProfilePtr profile) : profile_(std::move(profile)) {
        jKoCmykMakeCurveTables(profile_.get(), &tables_);
    }
    void convertRow(const uint8_t* in, int32_t pixels, uint16_t* out) override {
        jKoCmykLinkCMYKtoCMYK16Row(profile_.get(), &tables_, in, pixels, out);
    }

private:
    CmykProfilePtr profile_;
    CmykCurveTables tables_{};
};

class TableConversion final : public LevelConversion {
public:
    explicit TableConversion(Table table) : table_(std::move(table)) {
        input = output = table_.cmyk ? ColourSpace::cmyk : ColourSpace::rgb;
    }
    void convertRow(const uint8_t* in, int32_t pixels, uint16_t* out) override {
        if (table_.cmyk) jKoCmykLutCMYKtoCMYK16Row(table_.cmyk.get(), in, pixels, out);
        else jKoRgbRGBtoRGB16Row(table_.rgb.get(), in, pixels, out);
    }

private:
    Table table_;
};

// The tables of a coated press that the library carries.
class BuiltinConversion final : public LevelConversion {
public:
    explicit BuiltinConversion(ColourSpace from) {
        input = from;
        output = from == ColourSpace::rgb ? ColourSpace::cmyk : ColourSpace::rgb;
    }
    void convertRow(const uint8_t* in, int32_t pixels, uint16_t* out) override {
        std::array<uint8_t, 4 * kPortion> levels;
        if (input == ColourSpace::rgb) jColorRGBtoCMYKRow(in, pixels, levels.data());
        else jColorCMYKtoRGBRow(in, pixels, levels.data());
        for (int32_t at = 0; at < pixels * channelsOf(output); ++at)
            *out++ = static_cast<uint16_t>(levels[static_cast<size_t>(at)] * 16);
    }
};

// The grey ink of what another conversion gives, or of the colours themselves.
class GreyConversion final : public LevelConversion {
public:
    GreyConversion(std::unique_ptr<Conversion> colour, ColourSpace from) : colour_(std::move(colour)) {
        input = colour_ ? colour_->input : from;
        space_ = colour_ ? colour_->output : from;
        if (space_ != ColourSpace::rgb && space_ != ColourSpace::cmyk)
            throw UsageFailure(std::string("--grey is of RGB or CMYK, and ") + nameOf(space_) + " comes out");
        output = ColourSpace::grey;
        givesInk = true;
        if (colour_) files = colour_->files;
    }
    void convertRow(const uint8_t* in, int32_t pixels, uint16_t* out) override {
        std::array<uint8_t, 4 * kPortion> levels;
        if (colour_) {
            colour_->convert8(in, static_cast<size_t>(pixels), levels.data());
            in = levels.data();
        }
        for (; pixels > 0; --pixels, in += channelsOf(space_))
            *out++ = static_cast<uint16_t>(16 * (space_ == ColourSpace::rgb
                                                     ? jColorRGBtoGRAY(in[0], in[1], in[2])
                                                     : jColorCMYKtoGRAY(in[0], in[1], in[2], in[3])));
    }

private:
    std::unique_ptr<Conversion> colour_;
    ColourSpace space_;
};

// A link made for the conversion.
class PreciseLinkConversion final : public Conversion {
public:
    explicit PreciseLinkConversion(PreciseLink link) : link_(std::move(link)) {}
    void convert8(const uint8_t* in, size_t count, uint8_t* out) override {
        koPreciseLinkRow8(link_.get(), in, out, count);
    }
    void convert16(const uint16_t* in, size_t count, uint16_t* out) override {
        koPreciseLinkRow16(link_.get(), in, out, count);
    }
    void convertFloats(const float* in, size_t count, float* out) override {
        koPreciseLinkFloats(link_.get(), in, out, count);
    }

private:
    PreciseLink link_;
};

// Colour by colour through profiles, or through a saved link.
class TransformConversion final : public Conversion {
public:
    explicit TransformConversion(PreciseTransform transform) : transform_(std::move(transform)) {}
    void convert8(const uint8_t* in, size_t count, uint8_t* out) override {
        koPreciseTransformRow8(transform_.get(), in, out, count);
    }
    void convert16(const uint16_t* in, size_t count, uint16_t* out) override {
        koPreciseTransformRow16(transform_.get(), in, out, count);
    }
    void convertFloats(const float* in, size_t count, float* out) override {
        koPreciseTransformFloats(transform_.get(), in, out, count);
    }

private:
    PreciseTransform transform_;
};

ColourSpace spaceOf(uint32_t signature, const std::string& path) {
    switch (signature) {
        case fourcc("RGB "): return ColourSpace::rgb;
        case fourcc("CMYK"): return ColourSpace::cmyk;
        case fourcc("GRAY"): return ColourSpace::grey;
        case fourcc("Lab "): return ColourSpace::lab;
        case fourcc("XYZ "): return ColourSpace::xyz;
        case fourcc("2CLR"): return ColourSpace::two;
        case fourcc("4CLR"): return ColourSpace::four;
        case fourcc("CMY "): case fourcc("3CLR"): case fourcc("YCbr"): case fourcc("Yxy "):
        case fourcc("HSV "): case fourcc("HLS "): case fourcc("Luv "): return ColourSpace::three;
        default: failOn(path, "is a profile for " + signatureText(signature) + ", which cannot be converted");
    }
}

std::unique_ptr<Conversion> savedLink(const std::string& path, bool isFine) {
    InputFile file = openInput(path);
    CmykProfilePtr record;
    if (file.type == FileType::cmykTable || file.type == FileType::amatchTable) {
        record = cmykProfile(file);
    } else if (file.type != FileType::icc) {
        failOn(path, "is neither an ICC profile nor a .lut or .amt table");
    } else {
        IccInput icc(file);
        if (icc.header().deviceClass != fourcc("link"))
            failOn(path, "is a profile of class " + signatureText(icc.header().deviceClass) + ": it is no link");
        if (hasLibraryNodes(icc)) record = cmykProfile(icc);
    }
    std::unique_ptr<Conversion> conversion;
    if (record && !isFine) {
        conversion = std::make_unique<ProfileConversion>(std::move(record));
    } else {
        std::vector<uint8_t> bytes;
        if (record) bytes = asIccLink(*record);
        record.reset();
        const PreciseProfile link(bytes.empty() ? std::move(file) : inMemory(path, bytes));
        conversion = std::make_unique<TransformConversion>(linkTransform(link));
        conversion->input = spaceOf(link.info().space, path);
        conversion->output = spaceOf(link.info().connection, path);
    }
    conversion->files = {path};
    return conversion;
}

}  // namespace

const char* nameOf(ColourSpace space) {
    switch (space) {
        case ColourSpace::rgb: return "RGB";
        case ColourSpace::cmyk: return "CMYK";
        case ColourSpace::grey: return "grey";
        case ColourSpace::lab: return "L*a*b*";
        case ColourSpace::xyz: return "XYZ";
        case ColourSpace::two: return "colours of two channels";
        case ColourSpace::three: return "colours of three channels";
        default: return "colours of four channels";
    }
}

void ConversionOptions::addTo(Command& command) {
    command.option("--link", link_, "A saved ICC device link, or a .lut or .amt table").called("FILE");
    command.option("--table", table_, "A CMYK or RGB table file, text or binary").called("FILE");
    command.flag("--builtin", builtin_,
                     "The built-in tables of a coated press: RGB to CMYK, or CMYK to RGB");
    command.option("--source", choices_.source, "The ICC profile of the colours").called("FILE");
    command.option("--destination", choices_.destination, "The ICC profile to convert to").called("FILE");
    choices_.addTo(command, false);
    command.flag("--grey", grey_, "The amount of grey ink that comes out, 0 for white");
}

int ConversionOptions::ways() const {
    return link_.has_value() + table_.has_value() + builtin_ + (choices_.source || choices_.destination);
}

void ConversionOptions::requireWay() const {
    if (ways() > 1) throw UsageFailure("--link, --table, --builtin and --source exclude each other");
    if (ways() == 0 && !grey_)
        throw UsageFailure("tell how to convert: --link, --table, --builtin, or --source and --destination");
}

std::unique_ptr<Conversion> ConversionOptions::make(const ConversionNeeds& needs) const {
    requireWay();
    if (ways() == 0) {
        if (needs.input != ColourSpace::rgb && needs.input != ColourSpace::cmyk)
            throw UsageFailure("--grey alone needs colours of three (RGB) or four (CMYK) numbers");
        return std::make_unique<GreyConversion>(nullptr, *needs.input);
    }
    auto colour = makeColour(needs);
    if (!grey_) return colour;
    return std::make_unique<GreyConversion>(std::move(colour), ColourSpace::cmyk);
}

std::unique_ptr<Conversion> ConversionOptions::makeColour(const ConversionNeeds& needs) const {
    if (choices_.source || choices_.destination) return makePair(needs);
    if (const std::string option = choices_.first(); !option.empty())
        throw UsageFailure(option + " needs --source and --destination");
    if (builtin_) {
        if (needs.input != ColourSpace::rgb && needs.input != ColourSpace::cmyk)
            throw UsageFailure("--builtin needs colours of three (RGB) or four (CMYK) numbers; "
                               "tell with --from which they are");
        return std::make_unique<BuiltinConversion>(*needs.input);
    }
    if (link_) return savedLink(*link_, needs.isFine);
    const InputFile file = openInput(*table_);
    auto conversion = std::make_unique<TableConversion>(loadTable(file, std::nullopt));
    conversion->files = {*table_};
    return conversion;
}

namespace {

// The library's own arithmetic for RGB, where it can be relied on, or the system's.
link::Link combine(const LinkChoices& choices, ColourSpace from, bool isSystem) {
    CmsLinkSettings settings;
    jCmsInitCms(&settings);
    const LibraryName source(*choices.source), destination(*choices.destination);
    copyToField(settings.sourcePath, source.path());
    copyToField(settings.destinationPath, destination.path());
    settings.intent = choices.intentNumber();
    settings.whiteMode = choices.whiteMode() == "clean" ? 1 : 0;
    settings.preservation = indexOf(choices.preserve.value_or("none"), {"none", "primaries", "secondaries"});
    const auto make = !isSystem                  ? jKoLinkCombineRgbProfile
                      : from == ColourSpace::rgb ? jKoLinkCombineIcmRgbProfile
                                                 : jKoLinkCombineIcmCmykProfile;
    link::Link link(reasoned([&] { return make(&settings); }));
    if (link) return link;
    throwIfNotItsFault(*choices.source);
    failOn(*choices.source, "cannot be linked with " + printable(*choices.destination) +
                                ": a table or colorant for this intent is missing or damaged");
}

std::unique_ptr<Conversion> classicPair(const LinkChoices& choices, const InputFile& source, const InputFile& destination) {
    const bool isSystem = choices.method == "system";
    const IccInput from(source), to(destination);
    const ColourSpace in = spaceOf(from.header().colourSpace, source.path);
    const ColourSpace out = spaceOf(to.header().colourSpace, destination.path);
    const auto fits = [&](ColourSpace space) { return space == ColourSpace::rgb || space == ColourSpace::cmyk; };
    for (const auto& [space, path] : {std::pair(in, &source.path), std::pair(out, &destination.path)})
        if (!fits(space))
            failOn(*path, std::string("is a profile for ") + nameOf(space) + "; --method " + *choices.method +
                              " takes RGB and CMYK alone");
    if (isSystem) {
        for (const auto& [given, name] : {std::pair(choices.preserve.has_value(), "--preserve"),
                                          std::pair(choices.white.has_value(), "--white"),
                                          std::pair(choices.black.has_value(), "--black"),
                                          std::pair(choices.base.has_value(), "--base"),
                                          std::pair(choices.paper.has_value(), "--paper")})
            if (given) throw UsageFailure(std::string("--method system knows no ") + name);
        return std::make_unique<LinkConversion>(combine(choices, in, true), in, out);
    }
    if (out != ColourSpace::cmyk)
        failOn(destination.path, "is a profile for RGB; --method classic converts to CMYK only");
    if (in == ColourSpace::cmyk) {
        ClassicLink link(choices);
        return std::make_unique<ProfileConversion>(link.combine(*choices.source));
    }
    if (choices.base || choices.paper || choices.blackIsFile() || choices.black == "none")
        throw UsageFailure("--base, --paper and --black need a source for CMYK with --method classic");
    requireClassicRgb(from, choices.intentNumber());
    requireTable(to, false, choices.intentNumber());
    return std::make_unique<LinkConversion>(combine(choices, in, false), in, out);
}

}  // namespace

std::unique_ptr<Conversion> ConversionOptions::makePair(const ConversionNeeds& needs) const {
    if (!choices_.destination || (!choices_.source && !needs.embedded))
        throw UsageFailure("--source and --destination go together");
    choices_.check();
    InputFile source = choices_.source ? openInput(*choices_.source) : *needs.embedded;
    InputFile destination = openInput(*choices_.destination);
    std::unique_ptr<Conversion> conversion;
    if (choices_.isClassic() || choices_.method == "system") {
        if (!choices_.source)
            throw UsageFailure("--method " + *choices_.method + " needs --source: it does not read what a picture holds");
        conversion = classicPair(choices_, source, destination);
        conversion->files = {*choices_.source, *choices_.destination};
    } else {
        const PrecisePair pair(choices_, source, destination);
        const ColourSpace in = spaceOf(pair.source().info().space, pair.source().path());
        const ColourSpace out = spaceOf(pair.destination().info().space, pair.destination().path());
        const bool canLink = (in == ColourSpace::rgb || in == ColourSpace::cmyk || in == ColourSpace::grey) &&
                             (out == ColourSpace::rgb || out == ColourSpace::cmyk);
        if (canLink && (out == ColourSpace::cmyk || needs.isLong || choices_.base || choices_.paper)) {
            // Inks come from the link that kolink link would make; light has more to lose.
            const bool toInk = out == ColourSpace::cmyk;
            const int finest = in == ColourSpace::cmyk ? 33 : 65;
            conversion = std::make_unique<PreciseLinkConversion>(
                pair.make(needs.isFine || !toInk ? 16 : 8, toInk || choices_.grid ? 0 : finest));
        } else {
            for (const auto& [given, name] : {std::pair(choices_.preserve.value_or("none") != "none", "--preserve"),
                                              std::pair(choices_.black.value_or("none") != "none", "--black"),
                                              std::pair(choices_.inkLimit.has_value(), "--ink-limit"),
                                              std::pair(choices_.saveInk.has_value(), "--save-ink"),
                                              std::pair(choices_.clip.has_value(), "--clip"),
                                              std::pair(choices_.base.has_value(), "--base")})
                if (given) throw UsageFailure(std::string(name) + " needs a destination for CMYK");
            conversion = std::make_unique<TransformConversion>(pair.transform());
        }
        conversion->input = in;
        conversion->output = out;
        conversion->files = pair.files();
    }
    if (choices_.source) conversion->sourceProfile = std::move(source);
    conversion->destinationProfile = std::move(destination);
    return conversion;
}

}  // namespace ko::cli
