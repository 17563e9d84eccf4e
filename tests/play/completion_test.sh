#!/usr/bin/env bash
# completion_test.sh PLAYER COMPLETIONS PAGE: completions and manual page contain every option of --help and no other.
set -euo pipefail
player=$1 completions=$2 page=$3

options() { grep -oE -- '(^|[^a-z-])--[a-z]+(-[a-z]+)*' | grep -oE -- '--.*' | sort -u; }

expect_same() {
  diff <(printf '%s\n' "$wanted") <(printf '%s\n' "$2") || { echo "$1 differs from --help"; exit 1; }
}

wanted=$("$player" --help | grep -E '^  (-h,)?--' | cut -c1-21 | options)
[ "$(printf '%s\n' "$wanted" | wc -l)" -ge 20 ]

source "$completions/framesink-play.bash"
complete_words() {
  COMP_WORDS=(framesink-play "$@") COMP_CWORD=$#
  COMPREPLY=()
  _framesink_play "$player"
}
complete_words --
expect_same bash "$(printf '%s\n' "${COMPREPLY[@]}" | options)"
complete_words --st
[ "${COMPREPLY[*]}" = '--stats --stats=json' ]
complete_words --kind y
[ "${COMPREPLY[*]}" = ycbcr422 ]
complete_words --type u
[ "${COMPREPLY[*]}" = 'uint8 uint16 uint32' ]

zsh -n "$completions/_framesink-play"
expect_same zsh "$(options <"$completions/_framesink-play")"

expect_same "manual page" "$(sed -n '/^# OPTIONS/,/^# RAW/p' "$page" | grep -E '^\*-' | options)"
