/* Takes the address of every exported function through its declaration in the headers, so that
 * it compiles only when each is declared and links only when each is exported. */
#include <stdio.h>

#include "kolink.h"
#include "kolink/calib_dialog.h"
#include "kolink/colour_pick_dialog.h"
#include "kolink/device_link_dialog.h"
#include "kolink/profile_dialog.h"
#include "kolink/profile_selection_dialog.h"
#include "kolink/tone_dialog.h"

typedef void (*Function)(void);

int main(void) {
#define FUNCTION(name) {#name, (Function)name},
    static const struct {
        const char *name;
        Function address;
    } functions[] = {
#include "functions.inc"
    };
    size_t at, missing = 0;
    for (at = 0; at < sizeof functions / sizeof functions[0]; ++at)
        if (!functions[at].address) {
            printf("not ok - %s has no address\n", functions[at].name);
            ++missing;
        }
    if (missing == 0) printf("ok - all %lu functions are declared and linked\n", (unsigned long)at);
    return missing != 0;
}
