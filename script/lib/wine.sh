# shellcheck shell=bash
# Wine prefixes for the scripts: sourced, not run. The caller sets -e.
#
#   wine_make FOLDER null|shown [PREFIX…]   makes FOLDER/win64, FOLDER/win32 and FOLDER/winxp, each once
#   wine_small_disks FOLDER                 a small drive S for each, where this machine allows it
#   wine_start FOLDER [PREFIX…]             starts their servers, which then stay until the script ends
#
# Whoever needs one Windows only names it; winxp is made from win32 and stands behind it.
# "null" shows no window and needs no display; "shown" is for pictures and for people, and needs DISPLAY.

export WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml,winemenubuilder.exe=
# In the locale C, Wine makes no files with names beyond ASCII.
case ${LC_ALL:-${LC_CTYPE:-${LANG:-C}}} in C | POSIX) export LC_ALL=C.UTF-8 ;; esac

# Wine's programs pass their output on to servers that outlive them: a reader of that output would wait for those.
wine_quiet() { "$@" </dev/null >/dev/null 2>&1; }

# wine_make_one PREFIX ARCH null|shown: a complete prefix carries the stamp of its recipe; any other is made anew.
wine_make_one() {
  local prefix=$1 arch=$2 graphics=$3
  local stamp
  stamp="$(wine --version) $graphics $(cksum <"${BASH_SOURCE[0]}")"
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
    if [ "$graphics" = null ]; then
      wine_quiet wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
    fi
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

wine_make() {
  local folder=$1 graphics=$2 prefix
  shift 2
  # One script at a time: the end of one would end the other's servers. Held until the script ends.
  mkdir -p "$folder"
  exec {wine_lock}>"$folder/lock"
  if ! flock -n "$wine_lock"; then
    printf 'wine: waiting for another script that uses %s\n' "$folder"
    flock "$wine_lock"
  fi
  for prefix in "${@:-${wine_all[@]}}"; do
    if [ "$prefix" = win64 ]; then
      wine_make_one "$folder/$prefix" win64 "$graphics"
    else
      wine_make_one "$folder/$prefix" win32 "$graphics"
    fi
  done
}

wine_servers=()
wine_disks=()

wine_start() {
  local folder=$1 prefix
  shift
  trap wine_stop EXIT
  trap 'exit 130' INT TERM
  for prefix in "${@:-${wine_all[@]}}"; do
    prefix=$folder/$prefix
    wine_servers+=("$prefix")
    # Fails when the server of a script that was killed still runs; that one serves as well.
    WINEPREFIX=$prefix wine_quiet wineserver -p {wine_lock}>&- || true
    # Also the processes that Wine starts with its first program and its first window: the reader of a test's output
    # would have to wait for those that the test started.
    WINEPREFIX=$prefix wine_quiet wine start /wait cmd /c exit {wine_lock}>&-
    # The process of the desktop stays a second longer than the last program with a window, and so would a test. This
    # one stays, unseen.
    if [[ "$(cat "$prefix/stamp")" == *" null "* ]]; then
      WINEPREFIX=$prefix wine_quiet wine notepad {wine_lock}>&- &
    fi
  done
}

# wine_small_disks FOLDER: a drive S of 40 MB for each prefix, which a test may fill, named in KWA_SMALL_DISK. Without the
# right to mount there is none.
wine_small_disks() {
  local folder=$1 prefix disk
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo -n)
  for prefix in "${wine_all[@]}"; do
    disk=$folder/$prefix-disk
    mkdir -p "$disk"
    mountpoint -q "$disk" || wine_quiet "${as_root[@]}" mount -t tmpfs -o "size=40m,uid=$(id -u)" tmpfs "$disk" || return 0
    wine_disks+=("$disk")
    ln -sfn "$disk" "$folder/$prefix/dosdevices/s:"
  done
  export KWA_SMALL_DISK=S:/
}

wine_stop() {
  local prefix disk
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo -n)
  for prefix in "${wine_servers[@]}"; do
    WINEPREFIX=$prefix wine_quiet wineserver -k || true
  done
  for disk in "${wine_disks[@]}"; do
    wine_quiet "${as_root[@]}" umount -l "$disk" || true
  done
  wine_servers=()
  wine_disks=()
}
