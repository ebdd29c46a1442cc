#!/usr/bin/env bash
# Usage: xvfb_screenshot.sh ZVRUN PNG_CHECK DIR
set -euo pipefail
zvrun="$1"; check="$2"; dir="$3"
work="$(mktemp -d)"
trap 'kill "$xvfb" 2>/dev/null || true; rm -rf "$work"' EXIT
# Xvfb picks a free display and writes its number on descriptor 3.
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
xvfb=$!
for _ in $(seq 50); do [ -s "$work/display" ] && break; sleep 0.1; done
[ -s "$work/display" ] || { echo "Xvfb did not start"; exit 1; }
export DISPLAY=":$(cat "$work/display")"
export QT_QPA_PLATFORM=xcb
cd "$work"
timeout 30 "$zvrun" --events "$dir/form.events" --dump-windows --screenshot "$work/shots" "$dir/form.zvc" > "$work/out"
cat "$work/out"
line="$(grep '"window":"PARENT"' "$work/out")"
w="$(sed -E 's/.*"client_width":([0-9]+).*/\1/' <<<"$line")"
h="$(sed -E 's/.*"client_height":([0-9]+).*/\1/' <<<"$line")"
read -r size colours < <("$check" "$work/shots/PARENT.png")
echo "screenshot $size with $colours colours; window ${w}x${h}"
[ "$size" = "${w}x${h}" ] || { echo "the screenshot isn't the window's size"; exit 1; }
[ "$colours" -ge 3 ] || { echo "the screenshot is blank"; exit 1; }
