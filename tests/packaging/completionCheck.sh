#!/usr/bin/env bash
# completionCheck.sh ROOT BIN: what bash offers behind a few beginnings of commands.
set -u
root=$1
PATH=$2:$PATH
source "$root/packaging/completion.bash"
cd "$root/samples/thermometer" || exit 1
failures=0

# offers EXPECTED FUNCTION WORD...: the last word is the one in hand; those behind "@" follow it.
offers() {
    local expected=$1 function=$2
    shift 2
    COMP_WORDS=("$@")
    for COMP_CWORD in "${!COMP_WORDS[@]}"; do [ "${COMP_WORDS[COMP_CWORD]}" != @ ] || break; done
    COMP_WORDS=("${COMP_WORDS[@]:0:COMP_CWORD}" "${COMP_WORDS[@]:COMP_CWORD+1}")
    COMP_CWORD=$((COMP_CWORD - 1))
    "$function"
    if [ "${COMPREPLY[*]}" != "$expected" ]; then
        echo "$*: offers '${COMPREPLY[*]}', not '$expected'"
        failures=$((failures + 1))
    fi
}

offers "-rebuild" _ostmake ostmake -re @
offers "-tarndir -templatesfile -template -type" _ostmake ostmake -t @ thermometer.vkp
offers "Debug MSP430 Release" _ostmake ostmake -config "" @ thermometer.vkp
offers "Release" _ostmake ostmake thermometer.vkp -config R @
offers "app" _ostmake ostmake -project a @ thermometer.vkp
offers "" _ostmake ostmake -config R @ missing.vkp
offers "symbols" _ostquery ostquery sy @
offers "--json" _ostquery ostquery package --j @
offers "Debug" _ostquery ostquery order thermometer.vkp --config D @
exit $((failures > 0))
