#!/usr/bin/env bash
# Builds what a program for Windows is linked with, for which Debian has no packages: Expat and PCRE2 from
# the sources of Debian's own packages, GoogleTest from the package that has its sources. CLI11 and
# nlohmann-json are headers; they are copied, as the system's folder of headers is not for Windows.
#   windows_dependencies.sh FOLDER      FOLDER: an absolute path; the result is FOLDER/prefix
# What this version of the script has made before is kept. Exit status 75: the sources cannot be fetched.
set -euo pipefail

readonly NO_MIRROR=75 folder=${1:?usage: windows_dependencies.sh FOLDER}
readonly prefix=$folder/prefix cmake_files=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
made_by=$(cat "${BASH_SOURCE[0]}" "$cmake_files/windows-toolchain.cmake" | sha256sum)

[ "$(cat "$folder/made_by" 2>/dev/null)" != "$made_by" ] || exit 0
rm -rf "$folder"
mkdir -p "$prefix/include" "$folder/lists/partial" "$folder/cache/archives/partial"
cd "$folder"

# Sources come from the mirrors that this system installs from, through lists of our own.
readonly keys=/usr/share/keyrings/debian-archive-keyring.gpg
apt-get indextargets --format "deb-src [signed-by=$keys] \$(REPO_URI) \$(RELEASE) \$(COMPONENT)" \
    'Created-By: Packages' | grep " $(. /etc/os-release && echo "$VERSION_CODENAME")" | sort -u >sources.list
apt=(apt-get -qq -o "Dir::Etc::SourceList=$folder/sources.list" -o Dir::Etc::SourceParts=/dev/null
    -o "Dir::State::Lists=$folder/lists" -o "Dir::Cache=$folder/cache" -o APT::Sandbox::User=
    -o Acquire::Retries=2)

# The newest version, or the release's own where a mirror does not provide the newest.
fetch() {
    local release
    release=$(. /etc/os-release && echo "$VERSION_CODENAME")
    "${apt[@]}" source --download-only "$1" >fetch.log 2>&1 && return
    echo "windows: the newest source of $1 is not to be had; taking that of the release" >&2
    "${apt[@]}" source --download-only "$1/$release" >fetch.log 2>&1
}

{ "${apt[@]}" update >fetch.log 2>&1 && fetch expat && fetch pcre2; } || {
    tail -n 3 fetch.log >&2
    echo "windows: Debian's mirror does not give the sources of Expat and PCRE2" >&2
    exit "$NO_MIRROR"
}
for name in expat pcre2; do # apt has checked them
    dpkg-source --no-check -x "$name"_*.dsc "$name" >/dev/null 2>&1
done
# Debian builds it with autoconf; the template for CMake leaves a number out, and no DTD would be read.
sed -i 's/#cmakedefine XML_DTD/#define XML_DTD 1/' expat/expat/expat_config.h.cmake

build() { # SOURCES OPTIONS...
    local name; name=$(basename "$1")
    cmake -S "$1" -B "build/$name" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$cmake_files/windows-toolchain.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DBUILD_SHARED_LIBS=OFF "${@:2}" >"$name.log"
    cmake --build "build/$name" >>"$name.log"
    cmake --install "build/$name" >>"$name.log"
}
build expat/expat -DEXPAT_SHARED_LIBS=OFF -DEXPAT_BUILD_TOOLS=OFF -DEXPAT_BUILD_EXAMPLES=OFF -DEXPAT_BUILD_TESTS=OFF
build pcre2 -DPCRE2_BUILD_PCRE2GREP=OFF -DPCRE2_BUILD_TESTS=OFF
build /usr/src/googletest -DBUILD_GMOCK=OFF
cp -r /usr/include/CLI /usr/include/nlohmann "$prefix/include/"
mkdir -p "$prefix/share/cmake"
for package in CLI11 nlohmann_json; do
    cp -r "$(dirname "$(find /usr/lib /usr/share -name "${package}Config.cmake" 2>/dev/null | head -n 1)")" \
        "$prefix/share/cmake/$package"
done
# Licences of what is linked in, for the archive.
mkdir -p "$prefix/licences"
cp expat/expat/COPYING "$prefix/licences/expat.txt"
cp pcre2/LICENCE "$prefix/licences/pcre2.txt"
cp /usr/share/doc/libcli11-dev/copyright "$prefix/licences/cli11.txt"
cp /usr/share/doc/nlohmann-json3-dev/copyright "$prefix/licences/nlohmann-json.txt"
echo "$made_by" >made_by
