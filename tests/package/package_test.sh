#!/usr/bin/env bash
# Looks at the Debian package with lintian, installs it in an empty root, tries it, and removes it again; unpacks the
# archive and tries that. The libraries that the package needs are the system's. dpkg needs root.
#     package_test.sh FOLDER      with one .deb and one .tar.gz in it
set -euo pipefail
folder=$(cd "${1:?usage: package_test.sh FOLDER}" && pwd)
deb=$(echo "$folder"/*.deb)
archive=$(echo "$folder"/*.tar.gz)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
unset LD_LIBRARY_PATH SXML_MODULE

fail() { echo "package_test: $*" >&2; exit 1; }
try() { # COMMAND OF SXML...: a customer file there and back, in the current folder
    "$@" to-xml examples/custfile.dat custfile.xml --layout examples/custfile.cpy
    "$@" from-xml custfile.xml back.dat --layout examples/custfile.cpy
    cmp examples/custfile.dat back.dat
    xmllint --noout --valid custfile.xml
}

echo "== lintian"
lintian --fail-on error "$deb" >"$scratch/lintian" 2>&1 || fail "lintian: $(grep -v '^W:' "$scratch/lintian")"

echo "== the archive, unpacked in a folder"
mkdir "$scratch/unpacked"
tar -C "$scratch/unpacked" -xzf "$archive"
tree=$(echo "$scratch"/unpacked/*)
cp -r "$tree/share/sxml/examples" "$scratch"
(cd "$scratch" && try "$tree/bin/sxml")

echo "== the commands of docs/install.md, apt only as far as it changes nothing"
page=$(cd "$(dirname "$0")/../.." && pwd)/docs/install.md
mkdir -p "$scratch/page/build" "$scratch/page/opt"
ln -s "$folder" "$scratch/page/build/package"
commands=0
while read -r command; do
    case $command in
        apt-get*) command="$command --simulate" ;;
        tar*) command=${command/ -C \/opt/ -C opt} ;;
    esac
    (cd "$scratch/page" && eval "$command") >"$scratch/page.log" 2>&1 || fail "$command: $(cat "$scratch/page.log")"
    commands=$((commands + 1))
done < <(grep -E '^(apt-get|tar) .*build/package/' "$page")
[ "$commands" = 2 ] || fail "$page has $commands commands that install a package, not 2"
[ -x "$(echo "$scratch"/page/opt/*/bin/sxml)" ] || fail "the archive is not in opt"

echo "== the package, in a root of its own"
dpkg-deb -f "$deb" Depends | tr ',' '\n' | sed 's/^ *//'
root=$scratch/root
mkdir -p "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/info" "$root/var/log" "$root/tmp"
touch "$root/var/lib/dpkg/status" "$root/var/lib/dpkg/available"
dpkg --root="$root" --force-depends --force-script-chrootless --install "$deb" >"$scratch/dpkg.log" 2>&1 ||
    fail "$(cat "$scratch/dpkg.log")"
mkdir "$scratch/work"
cp -r "$root/usr/share/sxml/examples" "$scratch/work"
(cd "$scratch/work" && try "$root/usr/bin/sxml")
MANPATH=$root/usr/share/man man -w sxml-to-xml >/dev/null || fail "man does not find the pages"
dpkg --root="$root" --force-script-chrootless --purge sxml >"$scratch/dpkg.log" 2>&1 || fail "$(cat "$scratch/dpkg.log")"
left=$(cd "$root" && find . -path ./var -prune -o -type f -print)
[ -z "$left" ] || fail "left after removing the package: $left"
echo "package_test: passed"
