# shellcheck shell=bash
# Payloads of any size for script/bench: sourced, not run.

# The files of a payload of BYTES bytes, one a line: folder, name, size. Those of payload/contents.json, scaled; the INF
# grows no larger than it is there, because Windows reads it as a whole and no real one grows with the payload.
bench_payload_list() {
  awk -F '"' -v wanted="$1" '
    /"archive"/ {
      folder[++count] = tolower($4)
      name[count] = $10
      number = $13
      gsub(/[^0-9]/, "", number)
      size[count] = number + 0
      total += size[count]
    }
    END {
      for (i = 1; i <= count; ++i) {
        scaled = int(size[i] * wanted / total)
        if (name[i] ~ /\.inf$/ && scaled > size[i]) {
          scaled = size[i]
        }
        print folder[i], name[i], scaled
      }
    }' payload/contents.json
}

# bench_inf SIZE: a text of that many bytes. Its lines are as long as those of a real one: Windows parses all, twice.
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

# bench_payload BYTES CHILD32 CHILD64 FOLDER: makes FOLDER/a, FOLDER/b and FOLDER/contents.json. The two children stand
# in DPInst's place; all else is noise, so that nothing between the program and the disk can shorten it.
bench_payload() {
  local folder=$4 archive name size file length
  rm -rf "$folder"
  mkdir -p "$folder/a" "$folder/b"
  cp payload/contents.json "$folder"
  while read -r archive name size; do
    file=$folder/$archive/$name
    case $name in
      dpinst.exe) cat "$2" >"$file" ;;
      dpinst64.exe) cat "$3" >"$file" ;;
      *.inf) bench_inf "$size" >"$file" ;;
      *)
        printf '\0' >"$file" # the mark of no kind of file
        sed -i "/\"name\": \"$name\"/s/\"kind\": \".*\"/\"kind\": \"unknown data\"/" "$folder/contents.json"
        ;;
    esac
    length=$(stat -c %s "$file")
    head -c $((size - length)) /dev/urandom >>"$file"
    sed -i "s/\(\"name\": \"$name\", \"size\": \)[0-9]*/\1$size/" "$folder/contents.json"
  done < <(bench_payload_list "$1")
}
