#include "precise/profile.h"

#include <algorithm>

#include "precise/md5.h"

namespace ko::precise {
namespace {

constexpr size_t kHeaderSize = 128;
constexpr uint32_t kMostTags = 1000;
constexpr double kXyzScale = 1 + 32767.0 / 32768;  // what an encoded 1 stands for
constexpr double kOldLab = 65535.0 / 65280;        // 16-bit Lab of version 2

enum class Encoding { old16, plain };  // of Lab; plain is the 8-bit one and version 4's

// Encoded 0..1 to the space's own numbers.
void addDecoding(Pipeline& pipeline, uint32_t space, Encoding encoding) {
    Matrix matrix;
    if (space == fourcc("Lab ")) {
        const double scale = encoding == Encoding::old16 ? kOldLab : 1;
        matrix.rows = {{{100 * scale, 0, 0}, {0, 255 * scale, 0}, {0, 0, 255 * scale}}};
        matrix.offsets = {0, -128, -128};
    } else if (space == fourcc("XYZ ")) {
        matrix.rows = {{{kXyzScale, 0, 0}, {0, kXyzScale, 0}, {0, 0, kXyzScale}}};
    } else {
        return;
    }
    pipeline.addMatrix(matrix);
}

void addEncoding(Pipeline& pipeline, uint32_t space, Encoding encoding) {
    Matrix matrix;
    if (space == fourcc("Lab ")) {
        const double scale = encoding == Encoding::old16 ? kOldLab : 1;
        const double l = 1 / (100 * scale), ab = 1 / (255 * scale);
        matrix.rows = {{{l, 0, 0}, {0, ab, 0}, {0, 0, ab}}};
        matrix.offsets = {0, 128 * ab, 128 * ab};
    } else if (space == fourcc("XYZ ")) {
        matrix.rows = {{{1 / kXyzScale, 0, 0}, {0, 1 / kXyzScale, 0}, {0, 0, 1 / kXyzScale}}};
    } else {
        return;
    }
    pipeline.addMatrix(matrix);
}

std::optional<Matrix> inverseOf(const Matrix& m) noexcept {
    const auto& r = m.rows;
    const auto minor = [&](size_t a, size_t b, size_t c, size_t d) {
        return r[a][b] * r[c][d] - r[a][d] * r[c][b];
    };
    const double determinant =
        r[0][0] * minor(1, 1, 2, 2) - r[0][1] * minor(1, 0, 2, 2) + r[0][2] * minor(1, 0, 2, 1);
    if (determinant < 1e-12 && determinant > -1e-12) return std::nullopt;
    const double f = 1 / determinant;
    Matrix inverse;
    inverse.rows = {{{minor(1, 1, 2, 2) * f, -minor(0, 1, 2, 2) * f, minor(0, 1, 1, 2) * f},
                     {-minor(1, 0, 2, 2) * f, minor(0, 0, 2, 2) * f, -minor(0, 0, 1, 2) * f},
                     {minor(1, 0, 2, 1) * f, -minor(0, 0, 2, 1) * f, minor(0, 0, 1, 1) * f}}};
    return inverse;
}

void appendUtf8(std::string& text, uint32_t point) {
    if (point < 0x80) {
        text += static_cast<char>(point);
    } else if (point < 0x800) {
        text += static_cast<char>(0xc0 | point >> 6);
        text += static_cast<char>(0x80 | (point & 63));
    } else if (point < 0x10000) {
        text += static_cast<char>(0xe0 | point >> 12);
        text += static_cast<char>(0x80 | (point >> 6 & 63));
        text += static_cast<char>(0x80 | (point & 63));
    } else {
        text += static_cast<char>(0xf0 | point >> 18);
        text += static_cast<char>(0x80 | (point >> 12 & 63));
        text += static_cast<char>(0x80 | (point >> 6 & 63));
        text += static_cast<char>(0x80 | (point & 63));
    }
}

std::string fromUtf16(std::span<const uint8_t> bytes) {
    std::string text;
    ByteReader in(bytes);
    while (in.remaining() >= 2) {
        uint32_t unit = in.u16();
        if (unit == 0) break;
        if (unit >= 0xd800 && unit < 0xdc00 && in.remaining() >= 2) {
            const uint32_t low = in.u16();
            unit = low >= 0xdc00 && low < 0xe000 ? 0x10000 + ((unit & 1023) << 10) + (low & 1023)
                                                 : 0xfffd;
        } else if (unit >= 0xd800 && unit < 0xe000) {
            unit = 0xfffd;
        }
        appendUtf8(text, unit);
    }
    return text;
}

// The English text, else the first.
std::string localizedText(std::span<const uint8_t> element) {
    ByteReader in(element);
    in.skip(8);
    const uint32_t count = in.u32(), width = in.u32();
    std::string first;
    if (!in.ok() || width < 12 || count > in.remaining() / width) return first;
    for (uint32_t at = 0; at < count; ++at) {
        const uint16_t language = in.u16();
        in.skip(2);
        const uint32_t length = in.u32(), offset = in.u32();
        in.skip(width - 12);
        if (offset > element.size() || length > element.size() - offset) continue;
        const auto bytes = element.subspan(offset, length);
        if (language == ('e' << 8 | 'n')) return fromUtf16(bytes);
        if (first.empty()) first = fromUtf16(bytes);
    }
    return first;
}

constexpr uint32_t kTablesTo[] = {fourcc("A2B0"), fourcc("A2B1"), fourcc("A2B2"), fourcc("A2B1")};
constexpr uint32_t kTablesFrom[] = {fourcc("B2A0"), fourcc("B2A1"), fourcc("B2A2"), fourcc("B2A1")};

}  // namespace

int channelsOf(uint32_t space) noexcept {
    switch (space) {
        case fourcc("GRAY"): case fourcc("1CLR"): return 1;
        case fourcc("2CLR"): return 2;
        case fourcc("RGB "): case fourcc("Lab "): case fourcc("XYZ "): case fourcc("Luv "):
        case fourcc("YCbr"): case fourcc("Yxy "): case fourcc("HSV "): case fourcc("HLS "):
        case fourcc("CMY "): case fourcc("3CLR"): return 3;
        case fourcc("CMYK"): case fourcc("4CLR"): return 4;
        default: return 0;
    }
}

std::string signatureText(uint32_t signature) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto c = static_cast<char>(signature >> shift);
        text += c >= 32 && c < 127 ? c : '?';
    }
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

