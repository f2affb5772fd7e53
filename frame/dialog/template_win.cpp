#include "frame/dialog/template.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <span>
#include <string>

#include "frame/dialog/windows.h"
#include "frame/state.h"

namespace ko::dialog {
namespace {

using ByteSpan = std::span<const std::byte>;

ByteSpan resource(const wchar_t* name) noexcept {
    const HRSRC found = ::FindResourceW(module(), name, reinterpret_cast<const wchar_t*>(RT_DIALOG));
    if (!found) return {};
    const void* const data = ::LockResource(::LoadResource(module(), found));
    return {static_cast<const std::byte*>(data), data ? ::SizeofResource(module(), found) : 0};
}

// Where the font of an extended template stands in it.
struct FontPlace {
    std::wstring face;
    BYTE charset = DEFAULT_CHARSET;
    size_t begin = 0, end = 0;  // of the face, its terminator included
};

WORD wordAt(ByteSpan bytes, size_t at) noexcept {
    WORD value = 0;
    if (at + sizeof value <= bytes.size()) std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

std::wstring textAt(ByteSpan bytes, size_t& at) {
    std::wstring text;
    for (; at + 2 <= bytes.size(); at += 2) {
        const WORD character = wordAt(bytes, at);
        if (character == 0) break;
        text += static_cast<wchar_t>(character);
    }
    at += 2;
    return text;
}

FontPlace findFont(ByteSpan bytes) {
    constexpr size_t kStyle = 12, kMenu = 26;
    FontPlace font;
    const bool extended = wordAt(bytes, 0) == 1 && wordAt(bytes, 2) == 0xffff;
    if (!extended || !(wordAt(bytes, kStyle) & DS_SETFONT)) return font;
    size_t at = kMenu;
    for (int text = 0; text < 3; ++text) {  // menu, class, caption
        if (wordAt(bytes, at) == 0xffff) at += 4;  // by number
        else textAt(bytes, at);
    }
    constexpr size_t kSizeWeightItalic = 5;
    at += kSizeWeightItalic;
    if (at >= bytes.size()) return font;
    font.charset = static_cast<BYTE>(bytes[at++]);
    font.begin = at;
    font.face = textAt(bytes, at);
    font.end = std::min(at, bytes.size());
    return font;
}

// A letter that fonts of the script have and others lack; 0 for scripts that every font has.
wchar_t typicalLetter(BYTE charset) noexcept {
    return charset == SHIFTJIS_CHARSET ? L'\x3042' : charset == GB2312_CHARSET ? L'\x4eec' : L'\0';
}

bool shows(HDC dc, const std::wstring& face, wchar_t letter) noexcept {
    const HFONT font = ::CreateFontW(-12, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0,
                                     0, 0, FF_DONTCARE, face.c_str());
    const HGDIOBJ before = ::SelectObject(dc, font);
    WORD glyph = 0xffff;
    ::GetGlyphIndicesW(dc, &letter, 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS);
    ::SelectObject(dc, before);
    ::DeleteObject(font);
    return glyph != 0xffff;
}

struct Choice {
    BYTE charset;
    int score = -1;
    wchar_t face[LF_FACESIZE] = {};
};

int CALLBACK consider(const LOGFONTW* font, const TEXTMETRICW* metrics, DWORD type, LPARAM parameter) {
    auto& best = *reinterpret_cast<Choice*>(parameter);
    if (font->lfFaceName[0] == L'@' || type != TRUETYPE_FONTTYPE) return 1;  // @: for upright lines
    // A font of this script alone has its forms of the characters that others share.
    const DWORD scripts =
        reinterpret_cast<const NEWTEXTMETRICEXW*>(metrics)->ntmFontSig.fsCsb[0];
    const DWORD other = best.charset == SHIFTJIS_CHARSET ? FS_CHINESESIMP : FS_JISJAPAN;
    const int score = ((scripts & other) == 0 ? 2 : 0) +
                      ((font->lfPitchAndFamily & 3) == VARIABLE_PITCH ? 1 : 0);
    if (score > best.score) {
        best.score = score;
        std::copy_n(font->lfFaceName, LF_FACESIZE, best.face);
    }
    return 1;
}

// A face that shows what the template's own does not; nothing when that does, or when none can.
std::optional<std::wstring> betterFace(const FontPlace& font) {
    const wchar_t letter = typicalLetter(font.charset);
    if (letter == L'\0' || font.face.empty()) return std::nullopt;
    const HDC dc = ::CreateCompatibleDC(nullptr);
    Choice best{font.charset, -1, {}};
    if (!shows(dc, font.face, letter)) {
        LOGFONTW wanted{};
        wanted.lfCharSet = font.charset;
        ::EnumFontFamiliesExW(dc, &wanted, consider, reinterpret_cast<LPARAM>(&best), 0);
    }
    ::DeleteDC(dc);
    if (best.score < 0) return std::nullopt;
    return std::wstring(best.face);
}

}  // namespace

namespace {

// A template whose texts will be translated gets a font of their script.
std::optional<std::wstring> faceOfLanguage(FontPlace& font) {
    if (font.charset != SHIFTJIS_CHARSET || !processState().languageTable) return std::nullopt;
    const bool chinese = userEncoding() == Encoding::gb2312;
    font.charset = static_cast<BYTE>(chinese ? GB2312_CHARSET : ANSI_CHARSET);
    font.face = chinese ? L"SimSun" : L"MS Shell Dlg";
    return font.face;
}

}  // namespace

Template::Template(const wchar_t* name) {
    const ByteSpan original = resource(name);
    bytes_.assign(original.begin(), original.end());
    FontPlace font = findFont(original);
    auto face = faceOfLanguage(font);
    if (auto better = betterFace(font)) face = std::move(better);
    if (!face) return;
    bytes_[font.begin - 1] = std::byte{font.charset};
    // The controls begin at the next whole double word behind the face.
    const auto aligned = [](size_t at) { return (at + 3) / 4 * 4; };
    const auto* const letters = reinterpret_cast<const std::byte*>(face->c_str());
    bytes_.resize(font.begin);
    bytes_.insert(bytes_.end(), letters, letters + (face->size() + 1) * sizeof(wchar_t));
    bytes_.resize(aligned(bytes_.size()));
    const size_t controls = std::min(aligned(font.end), original.size());
    bytes_.insert(bytes_.end(), original.begin() + static_cast<std::ptrdiff_t>(controls),
                  original.end());
}

const DLGTEMPLATE* Template::get() const noexcept {
    return bytes_.empty() ? nullptr : reinterpret_cast<const DLGTEMPLATE*>(bytes_.data());
}

}  // namespace ko::dialog
