// What a combination loads, in which order, and what it gives back.
#include "cmyk/cmyk.h"

#include <optional>

#include "cmyk/combine_chain.h"
#include "cmyk/combine_fast.h"
#include "cmyk/combine_icc.h"
#include "cmyk/plugin.h"
#include "frame/bytes.h"
#include "frame/platform.h"
#include "frame/state.h"
#include "tone/tone.h"

namespace ko::cmyk {
namespace {

struct Base {
    bool loaded = true;  // also when there is none to load
    Block<CmykProfile> profile;  // null: the identity
};
Base loadBase(const CmsLinkSettings& settings) {
    const Path path(settings.basePath);
    if (path.empty()) return {};
    Base base{false, createProfile()};
    base.loaded = base.profile && loadProfile(*base.profile, path);
    return base;
}

struct BlackCurve {
    bool loaded = true;  // also when there is none to load
    tone::OwnedCurve curve;
    const int16_t* values() const noexcept {
        return curve ? tone::valuesOf(*curve, 0).data() : nullptr;
    }
};
BlackCurve loadBlack(const CmsLinkSettings& settings, Black kind) {
    BlackCurve black;
    if (kind == Black::kept) {
        black.curve = tone::createToneCurve(1);
        black.loaded = black.curve != nullptr;
        return black;
    }
    const Path path(settings.blackPath);
    if (path.empty()) return black;
    black.curve = tone::createToneCurve(1);
    black.loaded = black.curve && tone::loadBkcCurve(*black.curve, path);
    return black;
}

}  // namespace

Block<CmykProfile> combineProfile(const CmsLinkSettings& settings, Black kind) {
    const Path source(settings.sourcePath);
    if (!source) return nullptr;
    if (hasExtension(source.c_str(), ".icc")) return combineIccProfile(settings, kind);

    std::optional<platform::WaitCursor> cursor;  // goes last, when the plug-in is closed
    const auto base = loadBase(settings);
    auto result = createProfileWithoutGrid();
    const auto dcc = tone::createToneCurve(6);
    if (!base.loaded || !result || !dcc) return nullptr;
    const Path dccPath(settings.destinationPath);
    if (!dccPath.empty() && !tone::loadDccCurve(*dcc, dccPath)) return nullptr;
    std::optional<Plugin> plugin;
    if (!source.empty()) {
        plugin = Plugin::open(processState().productFolder, source.c_str());
        if (!plugin) return nullptr;
    }
    const BlackCurve black = loadBlack(settings, kind);
    if (!black.loaded) return nullptr;

    cursor.emplace(platform::WaitCursor::Source::library);
    const NodeChain chain(settings, base.profile.get(), black.values());
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
        combineNodesFast(chain, kNoConversion, *result);
    }
    return result;
}

Block<CmykProfile> combineIccProfile(const CmsLinkSettings& settings, Black kind) {
    const auto base = loadBase(settings);
    auto result = createProfileWithoutGrid();
    if (!base.loaded || !result) return nullptr;
    const Path source(settings.sourcePath), destination(settings.destinationPath);
    std::optional<icc::OpenPair> pair;
    IccLut *sourceTable = nullptr, *destinationTable = nullptr;
    if (!source.empty() && !destination.empty()) {
        pair = icc::openPair(source, destination, fourcc("CMYK"), settings.intent);
        if (!pair) return nullptr;
        sourceTable = pair->sourceLut(settings.intent);
        destinationTable = pair->destinationLut(settings.intent);
        if (!sourceTable || !destinationTable) return nullptr;
    }
    const icc::White white =
        pair ? icc::mediaWhite(pair->source, icc::kProfileD50) : icc::kProfileD50;
    const BlackCurve black = loadBlack(settings, kind);
    if (!black.loaded) return nullptr;

    const platform::WaitCursor cursor(platform::WaitCursor::Source::system);
    const NodeChain chain(settings, base.profile.get(), black.values());
    if (!pair) {
        combineNodesFast(chain, kNoConversion, *result);
        return result;
    }
    pair->source.bytes = {};  // not needed while the grid is made
    pair->destination.bytes = {};
    const icc::ReadyLut sourceLut(*sourceTable);
    const icc::ReadyLut destinationLut =
        sourceLut ? icc::ReadyLut(*destinationTable) : icc::ReadyLut();
    if (!destinationLut) {
        initGrid(*result);  // the default one
        return result;
    }
    combineNodesFast(chain, IccPair(*sourceLut, *destinationLut, pair->bridge, white), *result);
    return result;
}

}  // namespace ko::cmyk
