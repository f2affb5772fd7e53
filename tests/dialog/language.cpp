#include "tests/dialog/language.h"

#include <windows.h>

#include <map>
#include <vector>

namespace ko::test {
namespace {

using Table = std::map<std::wstring, std::wstring>;  // texts by their keys

Table tableOf(const wchar_t* name, UINT codePage) {
    const HMODULE library = ::GetModuleHandleW(L"KoLink.dll");
    const HRSRC found = ::FindResourceW(library, name, MAKEINTRESOURCEW(23));
    const auto* const bytes =
        static_cast<const char*>(::LockResource(::LoadResource(library, found)));
    const int size = static_cast<int>(::SizeofResource(library, found));
    std::wstring text(static_cast<size_t>(size), L'\0');
    text.resize(static_cast<size_t>(
        ::MultiByteToWideChar(codePage, 0, bytes, size, text.data(), size)));
    Table table;
    for (size_t begin = 0; begin < text.size();) {
        size_t end = text.find_first_of(L"\r\n", begin);
        if (end == text.npos) end = text.size();
        std::wstring line = text.substr(begin, end - begin);
        begin = end + 1;
        const size_t equals = line.find(L" = ");
        if (equals == line.npos) continue;
        std::wstring value = line.substr(equals + 3);
        for (size_t at; (at = value.find(L"<br>")) != value.npos;) value.replace(at, 4, L"\n");
        table[line.substr(line.find_first_not_of(L' '), equals - line.find_first_not_of(L' '))] = value;
    }
    return table;
}

// A pattern in pieces around its %s and %d.
std::vector<std::wstring> piecesOf(const std::wstring& pattern) {
    std::vector<std::wstring> pieces(1);
    for (size_t at = 0; at < pattern.size(); ++at) {
        const wchar_t next = at + 1 < pattern.size() ? pattern[at + 1] : L'\0';
        if (pattern[at] == L'%' && (next == L's' || next == L'd')) {
            pieces.emplace_back();
            ++at;
        } else {
            pieces.back() += pattern[at];
            if (pattern[at] == L'%' && next == L'%') ++at;
        }
    }
    return pieces;
}

// What stands between the pieces; nothing when the text is not of that pattern.
std::vector<std::wstring> filledIn(const std::wstring& text, const std::vector<std::wstring>& pieces) {
    std::vector<std::wstring> parts;
    if (!text.starts_with(pieces[0])) return {};
    size_t at = pieces[0].size();
    for (size_t piece = 1; piece < pieces.size(); ++piece) {
        const bool last = piece + 1 == pieces.size();
        const size_t found = last && text.ends_with(pieces[piece])
                                 ? text.size() - pieces[piece].size()
                                 : text.find(pieces[piece], at);
        if (found == text.npos || found < at) return {};
        parts.push_back(text.substr(at, found - at));
        at = found + pieces[piece].size();
    }
    return at == text.size() ? parts : std::vector<std::wstring>();
}

}  // namespace

std::wstring shown(std::wstring_view japanese) {
    const std::wstring text(japanese);
    if (::GetACP() == 932) return text;
    static const Table from = tableOf(L"TEXT_JAPANESE", 932);
    static const Table to = ::GetACP() == 936 ? tableOf(L"TEXT_CHINESE", 936)
                                              : tableOf(L"TEXT_ENGLISH", 932);
    for (const auto& [key, value] : from)
        if (value == text) return to.at(key);
    for (const auto& [key, value] : from) {
        const std::vector<std::wstring> pieces = piecesOf(value), others = piecesOf(to.at(key));
        if (pieces.size() == 1) continue;
        if (text.size() > 2 && text == pieces[0]) return others[0];
        const auto parts = filledIn(text, pieces);
        if (parts.empty() || pieces[0].size() + pieces.back().size() < 3) continue;
        std::wstring whole = others[0];
        for (size_t part = 0; part < parts.size(); ++part) whole += parts[part] + others[part + 1];
        return whole;
    }
    return text;
}

std::wstring shownKinds(std::wstring_view japaneseFilter) {
    std::wstring kinds, filter = shown(japaneseFilter);
    for (size_t at = 0; at < filter.size();) {
        const size_t bar = filter.find(L'|', at);
        kinds += filter.substr(at, bar - at) + L'\n';
        at = filter.find(L'|', bar + 1) + 1;
    }
    return kinds;
}

}  // namespace ko::test
