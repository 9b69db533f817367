#!/usr/bin/env bash
# Runs the build for Windows under Wine, with the build for Linux beside it:
#   run.sh LINUX_BUILD WINDOWS_BUILD [W3C_DOCUMENTS]
#   SXML_WINDOWS_LAYOUTS     how many random layouts go through sxml.exe (50)
#   SXML_WINDOWS_MEGABYTES   size of the large document (100); 4400 and more are beyond 4 GiB
set -euo pipefail
linux=$(cd "${1:?usage: run.sh LINUX_BUILD WINDOWS_BUILD [W3C_DOCUMENTS]}" && pwd)
windows=$(cd "${2:?usage: run.sh LINUX_BUILD WINDOWS_BUILD [W3C_DOCUMENTS]}" && pwd)
w3c=${3:+$(cd "$3" && pwd)}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
sources=$(cd "$here/../.." && pwd)
examples=$sources/examples

fail() { printf 'windows: %s\n' "$1" >&2; exit 1; }

# A Windows of its own; one server for all calls. A debugger must not hide a crash.
export WINEPREFIX=$windows/wine WINEDEBUG=-all WINEDLLOVERRIDES='winedbg.exe=d;mscoree=d;mshtml=d'
export LC_ALL=C.UTF-8 WINEPATH=$windows/bin SOURCE_DATE_EPOCH=1795000000
export SXML_WINE=/usr/lib/wine/wine64 SXML_EXE=$windows/bin/sxml.exe SXML_CALLS=$windows/calls
mkdir -p "$WINEPREFIX"
/usr/lib/wine/wineserver -p >/dev/null 2>&1
scratch=$(mktemp -d)
trap '/usr/lib/wine/wineserver -k >/dev/null 2>&1 || true; rm -rf "$scratch"' EXIT
"$SXML_WINE" wineboot -i >/dev/null 2>&1
exe=$here/sxml.sh
rm -f "$SXML_CALLS"
cd "$scratch"

"$exe" --version | grep -q '^  Windows' || fail "sxml.exe does not say that it runs on Windows"

echo "== tables of the module"
python3 "$here/tables_test.py" "$windows/bin/sxml.dll" "$sources/include/sxml/ordinals.def" sxml_host.dll

