#!/usr/bin/env bash
# Lets libtiff's tools judge what write_for_judges wrote: every file is read without a message and has the pixels of its
# reference; raw Group 3 and Group 4 streams are read by fax2tiff. What strict readers say of the library's own forms is
# held to be exactly what is known.
#   judge.sh COMMAND... FOLDER     COMMAND... writes the files into the folder
set -euo pipefail
folder=${*: -1}
set -- "${@:1:$#-1}"
for tool in tiffinfo tiffcmp tiffcp fax2tiff; do
    command -v $tool >/dev/null || { echo "libtiff's tools are not installed: $tool"; exit 1; }
done
rm -rf "$folder"
mkdir -p "$folder"
"$@" "$folder"
cd "$folder"

failures=0
complain() {
    failures=$((failures + 1))
    [ $failures -le 20 ] && printf '%s\n' "$*"
    return 0
}

# Messages of tiffcmp that are about tags, not about pixels: the two files differ in them on purpose.
compare() {
    timeout 20 tiffcmp -t "$1" "$2" 2>&1 |
        grep -v -E '^(Directory [0-9]+:|(Compression|RowsPerStrip|FillOrder|StripOffsets|StripByteCounts|Software|T4Options): )|tag appears only in' |
        head -5
}

judged=0
while read -r file reference; do
    judged=$((judged + 1))
    if [[ $file == refused:* ]]; then
        file=${file#refused:}
        said=$(timeout 20 tiffinfo -D "$file" 2>&1 >/dev/null) || true
        [[ $said == *'Horizontal differencing "Predictor" not supported with '[14]'-bit samples.'* ]] ||
            complain "$file: tiffinfo says: $said"
        continue
    fi
    said=$(timeout 20 tiffinfo -D "$file" 2>&1 >/dev/null) || said="$said (status $?)"
    [ -z "$said" ] || complain "$file: tiffinfo says: $said"
    said=$(compare "$reference" "$file" || true)
    [ -z "$said" ] || complain "$file: tiffcmp says: $said"
done <LIST

# Copied by libtiff into another form and compared again: a few of every kind.
for file in [!l]*-bw-131-rows7-fill2.tif lzw-bw-131-rows7-fill2.tif *-rgb-33-rows7-fill1.tif *-palette8-131-rows1-fill2.tif; do
    judged=$((judged + 1))
    said=$(timeout 20 tiffcp -c none "$file" copy.tif 2>&1) || said="$said (status $?)"
    said+=$(compare copy.tif "$file" || true)
    [ -z "$said" ] || complain "$file: a copy by tiffcp: $said"
done

# Raw streams. What is said is cut: a reader in trouble may never stop.
raw() {
    local file=$1 expected=$2
    shift 2
    judged=$((judged + 1))
    local said
    said=$(timeout 20 fax2tiff -M -X 1728 "$@" -o raw.tif "$file" 2>&1 | head -c 2000) || said="$said (status $?)"
    said=$(printf '%s' "$said" | grep -v 'rows in input' || true)
    [ "$said" = "$expected" ] || complain "$file: fax2tiff says: $said"
    said=$(compare "ref-$file.tif" raw.tif || true)
    [ -z "$said" ] || complain "$file: as read by fax2tiff: $said"
}
raw raw-g3.g3 "" -1
raw raw-g3-fill.g3 "" -1
raw raw-g3-2d.g3 "" -2
raw raw-g3-2d-fill.g3 "" -2
raw raw-g4.g4 "" -4

[ $judged -gt 700 ] || complain "only $judged files were judged"
if [ $failures -gt 0 ]; then
    echo "$failures of $judged judgements failed"
    exit 1
fi
echo "$judged files read by libtiff's tools to the same pixels, without a message"
