# shellcheck shell=bash
# shellcheck disable=SC2154 # work, results, pairs and temp are the caller's
# The table, the JSON file and the plot of script/bench: sourced, not run.

describe_machine() {
  printf '%s, %s processors, %s on %s, %s\n' \
    "$(sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -n 1)" "$(nproc)" \
    "$(stat -f -c %T "$temp")" "$(uname -sr)" "$(wine --version)"
}

# The rows of the table: name of the figure, factor, decimals, label, target. A row without a name is a heading.
report_rows() {
  cat <<'END'
|||Whole run, seconds|
run.installer|1|3|  installer|
run.floor|1|3|  floor program|
run.nsis|1|3|  NSIS|
run.nsisUnchecked|1|3|  NSIS without its checksum|
run.ratio.floor|1|2|  installer / floor program|at most 1.15 from 25 MB on
run.ratio.nsis|1|2|  installer / NSIS|at most 0.75 from 25 MB on
run.ratio.nsisUnchecked|1|2|  installer / NSIS without its checksum|
|||Processor time of the program itself, seconds|
processor.installer|1|3|  installer|
processor.ratio.floor|1|2|  installer / floor program|
processor.ratio.nsis|1|2|  installer / NSIS|
processor.ratio.nsisUnchecked|1|2|  installer / NSIS without its checksum|
|||Highest private memory, MB|
private.installer|1e-6|2|  installer|the same for all
private.floor|1e-6|2|  floor program|
private.nsis|1e-6|2|  NSIS|
|||Highest resident memory, mapped files included, MB|
resident.installer|1e-6|1|  installer|
resident.floor|1e-6|1|  floor program|
resident.nsis|1e-6|1|  NSIS|
|||Bytes added to the payload|
added.installer|1|0|  installer|at most those of NSIS
added.nsis|1|0|  NSIS|
|||Build|
pack.seconds|1|3|  pack, seconds|
copy.seconds|1|3|  cp, seconds|
pack.ratio|1|2|  pack / cp|at most 1.3
assemble.seconds|1|3|  assemble, seconds|
link.seconds|1|3|  link, seconds|
rebuild.seconds|1|3|  build after a changed file, seconds|at most 1.5 at 25 MB
pack.memory|1e-6|1|  pack, MB of memory|
assemble.memory|1e-6|1|  assemble, MB of memory|
link.memory|1e-6|1|  link, MB of memory|
END
}

report_table() {
  printf '\n%s\nMedians of %s rounds\n' "$(cat "$work/machine.txt")" "$pairs"
  awk -F '\t' -v rows="$(report_rows)" '
    !($1 in seen) { seen[$1] = 1; size[++sizes] = $1 }
    { value[$1, $2] = $3 }
    END {
      printf "\n%-40s", "Payload, MB"
      for (i = 1; i <= sizes; ++i) printf "%12d", size[i]
      printf "   Target\n"
      count = split(rows, row, "\n")
      for (r = 1; r <= count; ++r) {
        split(row[r], field, "|")
        printf "%-40s", field[4]
        for (i = 1; i <= sizes && field[1] != ""; ++i) {
          printf "%12." field[3] "f", value[size[i], field[1]] * field[2]
        }
        print (field[5] == "" ? "" : "   " field[5])
      }
      print ""
    }' "$results"
}

report_json() {
  jq -Rn --arg machine "$(cat "$work/machine.txt")" --argjson pairs "$pairs" '
    {$machine, $pairs, payloads: ([inputs / "\t"] | group_by(.[0] | tonumber) |
      map({megabytes: (.[0][0] | tonumber)} + (map({(.[1]): (.[2] | tonumber)}) | add)))}' "$results"
}

# report_series NAME FACTOR: prints the payload's megabytes and the figure, one payload on each line.
report_series() { awk -F '\t' -v name="$1" -v factor="$2" '$2 == name { print $1, $3 * factor }' "$results"; }

report_plot() {
  local name
  rm -rf "$work/plot"
  mkdir "$work/plot"
  for name in run.{installer,floor,nsis,nsisUnchecked}; do
    report_series "$name" 1 >"$work/plot/$name"
  done
  for name in private.{installer,floor,nsis} resident.installer; do
    report_series "$name" 1e-6 >"$work/plot/$name"
  done
  (cd "$work/plot" && quietly gnuplot ../../../bench/bench.gnuplot)
}
