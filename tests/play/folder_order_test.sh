#!/usr/bin/env bash
# folder_order_test.sh TOOL MAP: checks the includes of TOOL's folders against the order in the section
# "framesink-play" of MAP: a file may include its own folder and those listed below it.
set -euo pipefail
tool=$1 map=$2

order=$(sed -n '/^## framesink-play$/,/^## /p' "$map" | grep -oE '^[a-z_]+/ ' | tr -d '/ ')
[ "$(printf '%s\n' "$order" | wc -l)" -ge 5 ] || { echo "no list of folders in $map"; exit 1; }

status=0
complain() {
  echo "$*"
  status=1
}

rank_of() { printf '%s\n' "$order" | grep -nxF "$1" | cut -d: -f1; }

for folder in "$tool"/*/; do
  folder=$(basename "$folder")
  rank=$(rank_of "$folder") || { complain "$folder is not in the list"; continue; }
  while IFS=: read -r file included; do
    other=$(rank_of "$included") || { complain "${file#"$tool"/}: $included is no folder of the list"; continue; }
    [ "$other" -ge "$rank" ] || complain "${file#"$tool"/}: includes $included, which is above $folder"
  done < <(grep -roE '^#include "[^"/]+' "$tool/$folder" | sed 's/#include "//' | grep -vE ':framesink$')
done

only_in() { # FOLDER PATTERN
  local file
  for file in $(grep -rlE "^#include <($2)" "$tool"); do
    [[ ${file#"$tool"/} == "$1"/* ]] || complain "${file#"$tool"/}: only $1 may include <$2>"
  done
}
only_in command_line 'CLI/'
only_in video 'libav|libsw'
exit "$status"