std::array<uint8_t, 16> profileId(std::span<const uint8_t> bytes) {
    std::vector<uint8_t> header(bytes.begin(), bytes.begin() + std::min(bytes.size(), kHeaderSize));
    const auto clear = [&](size_t from, size_t count) {
        for (size_t at = from; at < from + count && at < header.size(); ++at) header[at] = 0;
    };
    clear(44, 4);
    clear(64, 4);
    clear(84, 16);
    Md5 digest;
    digest.add(header);
    digest.add(bytes.subspan(header.size()));
    return digest.result();
}

std::unique_ptr<Profile> Profile::parse(std::span<const uint8_t> bytes, Problem& problem) {
    ByteReader in(bytes);
    std::unique_ptr<Profile> profile(new Profile);
    ProfileHeader& header = profile->header_;
    header.size = in.u32();
    in.skip(4);
    header.version = in.u32();
    header.deviceClass = in.u32();
    header.space = in.u32();
    header.connection = in.u32();
    in.skip(12);
    const uint32_t magic = in.u32();
    in.skip(8);
    header.manufacturer = in.u32();
    header.model = in.u32();
    header.attributes = static_cast<uint64_t>(in.u32()) << 32;
    header.attributes |= in.u32();
    header.intent = in.u32();
    in.skip(16);
    const auto id = in.take(header.id.size());
    std::copy(id.begin(), id.end(), header.id.begin());
    in.skip(28);
    const uint32_t count = in.u32();
    if (!in.ok() || magic != fourcc("acsp")) {
        problem.set(Trouble::profile, "is not an ICC profile");
        return nullptr;
    }
    const uint32_t major = header.version >> 24;
    if (major < 1 || major > 4) {
        problem.set(Trouble::unsupported, "is an ICC profile of version " + std::to_string(major) +
                                              " where 2 to 4 are known");
        return nullptr;
    }
    if (count > kMostTags || count > in.remaining() / 12) {
        problem.set(Trouble::profile, "is a damaged ICC profile: its directory does not fit");
        return nullptr;
    }
    profile->bytes_ = copyOf(bytes);
    for (uint32_t at = 0; at < count; ++at) {
        const Tag tag = {in.u32(), in.u32(), in.u32()};
        if (tag.offset > bytes.size() || tag.size > bytes.size() - tag.offset) continue;
        profile->tags_.push_back(tag);
    }
    profile->channels_ = channelsOf(header.space);
    if (profile->channels_ == 0) {
        problem.set(Trouble::unsupported,
                    "is a profile for " + signatureText(header.space) + ", which is not supported");
        return nullptr;
    }
    const bool pcs = header.connection == fourcc("Lab ") || header.connection == fourcc("XYZ ");
    if (!pcs && !profile->isLink()) {
        problem.set(Trouble::unsupported, "connects to " + signatureText(header.connection) +
                                              " where Lab or XYZ is needed");
        return nullptr;
    }
    profile->description_ = profile->textOf(fourcc("desc"));
    return profile;
}

