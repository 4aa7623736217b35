#!/usr/bin/env bash
# Compares what a library exports with a list of it: exported_symbols.sh LIBRARY LIST
# Hosts link to these names. A line of the list is a name as linkers see it; behind that of data stands its size,
# which for the table of a class's virtual functions tells their number. To read it: c++filt < LIST
# With KELVOSGTOOLS_UPDATE_SYMBOLS=1 in the environment the list is written anew instead.
set -euo pipefail

library=$1
list=$2

exported() {
    nm --dynamic --defined-only --print-size --format=posix "$library" |
        while read -r name type _ size; do
            case $type in
                T | W) echo "$name" ;;
                *) echo "$name $((16#$size))" ;;
            esac
        done | LC_ALL=C sort
}

if [ "${KELVOSGTOOLS_UPDATE_SYMBOLS:-}" = 1 ]; then
    exported >"$list"
    exit 0
fi

if ! differences=$(diff --unified=0 --label listed --label exported "$list" <(exported)); then
    echo "The library no longer exports what $list says (-) or exports more (+):" >&2
    c++filt <<<"$differences" >&2
    exit 1
fi

# A list that is compared without a fault may still be a bad one.
strangers=$(cut -d' ' -f1 "$list" | c++filt |
    grep -vE '^((vtable|typeinfo|typeinfo name|VTT) for |(non-)?virtual thunk to )?KelvOsgTools::' ||
    true)
internals=$(cut -d' ' -f1 "$list" | c++filt | grep -E 'KelvOsgTools::detail::' || true)
if [ -n "$strangers$internals" ]; then
    echo "These are not to be exported:" "$strangers" "$internals" >&2
    exit 1
fi
