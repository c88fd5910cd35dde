#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_static.sh SOURCE CXX SCRATCH: check.sh, for each library, over a static build of its own, made without
# optimisation (what is looked at is how it links).
set -euo pipefail
source=$1 cxx=$2 scratch=$3
cmake -S "$source" -B "$scratch/build" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" -DBUILD_SHARED_LIBS=OFF \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DKX_BUILD_TESTS=OFF -DKX_BUILD_EXAMPLES=OFF
cmake --build "$scratch/build" --target KXFoundation KXFoundationUI KXFoundationTesting
for component in Foundation UI Testing; do
    "$(dirname "$0")/check.sh" "$scratch/build" $component "$cxx" "$scratch/$component"
done
