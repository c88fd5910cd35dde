#!/bin/sh
# SPDX-License-Identifier: MIT
# expect.sh PROGRAM FILE: fails unless the program, in an empty home and in English, prints what the file holds.
set -eu
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
env -i PATH="$PATH" HOME="$home" LANG=en_US.UTF-8 TZ=UTC "$1" >"$home/printed"
diff -u "$2" "$home/printed"
