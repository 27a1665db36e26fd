# shellcheck shell=bash
# Pictures of what a Windows program shows: sourced, not run, after wine.sh. The caller sets -e.
#
#   screens_start COUNT                       starts an X server with that many invisible screens
#   screens_stop                              ends it
#   screen_run NUMBER COMMAND WORDS…          runs a Windows program on a screen, in Wine's current prefix
#   screen_picture NUMBER PID FILE [OTHER]    waits for a finished picture of a screen that differs from OTHER, if that
#                                             is given; both files have the PPM format
#   crop_picture FILE PICTURE                 cuts the picture to the window, or fails
#
# The screens have 96 pixels per inch, as Windows has.

screens_display=
screens_pid=
# Large enough for a low window: Wine 10 reports 1024x768 to programs, whatever the size of the virtual desktop.
screens_size=800x700
# Without the task bar that Wine 9 shows at the lower edge.
screens_seen=800x660+0+0

screens_start() {
  local screens=() i output
  for ((i = 0; i < $1; i++)); do screens+=(-screen "$i" "${screens_size}x24"); done
  # Without -noreset, the server resets when its last client leaves, and refuses clients that come in that moment.
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

# shows_window FILE: fails for an empty desktop and for an empty window, which have few colours.
shows_window() { [ "$(identify -format %k "$1")" -gt 16 ]; }

# The picture is finished when two pictures in a row are equal. Fails when the program with that PID ends before, and
# when import makes no picture, which its exit status does not always show.
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
