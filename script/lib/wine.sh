# shellcheck shell=bash
# Wine prefixes for the scripts: sourced, not run. The caller sets -e.
#
#   wine_lock FOLDER               keeps other scripts from the prefixes in FOLDER until this script ends
#   wine_make FOLDER [PREFIX…]     makes FOLDER/win64, FOLDER/win32 and FOLDER/winxp, each once
#   wine_small_disks FOLDER COMMAND…
#                                  becomes COMMAND, with a small drive S for each prefix where this machine allows it;
#                                  returns within that COMMAND
#   wine_start FOLDER [PREFIX…]    starts their servers, which then stay until the script ends
#
# Whoever needs one Windows only names it; winxp is made from win32 and stands behind it. No window is shown but in a
# virtual desktop, and no display is needed.

export WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml,winemenubuilder.exe=
# In the locale C, Wine makes no files with names beyond ASCII.
case ${LC_ALL:-${LC_CTYPE:-${LANG:-C}}} in C | POSIX) export LC_ALL=C.UTF-8 ;; esac

# Wine's programs pass their output on to servers that outlive them: a reader of that output would wait for those.
wine_quiet() { "$@" </dev/null >/dev/null 2>&1; }

# wine_make_one PREFIX: a complete prefix carries the stamp of its recipe; any other is made anew.
wine_make_one() {
  local prefix=$1 arch=win32 stamp
  [ "${prefix##*/}" != win64 ] || arch=win64
  stamp="$(wine --version) $(cksum <"${BASH_SOURCE[0]}")"
  if [ "$(cat "$prefix/stamp" 2>/dev/null)" = "$stamp" ]; then
    return 0
  fi
  printf 'wine: making the prefix %s\n' "${prefix##*/}"
  WINEPREFIX=$prefix wine_quiet wineserver -k || true
  rm -rf "$prefix"
  mkdir -p "${prefix%/*}"
  export WINEPREFIX=$prefix
  if [ "${prefix##*/}" = winxp ]; then
    # Windows XP is 32-bit Windows with another version number.
    cp -a "${prefix%/*}/win32" "$prefix"
    rm "$prefix/stamp"
    wine_quiet winecfg -v winxp
  else
    # No display, or a prefix that is made where there is one would open a window.
    DISPLAY='' WINEARCH=$arch wine_quiet wineboot -i
    # A program that crashes shall end, not wait for somebody to press a button.
    wine_quiet wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f
    wine_quiet wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
  fi
  wine_keep_home "$prefix"
  # The registry is on disk only when the server has ended.
  wine_quiet wineserver -w
  unset WINEPREFIX
  wine_fonts "$prefix"
  printf '%s\n' "$stamp" >"$prefix/stamp"
}

# wine_keep_home PREFIX: folders of its own for the user, where Wine puts links to the home folder: the tests delete
# folders, and a fault in what they test must not get there by the drive's own folders.
wine_keep_home() {
  local link
  find "$1/drive_c/users" -type l -print0 | while IFS= read -r -d '' link; do
    rm "$link"
    mkdir "$link"
  done
}

# wine_fonts PREFIX: Debian's Wine does not look where Debian's fonts-wine puts its fonts, and shows dialogs in whatever
# the machine has instead. It does look into the Windows folder.
wine_fonts() {
  local fonts=/usr/share/wine/fonts
  [ ! -d "$fonts" ] || ln -sf "$fonts"/*.ttf "$fonts"/*.fon "$1/drive_c/windows/Fonts/"
}

wine_all=(win64 win32 winxp)

# One script at a time: the end of one would end the other's servers.
wine_lock() {
  mkdir -p "$1"
  exec {wine_lock}>"$1/lock"
  if ! flock -n "$wine_lock"; then
    printf 'wine: waiting for another script that uses %s\n' "$1"
    flock "$wine_lock"
  fi
}

wine_make() {
  local folder=$1 prefix
  shift
  for prefix in "${@:-${wine_all[@]}}"; do
    wine_make_one "$folder/$prefix"
  done
}

# wine_small_disks FOLDER COMMAND…: the disks of 40 MB, which a test may fill, are mounted for COMMAND and what it starts
# alone: however that ends, nothing stays mounted. KWA_SMALL_DISK names the drive; it is empty where that is not allowed.
wine_small_disks() {
  local folder=$1 as_root=() as_user=() prefix
  shift
  [ -z "${KWA_SMALL_DISK+known}" ] || return 0
  export KWA_SMALL_DISK=
  # Who is not root is it in a user namespace, for the mounts.
  if [ "$(id -u)" -ne 0 ]; then
    as_root=(--map-root-user)
    as_user=(unshare --map-user="$(id -u)" --map-group="$(id -g)")
  fi
  for prefix in "${wine_all[@]}"; do mkdir -p "$folder/$prefix-disk"; done
  wine_quiet unshare "${as_root[@]}" --mount "${as_user[@]}" true || return 0
  # shellcheck disable=SC2016 # expanded there
  exec unshare "${as_root[@]}" --mount bash -c '
    folder=$1 KWA_SMALL_DISK=S:/
    for disk in "$folder"/*-disk; do mount -t tmpfs -o size=40m tmpfs "$disk" || KWA_SMALL_DISK=; done
    exec "${@:2}"' small_disks "$folder" "${as_user[@]}" "$@"
}

wine_servers=()

wine_start() {
  local folder=$1 prefix
  shift
  trap wine_stop EXIT
  trap 'exit 130' INT TERM
  for prefix in "${@:-${wine_all[@]}}"; do
    prefix=$folder/$prefix
    wine_servers+=("$prefix")
    # The server of a script that was killed does not see this one's small disks.
    WINEPREFIX=$prefix wine_quiet wineserver -k || true
    ln -sfn "$prefix-disk" "$prefix/dosdevices/s:"
    WINEPREFIX=$prefix wine_quiet wineserver -p {wine_lock}>&-
    # Also the processes that Wine starts with its first program and its first window: the reader of a test's output
    # would have to wait for those that the test started.
    WINEPREFIX=$prefix wine_quiet wine start /wait cmd /c exit {wine_lock}>&-
    # The process of the desktop stays a second longer than the last program with a window, and so would a test. This
    # one stays, unseen.
    WINEPREFIX=$prefix wine_quiet wine notepad {wine_lock}>&- &
  done
}

wine_stop() {
  local prefix
  for prefix in "${wine_servers[@]}"; do
    WINEPREFIX=$prefix wine_quiet wineserver -k || true
  done
  wine_servers=()
}