echo "== test programs"
for program in "$windows"/tests/*_test.exe; do
    "$SXML_WINE" "$program" --gtest_brief=1 </dev/null >log 2>&1 || { cat log; fail "$(basename "$program")"; }
    printf '%s: %s\n' "$(basename "$program")" "$(grep -E '^\[==========\].* ran' log | tr -d '\r')"
done

echo "== examples in C"
for library in sxml.so sxml.dll; do
    case $library in
        sxml.so) run() { "$linux/tests/$1" "$linux/lib/sxml.so" "${@:2}"; } ;;
        sxml.dll) run() { "$SXML_WINE" "$windows/tests/$1.exe" "$windows/bin/sxml.dll" "${@:2}"; } ;;
    esac
    run build_tree "tree-$library.xml" >"tree-$library.txt"
    printf '<l><r><v>1.5</v></r><r><v>2.25</v></r></l>' >sum.xml
    run sum_field sum.xml v | tr -d '\r' >"sum-$library.txt"
done
cmp tree-sxml.so.xml tree-sxml.dll.xml
cmp sum-sxml.so.txt sum-sxml.dll.txt
echo "build_tree and sum_field give what they give on Linux: $(cat sum-sxml.dll.txt)"

echo "== documents of the demo"
for program in orders ledger; do
    cobc -x -I "$examples" -o "write_$program" "$examples/write_$program.cbl"
    "./write_$program" "$program.dat"
done
cp "$examples/custfile.dat" .
compare() { # DATA OPTIONS...
    "$linux/bin/sxml" to-xml "$1" "$1.xml" "${@:2}"
    mv "$1.xml" linux.xml
    "$exe" to-xml "$1" "$1.xml" "${@:2}"
    cmp linux.xml "$1.xml"
    "$exe" from-xml "$1.xml" back.dat "${@:2}"
    cmp "$1" back.dat
    echo "$1: $(stat -c %s "$1.xml") bytes, the same as on Linux, and back"
}
compare custfile.dat --layout "$examples/custfile.cpy"
compare orders.dat --layout "$examples/orders.cpy"
compare ledger.dat --layout "$examples/write_ledger.cbl" --fd LEDGER

echo "== an input is never an output"
cp custfile.dat same.dat
ln same.dat hard.dat
for target in same.dat SAME.DAT '.\same.dat' hard.dat 'Z:'"${PWD//\//\\}"'\same.dat'; do
    ! "$exe" to-xml same.dat "$target" --layout "$examples/custfile.cpy" 2>message || fail "$target was written"
    grep -q 'they are one file' message || { cat message; fail "$target: another message"; }
done
cmp custfile.dat same.dat

echo "== names of Windows"
mkdir -p "$(printf 'a-folder-with-a-long-name/%.0s' {1..15})" layouts 'Größe €'
long=$(printf 'a-folder-with-a-long-name\\%.0s' {1..15}) # ends in a backslash
"$exe" to-xml custfile.dat "${long}custfile.dat.xml" --layout "$examples/custfile.cpy"
"$exe" from-xml "${long}custfile.dat.xml" 'Größe €\Zürich.dat' --layout "$examples/custfile.cpy"
cmp custfile.dat "Größe €/Zürich.dat"
"$exe" tree 'Größe €\none.xml' 2>message && fail "a missing file was read"
grep -q '^sxml: .*Größe €.none.xml' message || { cat message; fail "another message"; }
for device in NUL CON; do
    script -qec "'$exe' to-xml custfile.dat $device --layout '$examples/custfile.cpy'" /dev/null </dev/null >"on-$device"
    [ ! -e "$device" ] || fail "$device became a file"
done
! grep -q '</custfile>' on-NUL || fail "NUL was shown"
grep -q '</custfile>' on-CON || fail "CON shows nothing"
"$exe" cob --version >message 2>&1 && fail "sxml cob is there"
grep -q '^sxml: cob: not available on Windows' message || { cat message; fail "sxml cob: another message"; }

echo "== addresses"
python3 "$here/fetch_test.py" "$linux/bin/sxml" "$exe"

echo "== interrupts"
python3 "$here/interrupt_test.py" "$SXML_WINE" "$SXML_EXE" "$examples/custfile.cpy"

echo "== large files"
size=$((4200 * 1024 * 1024))
truncate -s "$size" large.dat
tail -c 47 custfile.dat >>large.dat
number=$((size / 47 + 1))
"$exe" dump large.dat --layout "$examples/custfile.cpy" --skip "$((size % 47))" --from-record "$number" >dump
grep "^Record $number, byte offset $size, 47 bytes" dump || { cat dump; fail "not the last record"; }
grep -q 'A<B&C' dump || fail "not the bytes of the last record"
rm large.dat
python3 "$here/large_test.py" "$linux/bin/sxml" "$exe" "${SXML_WINDOWS_MEGABYTES:-100}"

echo "== random layouts"
mkdir random
layouts=${SXML_WINDOWS_LAYOUTS:-50}
"$SXML_WINE" "$windows/tests/random_layouts.exe" random "$layouts"
python3 "$here/same_test.py" "$linux/bin/sxml" "$exe" layouts random 1 "$layouts"

if [ -n "$w3c" ]; then
    echo "== documents of the W3C"
    "$linux/tests/compare_documents" "$w3c" linux.verdicts
    "$SXML_WINE" "$windows/tests/compare_documents.exe" "$w3c" windows.verdicts
    cmp linux.verdicts windows.verdicts
else
    echo "NOT RUN: documents of the W3C, which are not here"
fi

echo "== the command's tests, with sxml.exe"
left_out=$(grep -v '^#' "$here/left_out.txt" | cut -d ' ' -f 1 | paste -sd :)
SXML_COMMAND=$exe "$linux/tests/command_test" --gtest_brief=1 "--gtest_filter=-$left_out" </dev/null || fail "command_test"
calls=$(wc -l <"$SXML_CALLS")
[ "$calls" -ge 500 ] || fail "sxml.exe ran only $calls times"
echo "sxml.exe ran $calls times; left out, with the reasons:"
grep -v '^#' "$here/left_out.txt"
