# shellcheck shell=bash
# The common part of all scripts: sourced, not run, before a script changes the folder or reads its arguments. If --help
# is among the arguments, prints the header comment of the script and ends it. Leaves the folder of the tree in $root.
#
#   say TEXT…      prints a line of progress: "demo: TEXT"
#   fail TEXT…     prints such a line on the error stream and ends with 1
#   misuse TEXT…   the same for wrong arguments, and ends with 2
#   usage TEXT…    misuse with a hint at --help
#   payload_folder FOLDER          prints the full path, or ends with 2 if FOLDER is no payload folder
#   run_build LOG COMMAND…         runs a build with its output in LOG; on a terminal, shows the count of its steps
#   build_faults LOG               prints what is wrong with the payload, or else the end of the log

cli_name=${0##*/}
# shellcheck disable=SC2034 # the scripts use it
root=$(realpath -- "$(dirname -- "${BASH_SOURCE[0]}")/../..")

say() { printf '%s: %s\n' "$cli_name" "$*"; }
cli_end() {
  printf '%s: %s\n' "$cli_name" "${*:2}" >&2
  exit "$1"
}
fail() { cli_end 1 "$@"; }
misuse() { cli_end 2 "$@"; }
usage() { misuse "$*; see 'script/$cli_name --help'"; }

payload_folder() {
  local folder
  [ -e "$1" ] || misuse "$1: does not exist"
  for folder in a b; do [ -d "$1/$folder" ] || misuse "$1: is not a payload folder, because it has no folder $folder"; done
  realpath -- "$1"
}

run_build() {
  local log=$1 line status=0
  if [ ! -t 1 ]; then
    "${@:2}" >"$log" 2>&1 </dev/null
    return
  fi
  "${@:2}" 2>&1 </dev/null | tee "$log" | while IFS= read -r line; do
    if [[ $line =~ ^\[[0-9]+/[0-9]+] ]]; then printf '\r\e[K%s' "${BASH_REMATCH[0]}"; fi
  done || status=$?
  printf '\r\e[K'
  return "$status"
}

# The tools print a payload's faults after their names, and findings after the severity. A fault of the list of contents
# stops the packing of both archives.
build_faults() { grep -E '^(kwapayload|samplepayload|error|warning): ' "$1" | awk '!seen[$0]++' || tail -n 40 "$1"; }

for cli_argument in "$@"; do
  if [ "$cli_argument" = --help ]; then
    sed -n '2,/^[^#]/{/^# shellcheck /d; s/^# \{0,1\}//p}' "$0"
    exit 0
  fi
done
