# shellcheck shell=bash
# Pictures of what a Windows program shows: sourced, not run, after wine.sh. The caller sets -e.
#
#   screens_start COUNT                       an X server that nobody sees, with that many screens
#   screens_stop                              ends it
#   screen_run NUMBER COMMAND WORDS…          runs a Windows program on a screen, in Wine's current prefix
#   screen_picture NUMBER PID FILE [OTHER]    waits for a finished picture of a screen, other than OTHER if that is
#                                             given; both in the PPM format
#   crop_picture FILE PICTURE                 makes the picture of the window alone, or fails
#
# 96 pixels per inch, as a Windows screen has.

screens_display=
screens_pid=
# Room for a window that stands low: Wine 10 tells a program that any virtual desktop has 1024x768.
screens_size=800x700
# Without the task bar, which Wine 9 shows at the lower edge.
screens_seen=800x660+0+0

screens_start() {
  local screens=() i output
  for ((i = 0; i < $1; i++)); do screens+=(-screen "$i" "${screens_size}x24"); done
  # -noreset: without it, the server starts anew, and refuses whoever comes then, each time its last client has left.
  exec {output}< <(exec Xvfb -displayfd 1 -dpi 96 -noreset -nolisten tcp "${screens[@]}" 2>/dev/null)
  screens_pid=$!
  if ! read -r screens_display <&"$output"; then
    printf 'pictures: Xvfb does not start\n' >&2
    return 1
  fi
  exec {output}<&-
}

screens_stop() {
  [ -z "$screens_pid" ] || kill "$screens_pid" 2>/dev/null || true
  screens_pid=
}

screen_run() {
  DISPLAY=:$screens_display.$1 wine_quiet wine explorer "/desktop=screen$1,$screens_size,x11" "${@:2}"
}

# shows_window FILE: and not a bare desktop. An empty window has few colours, too.
shows_window() { [ "$(identify -format %k "$1")" -gt 16 ]; }

# The picture is finished when two in a row are the same. Fails when the program with that PID has ended before, and when
# there is no picture to be had: import says so, but not always by its exit status.
screen_picture() {
  local number=$1 pid=$2 file=$3 other=${4-} last=$3.last outcome=1
  rm -f "$file" "$last"
  while kill -0 "$pid" 2>/dev/null; do
    DISPLAY=:$screens_display.$number import -silent -window root -crop "$screens_seen" "ppm:$file" || break
    [ -s "$file" ] || break
    if [ -e "$last" ] && cmp -s "$file" "$last" && shows_window "$file" &&
      { [ -z "$other" ] || ! cmp -s "$file" "$other"; }; then
      outcome=0
      break
    fi
    mv "$file" "$last"
  done
  rm -f "$last"
  return "$outcome"
}

crop_picture() { convert "$1" -trim +repage -strip -define png:compression-level=9 "$2" && [ -s "$2" ]; }
