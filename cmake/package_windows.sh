#!/usr/bin/env bash
# Makes the archive for Windows and tries it under Wine:  package_windows.sh WINDOWS_BUILD LIBRARIES TARGET
set -euo pipefail
windows=$(cd "$1" && pwd) libraries=$(cd "$2" && pwd)
mkdir -p "$3"
target=$(cd "$3" && pwd)
sources=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:.*=//p' "$windows/CMakeCache.txt")
name=sxml-$version-windows-x86_64
scratch=$(mktemp -d)
trap '/usr/lib/wine/wineserver -k >/dev/null 2>&1 || true; rm -rf "$scratch"' EXIT
tree=$scratch/$name

mkdir -p "$tree"/{bin,include/sxml,lib,licences}
cp "$windows"/bin/{sxml.exe,sxml.dll,sxml_host.dll} "$tree/bin/"
x86_64-w64-mingw32-strip "$tree"/bin/*
# Headers: for programs; those in host/ for authors of other hosts.
cp "$sources"/include/sxml/{error_codes.h,host.h,ordinals.def,text_span.h,xml_api.h,xml_parser_api.h} "$tree/include/sxml/"
cp -r "$sources/host" "$tree/include/sxml/host"
rm -rf "$tree"/include/sxml/host/{runtime,entities}
find "$tree/include/sxml/host" -type f ! -name '*.h' -delete
x86_64-w64-mingw32-dlltool --input-def "$windows/fsi/xml/sxml.def" --output-lib "$tree/lib/libsxml.dll.a"
cp "$windows/host/runtime/libsxml_host.dll.a" "$windows/fsi/xml/libsxml_api.a" \
    "$windows/fsi/xml/sxml.def" "$windows/fsi/xml/host_services.def" "$tree/lib/"
cp "$libraries"/licences/* "$tree/licences/"
cp /usr/share/doc/gcc-mingw-w64-base/copyright "$tree/licences/gcc-runtime.txt"
cp /usr/share/doc/mingw-w64-common/copyright "$tree/licences/mingw-w64.txt"
cp -r "$sources"/{README.md,CHANGELOG.md,LICENSE,docs,examples} "$tree/"
rm -f "$target/$name.zip"
(cd "$scratch" && zip -qr "$target/$name.zip" "$name")

# As a user has it after unpacking: in another place, with nothing else installed.
mkdir "$scratch/unpacked"
python3 -m zipfile -e "$target/$name.zip" "$scratch/unpacked"
mv "$scratch/unpacked/$name" "$scratch/a place"
export WINEPREFIX=$scratch/wine WINEDEBUG=-all WINEDLLOVERRIDES='winedbg.exe=d;mscoree=d;mshtml=d' LC_ALL=C.UTF-8
cd "$scratch"
sxml() { /usr/lib/wine/wine64 "$scratch/a place/bin/sxml.exe" "$@" 2>>wine.log; }
sxml --version | grep -q "^sxml $version" || { cat wine.log; exit 1; }
sxml to-xml "a place/examples/custfile.dat" custfile.xml --layout "a place/examples/custfile.cpy"
sxml from-xml custfile.xml back.dat --layout "a place/examples/custfile.cpy"
cmp "a place/examples/custfile.dat" back.dat
ls "$target/$name.zip"
