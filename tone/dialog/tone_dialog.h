// The tone dialogs as windows.
#pragma once

#define WIN32_LEAN_AND_MEAN
#undef NOMINMAX
#define NOMINMAX
#include <windows.h>

#include "tone/dialog/tone_editor.h"

namespace ko::tone {

// Runs the dialog of that kind on the file that path names; see kolink/tone_dialog.h.
bool editFile(HWND owner, const ToneEditorKind& kind, char* path);

}  // namespace ko::tone
