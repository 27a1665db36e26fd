# shellcheck shell=bash
# shellcheck disable=SC2154 # work, temp, pairs and contenders are the caller's
# What script/bench measures: sourced, not run. Leaves its figures to the caller's function result.
#
# Each figure is a median over rounds. A round takes everything that is compared once, beginning with another one each
# time, so that whatever else the machine does meets all of them alike; a ratio is the median of the rounds' ratios.
# (hyperfine takes all runs of one command before those of the next, and no memory.)

# seconds COMMAND…: how long it took, in $elapsed, and how much processor time it took itself, with the children that it
# waited for as Unix does, in $processor. Output goes nowhere; a failure ends the script.
seconds() {
  local TIMEFORMAT='%3R %3U %3S' user system
  { time "$@" </dev/null >/dev/null 2>&1; } 2>"$work/time" || fail "failed: $*"
  read -r elapsed user system <"$work/time"
  processor=$(awk -v a="$user" -v b="$system" 'BEGIN { print a + b }')
}

# rounds FUNCTION NAME…: calls FUNCTION NAME for all names in each round. Leaves a line a round in $work/rounds: $elapsed
# for each name, then $processor for each.
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

# median COLUMN [DIVISOR]: of a column of $work/rounds, or of the ratio of two.
median() {
  awk -v a="$1" -v b="${2:-0}" '{ print (b ? $a / $b : $a) }' "$work/rounds" | sort -g | awk '
    { value[NR] = $1 }
    END { printf "%.6g", NR % 2 ? value[(NR + 1) / 2] : (value[NR / 2] + value[NR / 2 + 1]) / 2 }'
}

# Nothing that an earlier run left to be written may slow this one down.
time_run() {
  sync -f "$temp" "$work"
  seconds wine "$work/run/$1.exe"
  [ ! -e "$temp/kwa" ] || fail "$1 left its work folder behind"
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
    # Of the first column, the installer.
    if [ "$column" -gt 1 ]; then
      result "run.ratio.$name" "$(median 1 "$column")"
      result "processor.ratio.$name" "$(median $((1 + count)) $((column + count)))"
    fi
    column=$((column + 1))
  done
}

# The kernel's own account of a process: VmHWM is its highest resident size, file pages that it merely maps included;
# RssAnon is what is private to it. The latter has no high mark, so it is read all the time while the process runs.
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

# peak COMMAND…: the highest resident size, in bytes, of any process that it starts.
peak() {
  /usr/bin/time -o "$work/time" -f %M "$@" </dev/null >/dev/null 2>&1 || fail "failed: $*"
  printf '%s' $(($(tail -n 1 "$work/time") * 1024))
}

# Archive A, nine tenths of the payload, beside a copy of the same files.
pack_files() { "$work/installer/kwapayload" pack "$work/payload/a" "$work/packed/a"; }
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
  result pack.memory "$(peak "$work/installer/kwapayload" pack "$work/payload/a" "$work/packed/a")"
  rm -rf "$work/packed"
}

# build_step FILE PATTERN: makes a script of the last of the build's commands that has PATTERN, without what follows it.
build_step() {
  printf 'cd "%s"\n' "$work/installer" >"$1"
  ninja -C "$work/installer" -t commands kwa_installer.exe | grep -F -e "$2" | tail -n 1 | sed 's/ && cd .*//' >>"$1"
}

time_building() {
  sync -f "$work"
  if [ "$1" = rebuild ]; then
    # The smallest change that a maker can make to a payload; never the same twice.
    changes=$((${changes:-0} + 1))
    printf '%08d' "$changes" | dd of="$work/payload/a/marlin_usb.cat" conv=notrunc status=none
    seconds cmake --build "$work/installer"
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
