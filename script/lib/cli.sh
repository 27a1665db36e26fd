# shellcheck shell=bash
# The common part of all scripts: sourced, not run, before a script changes the folder or reads its arguments. If --help
# is among the arguments, prints the header comment of the script and ends it. Leaves the folder of the tree in $root.
#
#   say TEXT…      prints a line of progress: "demo: TEXT"
#   fail TEXT…     prints such a line on the error stream and ends with 1
#   misuse TEXT…   the same for wrong arguments, and ends with 2
#   usage TEXT…    misuse with a hint at --help

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

for cli_argument in "$@"; do
  if [ "$cli_argument" = --help ]; then
    sed -n '2,/^[^#]/{/^# shellcheck /d; s/^# \{0,1\}//p}' "$0"
    exit 0
  fi
done
