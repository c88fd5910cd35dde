#!/bin/sh
# SPDX-License-Identifier: MIT
# Makes the photo workload in the folder $1: a noisy picture of 4000 x 3000 pixels, and the same as a JPEG.
# Needs ImageMagick.
set -eu
out=$1
mkdir -p "$out"
convert -seed 7 -size 4000x3000 plasma:fractal -attenuate 0.2 +noise Gaussian -depth 8 "$out/photo.ppm"
convert "$out/photo.ppm" -quality 90 "$out/photo.jpg"
