#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check.sh BUILD COMPONENT CXX SCRATCH: installs BUILD's COMPONENT, moves the installed tree elsewhere, and builds and
# runs a program against it, once through CMake, once through pkg-config and the plain compiler: the one beside this
# script or, for Testing, the tests of examples/testing and, through CMake alone, of examples/first-application.
set -euo pipefail
build=$1 component=$2 cxx=$3 scratch=$4
here=$(cd "$(dirname "$0")" && pwd)
folder=$here/program sources=$component.cpp program=consumer
declare -A parts=([Foundation]="Foundation" [UI]="Foundation UI" [Testing]="Foundation UI Testing")
version=$(cat "$here/../../VERSION")
declare -A modules=([Foundation]=kxfoundation [UI]=kxfoundation-ui [Testing]="kxfoundation-testing gtest_main")
declare -A answers=([Foundation]="Harbour 15 $version" [UI]="alignment is intercepted" [Testing]="[  PASSED  ] 3 tests.")
if [ "$component" = Testing ]; then
    folder=$(cd "$here/../../examples/testing" && pwd) sources="Greeting.cpp GreetingTest.cpp" program=greeting_test
fi

installed() {
    rm -rf "$scratch"
    mkdir -p "$scratch"
    local part
    for part in ${parts[$component]}; do
        cmake --install "$build" --prefix "$scratch/installed-here" --component "$part" >"$scratch/install.log"
    done
    mv "$scratch/installed-here" "$scratch/moved-there"
}

through_cmake() {
    cmake -S "$folder" -B "$scratch/cmake" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" -DCOMPONENT="$component" \
        -DCMAKE_PREFIX_PATH="$scratch/moved-there" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF
    cmake --build "$scratch/cmake"
    says "$scratch/cmake/$program"
}

through_pkg_config() {
    PKG_CONFIG_PATH=$(dirname "$(find "$scratch/moved-there" -name kxfoundation.pc)")
    export PKG_CONFIG_PATH
    cd "$folder"
    # shellcheck disable=SC2046,SC2086
    "$cxx" -std=c++20 -DGREETING_FOLDER="\"$folder/\"" $sources -o "$scratch/plain" \
        $(pkg-config --cflags --libs ${modules[$component]}) \
        -Wl,-rpath,"$(pkg-config --variable=libdir kxfoundation)"
    says "$scratch/plain"
}

says() {
    local want=${answers[$component]} got
    got=$(env -u DISPLAY -u WAYLAND_DISPLAY "$1" | tail -n 1)
    [ "$got" = "$want" ] || { echo "$1 says \"$got\", not \"$want\""; exit 1; }
    ! ldd "$1" | grep -E 'libKXFoundation.*(not found|installed-here)' || exit 1
}

no_folder_is_named() {
    ! grep -rIl -e "$scratch" -e "$build" "$scratch/moved-there" || { echo "these files name a build folder"; exit 1; }
}

# Each shared library carries the version of its ABI.
names_are_right() {
    local library name abi=${version%%.*}
    [ "$abi" != 0 ] || abi=${version%.*}
    find "$scratch/moved-there" -name 'libKXFoundation*.so' | while read -r library; do
        name=$(readelf -d "$library" | sed -n 's/.*SONAME.*\[\(.*\)\]/\1/p')
        [ "$name" = "$(basename "$library").$abi" ] || { echo "$library is named $name"; exit 1; }
        [ -e "$(dirname "$library")/$name" ] || { echo "$name is not installed"; exit 1; }
    done
}

# Both components together install every module that was built; Foundation alone at least the desktop's services.
modules_are_there() {
    local built wanted=kx-desktop.so
    [ "$component" = Foundation ] || wanted=$(find "$build"/lib* -name 'kx-*.so' -printf '%f\n' | sort -u)
    for built in $wanted; do
        [ -n "$(find "$scratch/moved-there" -path "*/KXFoundation-*/$built")" ] ||
            { echo "$built is not installed"; exit 1; }
    done
}

installed
names_are_right
modules_are_there
no_folder_is_named
through_cmake
through_pkg_config
if [ "$component" = Testing ]; then
    rm -rf "$scratch/cmake"
    folder=$here/../../examples/first-application program=harbour_test answers[Testing]=passed
    through_cmake
fi
