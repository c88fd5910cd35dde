#!/usr/bin/env bash
# check_static.sh SOURCE COMPONENT CXX SCRATCH: check.sh over a static build of its own, made without optimisation (what
# is looked at is how it links).
set -euo pipefail
source=$1 component=$2 cxx=$3 scratch=$4
declare -A targets=([Foundation]=KXFoundation [UI]=KXFoundationUI)
cmake -S "$source" -B "$scratch/build" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" -DBUILD_SHARED_LIBS=OFF \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DKX_BUILD_TESTS=OFF -DKX_BUILD_EXAMPLES=OFF
cmake --build "$scratch/build" --target "${targets[$component]}"
"$(dirname "$0")/check.sh" "$scratch/build" "$component" "$cxx" "$scratch/consumer"
