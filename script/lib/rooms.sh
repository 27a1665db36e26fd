# shellcheck shell=bash
# The rooms of tools/kwapayload: which may include which. Sourced by script/lint.

# rooms_below ROOM: the rooms that its files may include, its own among them.
rooms_below() {
  case "$1" in
    base) echo base ;;
    payload | pe) echo "base $1" ;;
    inf | trust) echo "base payload pe $1" ;;
    installer) echo "base payload pe inf trust installer" ;;
    verify) echo "base payload pe inf trust installer verify" ;;
    commands) echo "base payload pe inf trust installer verify commands" ;;
  esac
}

# check_rooms: prints each include that leads up or sideways, or a room that nobody knows; fails when there is one.
check_rooms() {
  local room file include allowed status=0
  while IFS=: read -r file include; do
    room=${file#tools/kwapayload/}
    room=${room%%/*}
    allowed=$(rooms_below "$room")
    if [ -z "$allowed" ] || [[ " $allowed " != *" ${include%%/*} "* && -e tools/kwapayload/$include ]]; then
      printf '%s: must not include "%s"\n' "$file" "$include"
      status=1
    fi
  done < <(grep -ro '#include "[^"]*"' tools/kwapayload/*/ --include='*.h' --include='*.cpp' | sed 's/#include "\(.*\)"/\1/')
  return "$status"
}
