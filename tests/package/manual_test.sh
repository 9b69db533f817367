#!/usr/bin/env bash
# The manual pages as mandoc judges them, and the completions as bash, zsh and fish run them.
#     manual_test.sh BUILD_DIR
set -euo pipefail
build=$(cd "${1:?usage: manual_test.sh BUILD_DIR}" && pwd)
PATH=$build/bin:$PATH
cd "$build/manual"
failed=0
fail() { echo "manual_test: $*" >&2; failed=1; }

mandoc -Tlint -- *.1 *.5 || fail "mandoc has something to say"
subcommands=$(sxml --help | sed -n '/^Subcommands/I,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p')
[ "$(wc -w <<<"$subcommands")" -ge 9 ] || fail "the help lists no subcommands"
for name in $subcommands; do
    [ -s "sxml-$name.1" ] || fail "sxml-$name has no page"
done
# Text from the pages of the documentation has reached the manual.
for text in sxml.1:'temporary name' sxml-to-xml.1:EBCDIC sxml-settings.5:SXML_CREATE_STYLE sxml-tree.1:'EXIT STATUS'; do
    mandoc -Tascii "${text%%:*}" | sed 's/.\x08//g' | tr -s '\n ' ' ' | grep -F -- "${text#*:}" >/dev/null || fail "$text is missing"
done

source ./sxml.bash
complete -p sxml >/dev/null || fail "bash does not know of the completion"
compopt() { :; } # works within a completion only
completes() { # EXPECTED WORD...: the expected words, sorted, are what the last word may become
    local expected=$1
    COMPREPLY=()
    COMP_WORDS=("${@:2}")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _sxml
    local found
    found=$(printf '%s\n' "${COMPREPLY[@]}" | sort | tr '\n' ' ')
    [ "$found" = "$expected " ] || fail "${*:2}: completed to $found, not $expected"
}
completes 'to-xml tree' sxml t
completes '--version' sxml --v
completes '--layout' sxml to-xml --lay
completes '--layout' sxml from-xml in.xml out.dat --lay
completes 'SXML_CREATE_SCHEMA= SXML_CREATE_STYLE=' sxml to-xml --set SXML_CREATE
completes 'fixed free' sxml layout --format f
completes '' sxml tree orders
completes '--help -h' sxml cob -

# zsh completes in an interactive shell only: the function must be one, and be the one for sxml.
if command -v zsh >/dev/null; then
    zsh -n _sxml || fail "zsh does not read the completion"
    # shellcheck disable=SC2016
    found=$(zsh -fc 'autoload -Uz compinit; fpath=($PWD $fpath); compinit -u -D; autoload +X _sxml && print -r -- $_comps[sxml]')
    [ "$found" = _sxml ] || fail "zsh does not know of the completion: $found"
fi
if command -v fish >/dev/null; then
    fish -n sxml.fish || fail "fish does not read the completion"
    found=$(HOME=$(mktemp -d) fish -c 'source sxml.fish
        for line in "sxml to-x" "sxml layout --csv" "sxml layout --format f"; complete -C $line | cut -f 1; end' | tr '\n' ' ')
    [ "$found" = "to-xml --csv fixed free " ] || fail "fish completes to $found"
fi
exit "$failed"
