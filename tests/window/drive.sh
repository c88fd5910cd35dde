#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# drive.sh GALLERY SCRATCH: uses the gallery's real window on an X server of its own, by mouse and keyboard, and compares
# what stands on the screen with the off-screen drawing of the same page: every pixel must be the same. First the window
# as a user has it, then every page of the side list in the gallery's steady world, by mouse and again by keys.
set -euo pipefail
gallery=$1 scratch=$(realpath -m "$2")  # a relative one would name no folder of the XDG base directories
for tool in Xvfb xdotool xprop xsettingsd import compare identify; do
    command -v $tool >/dev/null || { echo "skipped: there is no $tool"; exit 0; }
done
names=($(sed -n 's/^ *{"\([a-z-]*\)", "page\..*/\1/p' "$(dirname "$0")/../../examples/gallery/Page.cpp"))
rm -rf "$scratch"
mkdir -p "$scratch/config"
export XDG_CONFIG_HOME=$scratch/config LC_ALL=C.UTF-8
unset WAYLAND_DISPLAY

started() {
    exec 3<>"$scratch/number" || exit 1
    Xvfb -displayfd 3 -screen 0 1440x900x24 -nolisten tcp 2>"$scratch/xvfb.log" &
    server=$!
    trap 'kill $program $settings $server 2>/dev/null || true' EXIT
    program= settings=
    local number
    for _ in $(seq 100); do
        number=$(cat "$scratch/number")
        [ -z "$number" ] || break
        sleep 0.1
    done
    export DISPLAY=:$number
}

# opened ARGUMENTS: the gallery runs and its window has the keys.
opened() {
    "$gallery" "$@" &
    program=$!
    window=$(timeout 20 xdotool search --sync --onlyvisible --pid $program | tail -1)
    xdotool windowfocus --sync "$window"
}

click() { xdotool mousemove --window "$window" "$1" "$2" click 1; }
keys() { xdotool key --window "$window" "$@"; }
tabs() { for _ in $(seq "$1"); do keys "${2:-Tab}"; done; }
click_nothing() { click 190 700; }  # the mark of the keys goes, the keys stay

# differs PICTURE: the number of pixels in which the window is not the picture.
differs() {
    import -window "$window" "$scratch/seen.png"
    compare -metric AE "$scratch/seen.png" "$1" null: 2>&1 || true
}

# looks_like WHAT PICTURE: waits for it, as drawing takes its time.
looks_like() {
    local count
    for _ in $(seq 50); do
        count=$(differs "$2")
        if [ "$count" = 0 ]; then
            echo "same pixels: $1"
            return
        fi
        sleep 0.1
    done
    cp "$scratch/seen.png" "$scratch/failed.png"
    echo "$1: $count pixels differ from $2 (seen: $scratch/failed.png)"
    exit 1
}

# What a window manager sends when the user closes a window; there is none here.
ask_to_close() {
    python3 - "$window" <<'END'
import ctypes, sys
x11 = ctypes.CDLL("libX11.so.6")
x11.XOpenDisplay.restype = x11.XInternAtom.restype = ctypes.c_void_p
display = ctypes.c_void_p(x11.XOpenDisplay(None))
atom = lambda name: x11.XInternAtom(display, name, 0)
window = int(sys.argv[1])
client_message = 33
event = (ctypes.c_long * 24)(client_message, 0, 0, 0, window, atom(b"WM_PROTOCOLS"), 32, atom(b"WM_DELETE_WINDOW"))
x11.XSendEvent(display, ctypes.c_ulong(window), 0, ctypes.c_long(0), event)
x11.XSync(display, 0)
END
}

closed() {
    ask_to_close
    wait $program
}

is_still() {
    local before after
    before=$(switches)
    sleep 10
    after=$(switches)
    [ "$before" = "$after" ] || { echo "a still window woke $((after - before)) times"; exit 1; }
    echo "no turn in 10 seconds"
}
switches() { awk '/ctxt_switches/ {sum += $2} END {print sum}' /proc/$program/status; }

for page in language application; do
    "$gallery" --headless "$scratch/pictures" --scale 1 --page $page >/dev/null
done
"$gallery" --headless "$scratch/steady" --scale 1 --steady >/dev/null
"$gallery" --headless "$scratch/larger" --scale 1.25 --steady --page calendar >/dev/null
[ "${#names[@]}" = "$(ls "$scratch"/steady/*-en.png | wc -l)" ] || { echo "the list of pages is not understood"; exit 1; }
started
opened --page language
click 736 145
looks_like "English, by a click" "$scratch/pictures/language-en.png"
click 443 145
looks_like "Arabic, by a click" "$scratch/pictures/language-ar.png"
click 390 130  # German, in the mirrored row
looks_like "German, by a click" "$scratch/pictures/language-de.png"

