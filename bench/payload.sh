# shellcheck shell=bash
# Payloads of any size for script/bench: sourced, not run.

# bench_contents BYTES: prints the list of contents of a payload of that many bytes: payload/contents.json with other
# sizes. The INF does not become larger than it is there, because Windows reads it as a whole and a real INF does not
# grow with the payload. Files other than the INF and the programs are random bytes, so that no layer can compress
# them.
bench_contents() {
  jq --argjson wanted "$1" '(.files | map(.size) | add) as $total | .files[] |= (
    (.size * $wanted / $total | floor) as $scaled |
    if .name | endswith(".inf") then .size = ([.size, $scaled] | min) else .size = $scaled end |
    if .name | test("^dpinst(64)?\\.exe$|\\.inf$") then .kind |= sub(", Authenticode-signed$"; "")
    else .kind = "unknown data" end)' payload/contents.json
}

# bench_inf SIZE: prints an INF of that many bytes. Its lines are as long as in a real INF, because Windows parses all
# of them, twice.
bench_inf() {
  awk -v size="$1" 'function put(line) { printf "%s\r\n", line; size -= length(line) + 2 }
    BEGIN {
      put("[Version]")
      put("DriverVer = 02/13/2014,1.0.42.0")
      put("DriverPackageDisplayName = Marlin USB")
      put("CatalogFile = marlin_usb.cat")
      put("[SourceDisksFiles]")
      put("marlin_usb.inf = 1")
      put("[Strings]")
      while (size > 120) put(sprintf("%-20d = \"%-32s\"", size, ""))
      put(sprintf(";%*s", size - 3, ""))
    }'
}

# bench_payload BYTES CHILD32 CHILD64 FOLDER: makes FOLDER/a, FOLDER/b and FOLDER/contents.json. The two children take
# the place of DPInst.
bench_payload() {
  local folder=$4 archive name size file length
  rm -rf "$folder"
  mkdir -p "$folder/a" "$folder/b"
  bench_contents "$1" >"$folder/contents.json"
  while IFS=$'\t' read -r archive name size; do
    file=$folder/$archive/$name
    case $name in
      dpinst.exe) cat "$2" >"$file" ;;
      dpinst64.exe) cat "$3" >"$file" ;;
      *.inf) bench_inf "$size" >"$file" ;;
      *) printf '\0' >"$file" ;; # no kind of file begins with this
    esac
    length=$(stat -c %s "$file")
    head -c $((size - length)) /dev/urandom >>"$file"
  done < <(jq -r '.files[] | [(.archive | ascii_downcase), .name, .size] | @tsv' "$folder/contents.json")
}
