#!/bin/sh
# SPDX-License-Identifier: MIT
# Makes the GIF workloads in the folder $1. Needs ffmpeg and gifsicle.
set -eu
out=$1
mkdir -p "$out"
ff() { ffmpeg -hide_banner -loglevel error -y -threads 1 "$@"; }
local_palettes='split[a][b];[a]palettegen=stats_mode=single[p];[b][p]paletteuse=new=1:dither=sierra2_4a'
one_palette='split[a][b];[a]palettegen[p];[b][p]paletteuse=dither=none:diff_mode=rectangle'

# photo: dithered and noisy, every frame full size with its own palette.
ff -f lavfi -i "mandelbrot=s=480x270:r=15,noise=alls=6:allf=t" -frames:v 60 -filter_complex "$local_palettes" "$out/photo.gif"
# clip: flat colours, one palette, frames cropped and made transparent where nothing changed.
ff -f lavfi -i "testsrc2=s=480x270:r=15:d=4" -frames:v 60 -filter_complex "$one_palette" "$out/clip.raw.gif"
gifsicle -O3 "$out/clip.raw.gif" -o "$out/clip.gif"
# icon: a small animation that disposes to the background.
ff -f lavfi -i "testsrc2=s=64x64:r=12:d=1" -frames:v 12 -filter_complex "$one_palette" "$out/icon.raw.gif"
gifsicle -O2 --disposal=background "$out/icon.raw.gif" -o "$out/icon.gif"
# large: full-HD dithered frames with their own palettes.
ff -f lavfi -i "mandelbrot=s=1920x1080:r=10" -frames:v 20 -filter_complex "$local_palettes" "$out/large.gif"
rm -f "$out"/*.raw.gif
