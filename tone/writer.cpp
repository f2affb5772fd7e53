// Writes .bkc, .tnc and .dcc files.
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>

#include "frame/file.h"
#include "frame/lines.h"
#include "frame/text.h"
#include "tone/fields.h"
#include "tone/tone.h"

namespace ko::tone {
namespace {

// Integers only, so that the host's locale has no say.
template <class... Numbers>
std::string formatted(const char* format, Numbers... numbers) {
    char text[64];
    const int length = std::snprintf(text, sizeof text, format, numbers...);
    return {text, static_cast<size_t>(length)};
}

// A forced sign marks a computed value, not a control point.
void putCurve(LineWriter& lines, const ToneCurve& curve, const CurveKey& key) {
    const auto flags = flagsOf(curve, key.channel);
    const auto values = valuesOf(curve, key.channel);
    std::string line = key.prefix;
    for (size_t field = 0; field < kGridFields; ++field) {
        const size_t x = gridLevel(field);
        line += flags[x] != 0 ? formatted("%4d", values[x]) : formatted("%+4d", values[x]);
        line += field + 1 < kGridFields ? ',' : ';';
    }
    lines.put(line);
}

void putCurves(LineWriter& lines, const ToneCurve& curve, size_t curves) {
    for (const CurveKey& key : std::span(kCurveKeys).first(curves)) putCurve(lines, curve, key);
}

bool save(ToneCurve& curve, const Path& path, const LineWriter& lines) {
    if (!path || replaceWhole(path.c_str(), kCurveFiles, lines.text()) != SaveResult::written)
        return false;
    path.copyTo(curve.path);
    return true;
}

}  // namespace

bool saveBkcCurve(ToneCurve& curve, const Path& path) {
    if (!hasChannels(curve, 1)) return false;
    const std::string rule(48, '-');
    LineWriter lines;
    lines.put(rule);
    lines.put("  TONE CURVE file ver2.0");
    lines.put(rule);
    lines.put(std::string("TITLE  = ").append(textIn(curve.title)));
    for (size_t x = 0; x < kLevels; ++x)
        if (flagsOf(curve, 0)[x] != 0)
            lines.put(formatted("TONE   = %3d,%3d", static_cast<int>(x), valuesOf(curve, 0)[x]));
    return save(curve, path, lines);
}

bool saveCmykToneCurve(ToneCurve& curve, const Path& path) {
    if (!hasChannels(curve, 4)) return false;
    LineWriter lines;
    putCurves(lines, curve, kCmykCurves);
    return save(curve, path, lines);
}

bool saveDcc(DccSettings& settings, const Path& path) {
    if (!hasChannels(settings, 6)) return false;
    ToneCurve& curves = *settings.curves;
    LineWriter lines;
    lines.put(std::string("DEV    = ").append(textIn(curves.title)) + ';');
    if (settings.DPIX == settings.DPIY) {
        lines.put(formatted("DPI    = %d;", settings.DPIX));
    } else {
        lines.put(formatted("DPIX   = %d;", settings.DPIX));
        lines.put(formatted("DPIY   = %d;", settings.DPIY));
    }
    lines.put(formatted("WINK   = %d;", settings.WINK));
    lines.put(formatted("LCLM   = %d;", settings.LCLM));
    putCurves(lines, curves, kDccCurves);
    return save(curves, path, lines);
}

}  // namespace ko::tone
