# shellcheck shell=bash
# shellcheck disable=SC2154 # work, temp, pairs and contenders are the caller's
# The measurements of script/bench: sourced, not run. Each figure goes to the caller's function `result`.
#
# Each figure is a median over rounds. A round runs each of the compared programs once, and each round begins with
# another program, so that other load on the machine affects all of them alike. A ratio is the median of the ratios of
# the rounds. (hyperfine does all runs of one command before the next command, and does not measure memory.)

# seconds COMMAND…: leaves the elapsed time in $elapsed, and in $processor the processor time of the command and of the
# children that it waited for. Discards the output; a failure ends the script.
seconds() {
  local TIMEFORMAT='%3R %3U %3S' user system
  { time "$@" </dev/null >/dev/null 2>&1; } 2>"$work/time" || fail "failed: $*"
  read -r elapsed user system <"$work/time"
  processor=$(awk -v a="$user" -v b="$system" 'BEGIN { print a + b }')
}

# rounds FUNCTION NAME…: calls FUNCTION NAME for all names in each round. Leaves one line for each round in
# $work/rounds: $elapsed for each name, then $processor for each name.
rounds() {
  local function=$1 round i name
  shift
  local names=("$@")
  local -A times
  for ((round = 0; round < pairs; ++round)); do
    for ((i = 0; i < ${#names[@]}; ++i)); do
      name=${names[(round + i) % ${#names[@]}]}
      "$function" "$name"
      times[elapsed.$name]=$elapsed
      times[processor.$name]=$processor
    done
    for name in "${names[@]/#/elapsed.}" "${names[@]/#/processor.}"; do
      printf '%s\t' "${times[$name]}"
    done
    printf '\n'
  done >"$work/rounds"
}

# median COLUMN [DIVISOR]: the median of a column of $work/rounds, or of the ratio of two columns.
median() {
  awk -v a="$1" -v b="${2:-0}" '{ print (b ? $a / $b : $a) }' "$work/rounds" | sort -g | awk '
    { value[NR] = $1 }
    END { printf "%.6g", NR % 2 ? value[(NR + 1) / 2] : (value[NR / 2] + value[NR / 2 + 1]) / 2 }'
}

# Data that an earlier run left to be written must not slow this run down.
time_run() {
  sync -f "$temp" "$work"
  seconds wine "$work/run/$1.exe"
  [ ! -e "$temp/kwa" ] || fail "$1 did not delete its work folder"
}

measure_runs() {
  local name column=1 count=${#contenders[@]}
  for name in "${contenders[@]}"; do
    time_run "$name" # into the page cache
  done
  rounds time_run "${contenders[@]}"
  for name in "${contenders[@]}"; do
    result "run.$name" "$(median "$column")"
    result "processor.$name" "$(median $((column + count)))"
    # The first column is the installer.
    if [ "$column" -gt 1 ]; then
      result "run.ratio.$name" "$(median 1 "$column")"
      result "processor.ratio.$name" "$(median $((1 + count)) $((column + count)))"
    fi
    column=$((column + 1))
  done
}

# The kernel reports two sizes of a process: VmHWM is the highest resident size, with the pages of mapped files.
# RssAnon is the private memory at this moment, so it is read again and again while the process runs.
measure_memory() {
  local name pid key value resident private
  for name in "${contenders[@]}"; do
    wine "$work/run/$name.exe" </dev/null >/dev/null 2>&1 &
    pid=$!
    resident=0 private=0
    while [ -e "/proc/$pid/status" ] && kill -0 "$pid" 2>/dev/null; do
      while read -r key value _; do
        case $key in
          VmHWM:) [ "$value" -le "$resident" ] || resident=$value ;;
          RssAnon:) [ "$value" -le "$private" ] || private=$value ;;
        esac
      done <"/proc/$pid/status" || break # it has just ended
    done 2>/dev/null
    wait "$pid" || fail "failed: $name"
    result "resident.$name" $((resident * 1024))
    result "private.$name" $((private * 1024))
  done
}

measure_added_bytes() {
  local payload name
  payload=$(cat "$work"/payload/[ab]/* | wc -c)
  result payload.bytes "$payload"
  for name in "${contenders[@]}"; do
    result "added.$name" $(($(stat -c %s "$work/run/$name.exe") - payload))
  done
}

# peak COMMAND…: prints the highest resident size, in bytes, of any process that it starts.
peak() {
  /usr/bin/time -o "$work/time" -f %M "$@" </dev/null >/dev/null 2>&1 || fail "failed: $*"
  printf '%s' $(($(tail -n 1 "$work/time") * 1024))
}

# Archive A, nine tenths of the payload, compared with a copy of the same files.
pack_files() { build/kwapayload pack "$work/payload/a" "$work/packed/a"; }
copy_files() { cp "$work"/payload/a/* "$work/packed"; }

time_packing() {
  rm -rf "$work/packed"
  mkdir "$work/packed"
  sync -f "$work"
  seconds "$1"
}

measure_packing() {
  rounds time_packing pack_files copy_files
  result pack.seconds "$(median 1)"
  result copy.seconds "$(median 2)"
  result pack.ratio "$(median 1 2)"
  rm -rf "$work/packed"
  mkdir "$work/packed"
  result pack.memory "$(peak build/kwapayload pack "$work/payload/a" "$work/packed/a")"
  rm -rf "$work/packed"
}

# build_step FILE PATTERN: makes a script of the last command of the build that contains PATTERN, without the commands
# after its "&&".
build_step() {
  printf 'cd "%s"\n' "$work/installer" >"$1"
  ninja -C "$work/installer" -t commands kwa_installer.exe | grep -F -e "$2" | tail -n 1 | sed 's/ && cd .*//' >>"$1"
}

time_building() {
  sync -f "$work"
  if [ "$1" = rebuild ]; then
    # The smallest possible change of a payload, and a new one each time.
    changes=$((${changes:-0} + 1))
    printf '%08d' "$changes" | dd of="$work/payload/a/marlin_usb.cat" conv=notrunc status=none
    seconds cmake --build "$work/installer" --target kwa_installer
  else
    seconds sh "$work/$1.sh"
  fi
}

measure_linking() {
  local step column=1
  build_step "$work/assemble.sh" ' -o CMakeFiles/kwa_installer.dir/src/app/embedded_payload.S.obj'
  build_step "$work/link.sh" ' -o kwa_installer.exe'
  rounds time_building assemble link rebuild
  for step in assemble link rebuild; do
    result "$step.seconds" "$(median "$column")"
    column=$((column + 1))
  done
  result assemble.memory "$(peak sh "$work/assemble.sh")"
  result link.memory "$(peak sh "$work/link.sh")"
}
