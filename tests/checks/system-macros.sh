#!/usr/bin/env bash
# system-macros.sh COMPILER INCLUDE: whoever includes the system's headers has macros for thousands of names. A public
# header that uses one of these names for its own has to put the macro aside, or the host asks for another name than
# the library has. The items of the locale, LOCALE_..., are the system's own where it has them.
set -euo pipefail
headers='windows.h shlobj.h commdlg.h commctrl.h winsock2.h wininet.h shellapi.h ole2.h tlhelp32.h psapi.h'
macros() { "$1" -std=c++20 -DUNICODE -D_UNICODE -w -dM -E -x c++ - | sed -n 's/^#define \([A-Za-z]\w*\).*/\1/p' | sort -u; }
system=$(comm -23 <(printf '#include <%s>\n' $headers | macros "$1" | grep -v ^LOCALE_) <(macros "$1" </dev/null))
for header in "$2"/*.h; do
    names=$(sed 's,//.*,,' "$header" | grep -oE '\b[A-Za-z]\w*\b' | sort -u)
    for name in $(comm -12 <(echo "$names") <(echo "$system")); do
        grep -q "push_macro(\"$name\")" "$header" || { echo "$header: $name is a macro of the system"; failed=1; }
    done
done
exit ${failed-0}
