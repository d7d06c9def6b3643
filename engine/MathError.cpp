// SPDX-License-Identifier: MIT
#include "MathError.h"

#include "Helpers_String.h"
#include "Outcome.h"

#include <cstdio>

int checkMathError(const char* name, char* out) {
    const int code = merror;
    if (code == 0) return 0;
    merror = 0;
    const char* text = mathErrorTexts[code >= 0 && code < 7 ? code : 0];
    if (!out) return code;
    if (name)
        snprintf(out, TEXT_SIZE, "** ERROR: '%.1000s' %s **\n", StrShown(name).c_str(), text);
    else
        snprintf(out, TEXT_SIZE, "** ERROR: %s **\n", text);
    return code;
}
