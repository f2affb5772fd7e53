// Loading and unloading of the DLL.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "frame/state.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* processEnds) {
    if (reason == DLL_PROCESS_ATTACH) {
        ko::attach();
        return TRUE;
    }
    // When the process ends, other threads may have died in the middle of an allocation, and the
    // system takes everything back by itself.
    if (reason == DLL_PROCESS_DETACH && !processEnds) ko::detach();
    return FALSE;
}
