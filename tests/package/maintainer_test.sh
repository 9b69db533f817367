#!/usr/bin/env bash
# Who is the maintainer of the package: what the environment, git or -D say.
#     maintainer_test.sh SOURCE_DIR
set -euo pipefail
source=$(cd "${1:?usage: maintainer_test.sh SOURCE_DIR}" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cat >"$scratch/CMakeLists.txt" <<TEXT
cmake_minimum_required(VERSION 3.22)
project(sxml VERSION 1.0 LANGUAGES NONE)
set(CMAKE_SOURCE_DIR $scratch)
file(COPY $source/LICENSE DESTINATION $scratch)
include($source/cmake/package.cmake)
file(WRITE \${CMAKE_BINARY_DIR}/contact "\${CPACK_PACKAGE_CONTACT}")
TEXT

maintainer() { # PATTERN [-D...] [NAME=VALUE...]: configures again in the same folder
    local pattern=$1 options=()
    shift
    while [[ ${1:-} == -D* ]]; do options+=("$1") && shift; done
    env -u DEBEMAIL -u DEBFULLNAME HOME="$scratch" XDG_CONFIG_HOME="$scratch" GIT_CONFIG_NOSYSTEM=1 "$@" \
        cmake -S "$scratch" -B "$scratch/build" "${options[@]}" >"$scratch/log" 2>&1 || { cat "$scratch/log" && exit 1; }
    [[ $(cat "$scratch/build/contact") == $pattern ]] || {
        echo "maintainer_test: $(cat "$scratch/build/contact") is not $pattern" >&2
        exit 1
    }
}

maintainer 'The sxml authors <nobody@*>'
maintainer 'The sxml authors <a@b.example>' DEBEMAIL=a@b.example
maintainer 'A B <a@b.example>' DEBEMAIL=a@b.example DEBFULLNAME='A B'
maintainer 'C <c@d.example>' GIT_CONFIG_COUNT=2 GIT_CONFIG_KEY_0=user.name GIT_CONFIG_VALUE_0=C \
    GIT_CONFIG_KEY_1=user.email GIT_CONFIG_VALUE_1=c@d.example
maintainer 'E <e@f.example>' '-DSXML_MAINTAINER=E <e@f.example>' DEBEMAIL=a@b.example
