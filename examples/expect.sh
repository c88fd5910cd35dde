#!/bin/sh
# SPDX-License-Identifier: MIT
# expect.sh FILE PROGRAM [ARGUMENT]...: fails unless the program, in an empty home and in English, prints what the file
# holds; a status other than 0 is printed too.
set -eu
expected=$1
shift
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
env -i PATH="$PATH" HOME="$home" LANG=en_US.UTF-8 TZ=UTC LSAN_OPTIONS="${LSAN_OPTIONS:-}" "$@" >"$home/printed" || echo "(status $?)" >>"$home/printed"
diff -u "$expected" "$home/printed"
