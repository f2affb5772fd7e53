// ICC profiles of versions 2.0 to 4.4 in memory: header, texts, and the ways between device and
// connection space that their tags hold.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "frame/bytes.h"
#include "frame/file.h"
#include "precise/lab.h"
#include "precise/pipeline.h"
#include "precise/problem.h"

namespace ko::precise {

enum class Intent : int32_t { perceptual = 0, relative = 1, saturation = 2, absolute = 3 };

struct ProfileHeader {
    uint32_t size = 0, version = 0, deviceClass = 0, space = 0, connection = 0, intent = 0;
    uint32_t manufacturer = 0, model = 0;
    uint64_t attributes = 0;
    std::array<uint8_t, 16> id{};
};

class Profile {
public:
    // Takes a copy of the bytes. Tags are read when they are asked for; every count in the file
    // is bounded by the bytes that are there.
    static std::unique_ptr<Profile> parse(std::span<const uint8_t> bytes, Problem& problem);

    const ProfileHeader& header() const noexcept { return header_; }
    const std::string& description() const noexcept { return description_; }  // UTF-8
    int channels() const noexcept { return channels_; }
    bool isLink() const noexcept { return header_.deviceClass == fourcc("link"); }
    bool isAbstract() const noexcept { return header_.deviceClass == fourcc("abst"); }
    bool connectsInLab() const noexcept { return header_.connection == fourcc("Lab "); }
    bool hasTag(uint32_t signature) const noexcept { return !tag(signature).empty(); }
    std::span<const uint8_t> tag(uint32_t signature) const noexcept;  // empty when it is missing
    std::span<const uint8_t> bytes() const noexcept { return bytes_.bytes(); }

    // Device values 0..1 (Lab and XYZ as device space: their own numbers) to the connection
    // space's own numbers, L*a*b* or XYZ. The table of the intent, else A2B0, else matrix or grey
    // curve. Of a link: device to device.
    std::optional<Pipeline> toConnection(Intent intent, Problem& problem) const;
    std::optional<Pipeline> fromConnection(Intent intent, Problem& problem) const;
    // Whether the intent has a table of its own in that direction.
    bool hasTable(Intent intent, bool toConnection) const noexcept;
    bool isMatrixShaper() const noexcept;

    // The media white under D50; D50 itself for displays of version 2 and where it is missing.
    Triple mediaWhite() const noexcept;

private:
    Profile() = default;
    std::optional<Pipeline> tablePipeline(uint32_t signature, bool toConnection,
                                          Problem& problem) const;
    std::optional<Curve> curveTag(uint32_t signature, Problem& problem) const;
    std::optional<Triple> xyzTag(uint32_t signature) const noexcept;
    std::optional<Matrix> colorants() const noexcept;
    std::string textOf(uint32_t signature) const;

    struct Tag {
        uint32_t signature, offset, size;
    };
    FileBytes bytes_;
    std::vector<Tag> tags_;
    ProfileHeader header_;
    std::string description_;
    int channels_ = 0;
};

// 0 for a space that is not supported.
int channelsOf(uint32_t space) noexcept;
std::string signatureText(uint32_t signature);

// MD5 of a profile as ICC.1 has it for the ID: flags, intent and ID count as zeros.
std::array<uint8_t, 16> profileId(std::span<const uint8_t> bytes);

// Readers of single elements, each within its span.
std::optional<Curve> parseCurve(ByteReader& in, size_t& taken);
std::optional<Pipeline> parseTable(std::span<const uint8_t> element, int inputs, int outputs,
                                   Problem& problem);

}  // namespace ko::precise
