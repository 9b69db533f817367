#!/usr/bin/env bash
# Installs a build, moves the installed tree, and uses it as its users do: the command, COBOL programs,
# C programs. The folder's name has a blank and a comma in it.
#     install_test.sh BUILD_DIR
set -euo pipefail
build=$(cd "${1:?usage: install_test.sh BUILD_DIR}" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
unset LD_LIBRARY_PATH SXML_MODULE PKG_CONFIG_PATH

fail() { echo "install_test: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$scratch/first" >/dev/null
prefix="$scratch/moved, with blanks"
mv "$scratch/first" "$prefix"
PATH=$prefix/bin:$PATH
mkdir "$scratch/work"
cd "$scratch/work"

echo "== the libraries: names, and where they look for others"
for name in host cob records; do
    library=$prefix/lib/libsxml_$name.so
    LC_ALL=C readelf -d "$library" | grep -q "SONAME.*\[libsxml_$name\.so\.1\]" || fail "SONAME of $library"
done
for file in "$prefix"/bin/sxml "$prefix"/lib/*.so "$prefix"/lib/sxml/*.so; do
    paths=$(LC_ALL=C readelf -d "$file" | sed -n 's/.*R.*PATH.*\[\(.*\)\]/\1/p')
    [ -z "${paths##\$ORIGIN*}" ] || fail "$file looks for libraries in $paths"
    ! LC_ALL=C ldd "$file" | grep 'not found' || fail "$file lacks libraries"
done

echo "== the command"
examples=$prefix/share/sxml/examples
sxml to-xml "$examples/custfile.dat" custfile.xml --layout "$examples/custfile.cpy"
xmllint --noout --valid custfile.xml
sxml from-xml custfile.xml back.dat --layout "$examples/custfile.cpy"
cmp "$examples/custfile.dat" back.dat

echo "== a COBOL program, also after the installation has moved"
samples=$prefix/share/sxml/examples/cobol
sxml cob "$samples/make_data.cbl" -I "$samples" -o make_data
export DD_ORDERS=orders.xml DD_CUSTOMERS=customers.xml DD_CHANGES=changes.xml DD_LEDGER=ledger.xml
./make_data
xmllint --noout --valid customers.xml
mv "$prefix" "$scratch/again"
rm customers.xml
LD_LIBRARY_PATH=$scratch/again/lib ./make_data
xmllint --noout --valid customers.xml

echo "== C programs, by pkg-config and by CMake (which cannot link with a folder that has a comma)"
prefix=$scratch/for\ C
examples=$prefix/share/sxml/examples
mv "$scratch/again" "$prefix"
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
flags=$(pkg-config --cflags --libs sxml-api)
eval "cc -o build_tree '$examples/build_tree.c' $flags -Wl,-rpath,'$prefix/lib'" 2>cc.log || fail "$(cat cc.log)"
./build_tree "$(pkg-config --variable=module sxml-api | sed 's/\\//g')" tree.xml >tree.txt
xmllint --noout tree.xml
flags=$(pkg-config --cflags --libs sxml-records)
eval "cc -Wall -Werror -o list_balances '$examples/list_balances.c' $flags -Wl,-rpath,'$prefix/lib'" 2>cc.log ||
    fail "$(cat cc.log)"
for file in "$examples/custfile.dat" custfile.xml; do
    [ "$(./list_balances "$examples/custfile.cpy" "$file" balance | tail -1)" = "sum: -7645 hundredths" ] ||
        fail "list_balances does not sum $file"
done
cat >CMakeLists.txt <<'TEXT'
cmake_minimum_required(VERSION 3.22)
project(user C)
find_package(sxml 1.0 REQUIRED)
add_executable(sum_field ${EXAMPLES}/sum_field.c)
target_link_libraries(sum_field PRIVATE sxml::api sxml::records)
file(WRITE ${CMAKE_BINARY_DIR}/module "${SXML_MODULE}")
TEXT
cmake -S . -B user -D CMAKE_PREFIX_PATH="$prefix" -D EXAMPLES="$examples" >cmake.log 2>&1 || fail "$(cat cmake.log)"
cmake --build user >cmake.log 2>&1 || fail "$(cat cmake.log)"
user/sum_field "$(cat user/module)" custfile.xml balance | grep -qx '2 records, sum of balance: [-0-9.]*' ||
    fail "sum_field does not sum"

echo "== Python"
PYTHONPATH=$prefix/lib/python3/dist-packages /usr/bin/python3 -B - "$examples" <<'TEXT' || fail "Python"
import sys, sxml
with sxml.open(sys.argv[1] + "/custfile.dat", sys.argv[1] + "/custfile.cpy") as customers:
    assert [record["cust_name"] for record in customers] == ["Smith", "A<B&C"]
TEXT
echo "install_test: passed"