# The keys go on from what was clicked last, the third language behind the side list: back to the list's third page.
tabs ${#names[@]} shift+Tab
[ "$(differs "$scratch/pictures/language-de.png")" != 0 ] || { echo "where the keys go does not show"; exit 1; }
keys space
click_nothing
looks_like "the third page, by keys" "$scratch/pictures/application-de.png"
is_still

xdotool windowsize --sync "$window" 800 600
size() { import -window "$window" png:- | identify -format %wx%h -; }
[ "$(size)" = 800x600 ] || { echo "the window kept its size"; exit 1; }
keys --clearmodifiers Tab
kill -0 $program || { echo "the gallery ended"; exit 1; }

click 754 38  # dark
sleep 1
import -window "$window" "$scratch/dark.png"
[ "$(identify -format '%[fx:p{400,590}.r<0.3]' "$scratch/dark.png")" = 1 ] || { echo "the window stayed light"; exit 1; }
closed
opened
[ "$(size)" = 800x600 ] || { echo "the window forgot its size"; exit 1; }
click 400 590  # nothing stands there
looks_like "the window of the last time" "$scratch/dark.png"
closed

# ---- every page, in the steady world ---------------------------------------------------------------------------

steady() { echo "$scratch/steady/$1-en.png"; }

# Where the side list has its page number $1 (from 0): the list begins at 60 and ends at 708.
click_page() { click 100 $((71 + $1 * 648 / ${#names[@]})); }

# What a person does on the page for the picture: where the button is, and its number on the page from 1.
declare -A button=([language]="736 145" [cache]="287 584" [album]="303 278" [image-cache]="296 121" [toast]="284 161")
declare -A number=([language]=4 [cache]=5 [album]=1 [image-cache]=1 [toast]=3)

used_by_mouse() {
    click_page $1
    [ -z "${button[$2]:-}" ] || { settles; click ${button[$2]}; }
    looks_like "$2, by mouse" "$(steady $2)"
}

# The keys are at the page's line in the side list before and after.
used_by_keys() {
    keys space
    if [ -n "${number[$2]:-}" ]; then
        settles
        tabs $((${#names[@]} - 1 - $1 + ${number[$2]}))
        click_nothing
        keys space
    else
        click_nothing
    fi
    looks_like "$2, by keys" "$(steady $2)"
    [ -z "${number[$2]:-}" ] || tabs $((${#names[@]} - 1 - $1 + ${number[$2]})) shift+Tab
}

# settles: waits until the window has looked the same for a moment.
settles() {
    local count=1
    while [ "$count" != 0 ]; do
        import -window "$window" "$scratch/before.png"
        sleep 0.2
        count=$(differs "$scratch/before.png")
    done
}

# A toast has the mouse for itself, and its time does not pass here: its page comes last.
opened --steady
for i in "${!names[@]}"; do [ "${names[i]}" = toast ] || used_by_mouse $i "${names[i]}"; done
for i in "${!names[@]}"; do [ "${names[i]}" != toast ] || used_by_mouse $i toast; done
closed

opened --steady --page ${names[1]}  # so that the first page is chosen, too
for i in "${!names[@]}"; do
    keys Tab
    [ "${names[i]}" = toast ] && toast=$i && continue
    used_by_keys $i "${names[i]}"
done
tabs $((${#names[@]} - 1 - toast)) shift+Tab
used_by_keys $toast toast
closed

# A window too small for its page: the wheel and the keys move it, and back it is as it was.
opened --steady --page cache
xdotool windowsize --sync "$window" 800 400
settles
import -window "$window" "$scratch/top.png"
for way in "click 5|click 4" "key End|key Home" "key Next|key Prior"; do
    xdotool mousemove --window "$window" 600 300 ${way%|*}
    settles
    [ "$(differs "$scratch/top.png")" != 0 ] || { echo "${way%|*} did not move the page"; exit 1; }
    xdotool mousemove --window "$window" 600 300 ${way#*|}
    looks_like "the page's top, by ${way#*|}" "$scratch/top.png"
done
closed
# The desktop's scale changes while the window is open: its settings manager comes with one, changes it and goes, then
# the resources say one.
opened --steady --page calendar
xdotool windowmove --sync "$window" 0 0
click_nothing
larger=$scratch/larger/calendar-en.png
looks_like "scale 1" "$(steady calendar)"
echo "Xft/DPI $((120 * 1024))" >"$scratch/settings"
xsettingsd -c "$scratch/settings" 2>"$scratch/xsettingsd.log" &
settings=$!
looks_like "scale 1.25, as a settings manager comes" "$larger"
echo "Xft/DPI $((96 * 1024))" >"$scratch/settings"
kill -HUP $settings
looks_like "scale 1, as it changes its mind" "$(steady calendar)"
resources() { xprop -root -f RESOURCE_MANAGER 8s -set RESOURCE_MANAGER "$1"; }
resources "Xft.dpi: 120"
kill $settings
looks_like "scale 1.25, as only the resources are left" "$larger"
resources "Xft.dpi: 96"
looks_like "scale 1, as the resources change" "$(steady calendar)"
closed
echo "the window works as the pictures say"
