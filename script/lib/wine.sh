# shellcheck shell=bash
# Wine prefixes for the scripts: sourced, not run. The caller sets -e.
#
#   wine_lock FOLDER               locks the prefixes in FOLDER for this script until it ends
#   wine_make FOLDER [PREFIX…]     makes FOLDER/win64, FOLDER/win32 and FOLDER/winxp, each once
#   wine_small_disks FOLDER COMMAND…
#                                  replaces this process by COMMAND, with a small drive S for each prefix if this
#                                  machine allows it; in that COMMAND, returns at once
#   wine_start FOLDER [PREFIX…]    starts the servers of the prefixes, which run until the script ends
#
# The default is all three prefixes. winxp is made from win32, so it comes after it. Programs show windows in a virtual
# desktop only, and need no display otherwise.

export WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml,winemenubuilder.exe=
# In the locale C, Wine creates no files with names beyond ASCII.
case ${LC_ALL:-${LC_CTYPE:-${LANG:-C}}} in C | POSIX) export LC_ALL=C.UTF-8 ;; esac

# Programs under Wine pass their output streams on to servers that run longer than they do. A reader of the output would
# wait for these servers.
wine_quiet() { "$@" </dev/null >/dev/null 2>&1; }

# wine_make_one PREFIX: makes a prefix unless it is complete, which a stamp with the version of Wine and of this file
# shows.
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
    # To programs, Windows XP is a 32-bit Windows with another version number.
    cp -a "${prefix%/*}/win32" "$prefix"
    rm "$prefix/stamp"
    wine_quiet winecfg -v winxp
  else
    # With a display, wineboot would open a window.
    DISPLAY='' WINEARCH=$arch wine_quiet wineboot -i
    # A program that crashes must end, and not wait until somebody presses a button.
    wine_quiet wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f
    wine_quiet wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
  fi
  wine_keep_home "$prefix"
  # The server writes the registry to disk when it ends.
  wine_quiet wineserver -w
  unset WINEPREFIX
  wine_fonts "$prefix"
  printf '%s\n' "$stamp" >"$prefix/stamp"
}

# wine_keep_home PREFIX: replaces Wine's links to the home folder by folders in the prefix. The tests delete folders,
# and a fault must not delete anything in the home folder.
wine_keep_home() {
  local link
  find "$1/drive_c/users" -type l -print0 | while IFS= read -r -d '' link; do
    rm "$link"
    mkdir "$link"
  done
}

# wine_fonts PREFIX: links the fonts of Debian's package fonts-wine into the Windows folder. Debian's Wine does not look
# for them in their own folder, and would show dialogs in other fonts.
wine_fonts() {
  local fonts=/usr/share/wine/fonts
  [ ! -d "$fonts" ] || ln -sf "$fonts"/*.ttf "$fonts"/*.fon "$1/drive_c/windows/Fonts/"
}

wine_all=(win64 win32 winxp)

# Only one script at a time: when one ends, it ends the servers of the other as well.
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

# wine_small_disks FOLDER COMMAND…: mounts disks of 40 MB, which a test can fill, for COMMAND and its child processes
# only. However COMMAND ends, nothing stays mounted. KWA_SMALL_DISK names the drive; it is empty if mounting is not
# allowed.
wine_small_disks() {
  local folder=$1 as_root=() as_user=() prefix
  shift
  [ -z "${KWA_SMALL_DISK+known}" ] || return 0
  export KWA_SMALL_DISK=
  # Without root, mount in a user namespace.
  if [ "$(id -u)" -ne 0 ]; then
    as_root=(--map-root-user)
    as_user=(unshare --map-user="$(id -u)" --map-group="$(id -g)")
  fi
  for prefix in "${wine_all[@]}"; do mkdir -p "$folder/$prefix-disk"; done
  wine_quiet unshare "${as_root[@]}" --mount "${as_user[@]}" true || return 0
  # shellcheck disable=SC2016 # the inner shell expands it
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
    # A server that is left from a killed script does not see the small disks of this script.
    WINEPREFIX=$prefix wine_quiet wineserver -k || true
    ln -sfn "$prefix-disk" "$prefix/dosdevices/s:"
    WINEPREFIX=$prefix wine_quiet wineserver -p {wine_lock}>&-
    # Start the processes that Wine needs for its first program and its first window as well. If a test started them,
    # the reader of its output would wait for them.
    WINEPREFIX=$prefix wine_quiet wine start /wait cmd /c exit {wine_lock}>&-
    # The desktop process ends one second after the last program with a window, and a test would wait for that. This
    # invisible program keeps it running.
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