std::span<const uint8_t> Profile::tag(uint32_t signature) const noexcept {
    for (const Tag& tag : tags_)
        if (tag.signature == signature)
            return bytes().subspan(tag.offset, tag.size);
    return {};
}

std::string Profile::textOf(uint32_t signature) const {
    const auto element = tag(signature);
    ByteReader in(element);
    const uint32_t type = in.u32();
    in.skip(4);
    if (type == fourcc("mluc")) return localizedText(element);
    uint32_t length = static_cast<uint32_t>(in.remaining());
    if (type == fourcc("desc")) length = in.u32();
    else if (type != fourcc("text")) return {};
    if (!in.ok() || length > in.remaining()) return {};
    std::string text;
    for (const uint8_t byte : in.take(length)) {
        if (byte == 0) break;
        appendUtf8(text, byte < 128 ? byte : 0xfffd);
    }
    return text;
}

std::optional<Triple> Profile::xyzTag(uint32_t signature) const noexcept {
    ByteReader in(tag(signature));
    if (in.u32() != fourcc("XYZ ")) return std::nullopt;
    in.skip(4);
    Triple xyz;
    for (double& value : xyz) value = in.s32() / 65536.0;
    if (!in.ok()) return std::nullopt;
    return xyz;
}

std::optional<Curve> Profile::curveTag(uint32_t signature, Problem& problem) const {
    ByteReader in(tag(signature));
    size_t taken = 0;
    auto curve = parseCurve(in, taken);
    if (!curve)
        problem.set(Trouble::tables, "lacks a sound tag " + signatureText(signature));
    return curve;
}

std::optional<Matrix> Profile::colorants() const noexcept {
    constexpr uint32_t kTags[] = {fourcc("rXYZ"), fourcc("gXYZ"), fourcc("bXYZ")};
    Matrix matrix;
    for (size_t column = 0; column < 3; ++column) {
        const auto xyz = xyzTag(kTags[column]);
        if (!xyz) return std::nullopt;
        for (size_t row = 0; row < 3; ++row) matrix.rows[row][column] = (*xyz)[row];
    }
    return matrix;
}

bool Profile::isMatrixShaper() const noexcept {
    if (header_.space == fourcc("GRAY")) return hasTag(fourcc("kTRC"));
    if (header_.space != fourcc("RGB ")) return false;
    for (const uint32_t needed : {fourcc("rXYZ"), fourcc("gXYZ"), fourcc("bXYZ"), fourcc("rTRC"),
                                  fourcc("gTRC"), fourcc("bTRC")})
        if (!hasTag(needed)) return false;
    return true;
}

Triple Profile::mediaWhite() const noexcept {
    const auto white = xyzTag(fourcc("wtpt"));
    const bool oldDisplay =
        header_.version < 0x4000000 && header_.deviceClass == fourcc("mntr");
    if (!white || oldDisplay) return kD50;
    for (const double value : *white)
        if (!(value > 1e-6)) return kD50;
    return *white;
}

bool Profile::hasTable(Intent intent, bool toConnection) const noexcept {
    const auto& tables = toConnection ? kTablesTo : kTablesFrom;
    return hasTag(tables[static_cast<size_t>(intent)]);
}

std::optional<Pipeline> Profile::tablePipeline(uint32_t signature, bool toConnection,
                                               Problem& problem) const {
    const uint32_t from = toConnection ? header_.space : header_.connection;
    const uint32_t to = toConnection ? header_.connection : header_.space;
    const auto element = tag(signature);
    const int outputs = channelsOf(to);
    if (outputs == 0 || channelsOf(from) == 0) {
        problem.set(Trouble::unsupported, "converts to " + signatureText(to) +
                                              ", which is not supported");
        return std::nullopt;
    }
    auto table = parseTable(element, channelsOf(from), outputs, problem);
    if (!table) return std::nullopt;
    const Encoding encoding =
        ByteReader(element).u32() == fourcc("mft2") ? Encoding::old16 : Encoding::plain;
    Pipeline pipeline;
    pipeline.inputs = table->inputs;
    pipeline.outputs = table->outputs;
    addEncoding(pipeline, from, encoding);
    for (Stage& stage : table->stages) {
        // Cells of a Lab grid are blended from all corners: neutral colours lie on no diagonal.
        if (stage.step == Step::grid && from == fourcc("Lab ") &&
            (!toConnection || isLink() || isAbstract()))
            stage.grid.blended = true;
        pipeline.add(std::move(stage));
    }
    addDecoding(pipeline, to, encoding);
    return pipeline;
}

