// The exported functions of the tone dialogs.
#include "kolink/tone_dialog.h"

#include "frame/boundary.h"
#include "tone/dialog/tone_dialog.h"

using namespace ko;

extern "C" int32_t jKoToneBkcCurveDlg(HWND owner, char* path) {
    return atBoundary(false, [&] { return tone::editFile(owner, tone::kBkcEditor, path); });
}

extern "C" int32_t jKoToneCmykToneCurveDlg(HWND owner, char* path) {
    return atBoundary(false, [&] { return tone::editFile(owner, tone::kCmykEditor, path); });
}

extern "C" int32_t jKoToneDccDlg(HWND owner, char* path) {
    return atBoundary(false, [&] { return tone::editFile(owner, tone::kDccEditor, path); });
}
