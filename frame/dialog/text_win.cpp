#include "frame/dialog/text_win.h"

#include <algorithm>

#include "frame/dialog/windows.h"
#include "frame/state.h"

namespace ko::dialog {
namespace {

constexpr UINT kShiftJis = 932, kGbk = 936;

UINT codePageOf(Encoding encoding) noexcept {
    return encoding == Encoding::gb2312 ? kGbk : kShiftJis;
}

std::wstring toWide(std::string_view text, UINT codePage) {
    if (text.empty()) return {};
    const int size = static_cast<int>(text.size());
    const int length = ::MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<size_t>(std::max(length, 0)), L'\0');
    ::MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), length);
    return wide;
}

std::string fromWide(std::wstring_view wide, UINT codePage, BOOL* lost) {
    if (wide.empty()) return {};
    // UTF-8 as the system's code page has a place for everything, and takes neither of these.
    const bool utf8 = codePage == CP_UTF8 || (codePage == CP_ACP && ::GetACP() == CP_UTF8);
    const DWORD flags = utf8 ? 0 : WC_NO_BEST_FIT_CHARS;
    BOOL* const used = utf8 ? nullptr : lost;
    const int size = static_cast<int>(wide.size());
    const int length =
        ::WideCharToMultiByte(codePage, flags, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<size_t>(std::max(length, 0)), '\0');
    ::WideCharToMultiByte(codePage, flags, wide.data(), size, text.data(), length, nullptr, used);
    return text;
}

// The short form of a name that exists; empty when there is none.
std::wstring shortForm(const std::wstring& path) {
    wchar_t brief[MAX_PATH];
    const DWORD length = ::GetShortPathNameW(path.c_str(), brief, MAX_PATH);
    return length < MAX_PATH ? std::wstring(brief, length) : std::wstring();
}

}  // namespace

std::wstring wideText(std::string_view shiftJis) { return toWide(shiftJis, kShiftJis); }
std::wstring widePath(std::string_view path) { return toWide(path, CP_ACP); }
std::string shiftJisText(std::wstring_view wide) { return fromWide(wide, kShiftJis, nullptr); }

std::optional<std::string> systemPath(std::wstring_view wide) {
    BOOL lost = FALSE;
    std::string path = fromWide(wide, CP_ACP, &lost);
    if (!lost) return path;
    // A name with characters of another code page can still be reached by its short form, a file
    // that is not there yet by its folder's.
    const std::wstring whole(wide);
    std::wstring brief = shortForm(whole);
    if (const size_t end = whole.find_last_of(L"\\/"); brief.empty() && end != whole.npos) {
        brief = shortForm(whole.substr(0, end + 1));
        if (!brief.empty()) brief.append(whole, end + 1);
    }
    if (brief.empty()) return std::nullopt;
    lost = FALSE;
    path = fromWide(brief, CP_ACP, &lost);
    if (lost) return std::nullopt;
    return path;
}

std::wstring filled(std::string_view pattern, std::wstring_view text) {
    std::wstring wide = wideText(pattern);
    if (const size_t at = wide.find(L"%s"); at != std::wstring::npos) wide.replace(at, 2, text);
    return wide;
}

std::wstring wideText(std::string_view text, Encoding encoding) {
    return toWide(text, codePageOf(encoding));
}

std::wstring wideTranslated(std::string_view japanese) {
    const std::string key(japanese);
    const char* const text = translated(key.c_str());
    return wideText(text, text == key.c_str() ? Encoding::shiftJis : userEncoding());
}

std::wstring wideTranslatedRecord(std::string_view text) {
    const std::string key(text);
    const char* const known = translated(key.c_str());
    return known == key.c_str() ? wideRecordText(text) : wideText(known, userEncoding());
}

std::wstring wideRecordText(std::string_view text) {
    const bool gb2312 = userEncoding() == Encoding::gb2312 && couldBeGb2312(text);
    return wideText(text, gb2312 ? Encoding::gb2312 : Encoding::shiftJis);
}

RecordText recordText(std::wstring_view wide) {
    for (const Encoding encoding : {userEncoding(), Encoding::shiftJis}) {
        RecordText record{fromWide(wide, codePageOf(encoding), nullptr), encoding};
        if (wideRecordText(record.text) == wide) return record;
    }
    return {fromWide(wide, codePageOf(userEncoding()), nullptr), userEncoding()};
}

std::wstring filled(std::wstring_view pattern, std::initializer_list<std::wstring_view> texts) {
    std::wstring whole;
    for (const std::wstring_view text : texts) {
        const size_t at = std::min(pattern.find(L"%s"), pattern.find(L"%d"));
        if (at == pattern.npos) break;
        whole.append(pattern.substr(0, at)).append(text);
        pattern.remove_prefix(at + 2);
    }
    return whole.append(pattern);
}

}  // namespace ko::dialog