std::optional<Pipeline> Profile::toConnection(Intent intent, Problem& problem) const {
    if (header_.deviceClass == fourcc("nmcl")) {
        problem.set(Trouble::unsupported, "is a list of named colours");
        return std::nullopt;
    }
    const uint32_t wanted = kTablesTo[static_cast<size_t>(intent)];
    if (hasTag(wanted) && !isLink()) return tablePipeline(wanted, true, problem);
    if (hasTag(fourcc("A2B0"))) return tablePipeline(fourcc("A2B0"), true, problem);
    Pipeline pipeline;
    pipeline.inputs = channels_;
    pipeline.outputs = 3;
    Stage stage;
    stage.step = Step::curves;
    if (header_.space == fourcc("GRAY") && !isLink()) {
        auto curve = curveTag(fourcc("kTRC"), problem);
        if (!curve) return std::nullopt;
        stage.curves.push_back(std::move(*curve));
        pipeline.add(std::move(stage));
        pipeline.addStep(connectsInLab() ? Step::lightness : Step::neutral);
        return pipeline;
    }
    const auto matrix = colorants();
    if (header_.space != fourcc("RGB ") || !matrix) {
        problem.set(Trouble::tables, "lacks the table " + signatureText(wanted));
        return std::nullopt;
    }
    for (const uint32_t signature : {fourcc("rTRC"), fourcc("gTRC"), fourcc("bTRC")}) {
        auto curve = curveTag(signature, problem);
        if (!curve) return std::nullopt;
        stage.curves.push_back(std::move(*curve));
    }
    pipeline.add(std::move(stage));
    pipeline.addMatrix(*matrix);  // colorants are XYZ whatever the profile connects to
    if (connectsInLab()) pipeline.addStep(Step::toLab);
    return pipeline;
}

std::optional<Pipeline> Profile::fromConnection(Intent intent, Problem& problem) const {
    const uint32_t wanted = kTablesFrom[static_cast<size_t>(intent)];
    if (isLink()) {
        problem.set(Trouble::unsupported, "is a device link, which has no way back");
        return std::nullopt;
    }
    if (isAbstract()) return toConnection(intent, problem);  // it only has one direction
    if (hasTag(wanted)) return tablePipeline(wanted, false, problem);
    if (hasTag(fourcc("B2A0"))) return tablePipeline(fourcc("B2A0"), false, problem);
    Pipeline pipeline;
    pipeline.inputs = 3;
    pipeline.outputs = channels_;
    Stage stage;
    stage.step = Step::inverseCurves;
    if (header_.space == fourcc("GRAY")) {
        auto curve = curveTag(fourcc("kTRC"), problem);
        if (!curve) return std::nullopt;
        stage.curves.push_back(std::move(*curve));
        pipeline.addStep(connectsInLab() ? Step::firstOnly : Step::secondOnly);
        pipeline.add(std::move(stage));
        return pipeline;
    }
    const auto matrix = colorants();
    const auto inverse = matrix ? inverseOf(*matrix) : std::nullopt;
    if (header_.space != fourcc("RGB ") || !inverse) {
        std::string others;
        for (const uint32_t other : {fourcc("B2A1"), fourcc("B2A2")})
            if (hasTag(other)) others += (others.empty() ? "; it has " : ", ") + signatureText(other);
        problem.set(Trouble::tables, "lacks the table " + signatureText(wanted) + others);
        return std::nullopt;
    }
    for (const uint32_t signature : {fourcc("rTRC"), fourcc("gTRC"), fourcc("bTRC")}) {
        auto curve = curveTag(signature, problem);
        if (!curve) return std::nullopt;
        stage.curves.push_back(std::move(*curve));
    }
    if (connectsInLab()) pipeline.addStep(Step::fromLab);
    pipeline.addMatrix(*inverse);
    pipeline.add(std::move(stage));
    return pipeline;
}

}  // namespace ko::precise
