# shellcheck shell=bash
# What every script has alike: sourced, not run, before a script changes folders or reads its arguments. Prints the
# script's header comment and ends it when --help is among its arguments. Leaves the tree's folder in $root.
#
#   say TEXT…      a line of what is going on: "demo: TEXT"
#   fail TEXT…     the same on the error stream, and ends with 1
#   misuse TEXT…   the same for arguments that cannot be followed, and ends with 2
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
usage() { misuse "$*; 'script/$cli_name --help' tells the usage"; }

for cli_argument in "$@"; do
  if [ "$cli_argument" = --help ]; then
    sed -n '2,/^[^#]/{/^# shellcheck /d; s/^# \{0,1\}//p}' "$0"
    exit 0
  fi
done
