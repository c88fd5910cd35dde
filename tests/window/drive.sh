#!/usr/bin/env bash
# drive.sh GALLERY SCRATCH: uses the gallery's real window on an X server of its own, by mouse and keyboard, and compares
# what stands on the screen with the off-screen drawing of the same page: every pixel must be the same.
set -euo pipefail
gallery=$1 scratch=$2
rm -rf "$scratch"
mkdir -p "$scratch/config"
export XDG_CONFIG_HOME=$scratch/config LC_ALL=C.UTF-8
unset WAYLAND_DISPLAY

started() {
    exec 3<>"$scratch/number" || exit 1
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 2>"$scratch/xvfb.log" &
    server=$!
    trap 'kill $program $server 2>/dev/null || true' EXIT
    program=
    local number
    for _ in $(seq 100); do
        number=$(cat "$scratch/number")
        [ -z "$number" ] || break
        sleep 0.1
    done
    export DISPLAY=:$number
    opened --page language
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

is_still() {
    local before after
    before=$(switches)
    sleep 3
    after=$(switches)
    [ "$before" = "$after" ] || { echo "a still window woke $((after - before)) times"; exit 1; }
    echo "no turn in 3 seconds"
}
switches() { awk '/ctxt_switches/ {sum += $2} END {print sum}' /proc/$program/status; }

"$gallery" --headless "$scratch/pictures" --scale 1 >/dev/null
started
click 736 145
looks_like "English, by a click" "$scratch/pictures/language-en.png"
click 443 145
looks_like "Arabic, by a click" "$scratch/pictures/language-ar.png"
click 390 130  # German, in the mirrored row
looks_like "German, by a click" "$scratch/pictures/language-de.png"

# The keys go on from what was clicked last, the third language behind the side list: back to the list's third page.
pages=$(ls "$scratch"/pictures/*-de.png | wc -l)
for _ in $(seq "$pages"); do keys shift+Tab; done
[ "$(differs "$scratch/pictures/language-de.png")" != 0 ] || { echo "where the keys go does not show"; exit 1; }
keys space
click 190 700  # nothing stands there; the mark of the keys goes
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
ask_to_close
wait $program
opened
[ "$(size)" = 800x600 ] || { echo "the window forgot its size"; exit 1; }
click 400 590  # nothing stands there
looks_like "the window of the last time" "$scratch/dark.png"
echo "the window works as the pictures say"
