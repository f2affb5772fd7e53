// What a combination loads, in which order, and what it gives back.
#include "cmyk/cmyk.h"

#include <optional>
#include <string>

#include "cmyk/combine_chain.h"
#include "cmyk/combine_fast.h"
#include "cmyk/combine_icc.h"
#include "cmyk/plugin.h"
#include "frame/bytes.h"
#include "frame/platform.h"
#include "frame/state.h"
#include "frame/text.h"
#include "tone/tone.h"

namespace ko::cmyk {
namespace {

std::string pathIn(const char (&field)[KOLINK_PATH_SIZE]) { return std::string(textIn(field)); }

// The base profile; without a path it is the identity.
Block<CmykProfile> loadBase(const CmsLinkSettings& settings) {
    auto base = createProfile();
    const std::string path = pathIn(settings.basePath);
    if (base && !path.empty() && loadProfile(*base, path.c_str()) != 1) return nullptr;
    return base;
}

struct BlackCurve {
    bool loaded = true;  // also when there is none to load
    tone::OwnedCurve curve;
    const int16_t* values() const noexcept {
        return curve ? tone::valuesOf(*curve, 0).data() : nullptr;
    }
};
BlackCurve loadBlack(const CmsLinkSettings& settings) {
    BlackCurve black;
    const std::string path = pathIn(settings.blackPath);
    if (path.empty()) return black;
    black.curve = tone::createToneCurve(1);
    black.loaded = black.curve && tone::loadBkcCurve(*black.curve, path.c_str());
    return black;
}

// A LUT that is ready while this lives.
class ReadyLut {
public:
    explicit ReadyLut(IccLut* lut) : lut_(lut && icc::lutSetup(lut) == 1 ? lut : nullptr) {}
    ~ReadyLut() {
        if (lut_) icc::lutClose(lut_);
    }
    ReadyLut(const ReadyLut&) = delete;
    explicit operator bool() const noexcept { return lut_ != nullptr; }
    const IccLut* get() const noexcept { return lut_; }

private:
    IccLut* lut_;
};

// The data of a tag; null when it is absent or, then with that result, memory is short.
template <class T>
icc::TagResult loadData(icc::ProfileFile& file, uint32_t signature, T*& data) noexcept {
    const icc::TagResult result = icc::loadTag(file, signature);
    data = result == icc::TagResult::loaded
               ? static_cast<T*>(icc::findTag(*file.profile, signature)->data)
               : nullptr;
    return result;
}

// Both profiles of an ICC combination with the LUTs that the intent chooses.
struct LoadedPair {
    icc::ProfilePtr source, destination;  // own the LUTs
    IccLut* sourceLut = nullptr;
    IccLut* destinationLut = nullptr;
    IccPair pair;  // connection and white point
};
std::optional<LoadedPair> loadPair(const std::string& sourcePath,
                                   const std::string& destinationPath, int32_t intent) {
    constexpr uint32_t kA2B[] = {fourcc("A2B0"), fourcc("A2B1"), fourcc("A2B2")};
    constexpr uint32_t kB2A[] = {fourcc("B2A0"), fourcc("B2A1"), fourcc("B2A2")};
    if (intent < 0 || intent > 2) return std::nullopt;

    LoadedPair loaded;
    icc::ProfileFile source = icc::openProfile(sourcePath.c_str());
    if (!source || source.profile->header.colourSpace != fourcc("CMYK")) return std::nullopt;
    const uint32_t sourcePcs = source.profile->header.connectionSpace;
    if (sourcePcs != fourcc("Lab ") && sourcePcs != fourcc("XYZ ")) return std::nullopt;
    icc::ProfileFile destination = icc::openProfile(destinationPath.c_str());
    if (!destination) return std::nullopt;
    const IccHeader& header = destination.profile->header;
    if (header.colourSpace != fourcc("CMYK")) return std::nullopt;
    // The destination's connection space goes untested: what is neither the source's own nor a
    // known one is taken to be the other of the two.
    if (header.connectionSpace != sourcePcs) {
        loaded.pair.connection =
            sourcePcs == fourcc("XYZ ") ? Connection::xyzToLab : Connection::labToXyz;
    }

    loadData(source, kA2B[intent], loaded.sourceLut);
    loadData(destination, kB2A[intent], loaded.destinationLut);
    if (!loaded.sourceLut || !loaded.destinationLut) return std::nullopt;
    const float* white = nullptr;
    if (loadData(source, fourcc("wtpt"), white) == icc::TagResult::shortMemory)
        return std::nullopt;
    if (white)
        for (int32_t i = 0; i < 3; ++i) loaded.pair.white[i] = white[i] * 100.0;
    loaded.source = std::move(source.profile);
    loaded.destination = std::move(destination.profile);
    return loaded;
}

}  // namespace

Block<CmykProfile> combineProfile(const CmsLinkSettings& settings) {
    const std::string source = pathIn(settings.sourcePath);
    if (hasExtension(source.c_str(), ".icc")) return combineIccProfile(settings);

    const auto base = loadBase(settings);
    auto result = createProfile();
    const auto dcc = tone::createToneCurve(6);
    if (!base || !result || !dcc) return nullptr;
    const std::string dccPath = pathIn(settings.destinationPath);
    if (!dccPath.empty() && !tone::loadDccCurve(*dcc, dccPath.c_str())) return nullptr;
    std::optional<Plugin> plugin;
    if (!source.empty()) {
        plugin = Plugin::open(processState().productFolder, source);
        if (!plugin) return nullptr;
    }
    const BlackCurve black = loadBlack(settings);
    if (!black.loaded) return nullptr;

    const platform::WaitCursor cursor(platform::WaitCursor::Source::library);
    const NodeChain chain(settings, *base, black.values());
    if (plugin) {
        // The base profile's result only feeds the plug-in; the DCC curve makes the inks.
        combineNodes(chain, [&](Cmyk& cmyk) {
            uint8_t inks[4], rgb[3] = {};
            for (int32_t i = 0; i < 4; ++i) inks[i] = static_cast<uint8_t>(cmyk[i]);
            plugin->toRgb(inks, rgb);
            tone::rgbToCmyk16(*dcc, rgb[0], rgb[1], rgb[2], cmyk);
            for (int32_t& value : cmyk) value = fromScale16(value);
        }, *result);
    } else {
        combineNodesFast(chain, {}, *result);
    }
    return result;
}

Block<CmykProfile> combineIccProfile(const CmsLinkSettings& settings) {
    const auto base = loadBase(settings);
    auto result = createProfile();
    if (!base || !result) return nullptr;
    const std::string source = pathIn(settings.sourcePath);
    const std::string destination = pathIn(settings.destinationPath);
    std::optional<LoadedPair> loaded;
    if (!source.empty() && !destination.empty()) {
        loaded = loadPair(source, destination, settings.intent);
        if (!loaded) return nullptr;
    }
    const BlackCurve black = loadBlack(settings);
    if (!black.loaded) return nullptr;

    const platform::WaitCursor cursor(platform::WaitCursor::Source::system);
    const NodeChain chain(settings, *base, black.values());
    if (!loaded) {
        combineNodesFast(chain, {}, *result);
        return result;
    }
    const ReadyLut sourceLut(loaded->sourceLut);
    if (!sourceLut) return result;  // with its default grid
    const ReadyLut destinationLut(loaded->destinationLut);
    if (!destinationLut) return result;
    IccPair pair = loaded->pair;
    pair.source = sourceLut.get();
    pair.destination = destinationLut.get();
    combineNodesFast(chain, pair, *result);
    return result;
}

}  // namespace ko::cmyk
