# Completion of framesink-play in bash. The options come from --help.
_framesink_play() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} words
  case $before in
    --kind) words='rgb intensity ycbcr422' ;;
    --type) words='double single int8 uint8 int16 uint16 int32 uint32 boolean' ;;
    --layout) words='column row' ;;
    --fps) words=max ;;
    *)
      [[ $word == -* ]] || return
      words="-h $("$1" --help 2>/dev/null | grep -oE -- '--[a-z-]+(=[a-z]+)?' | sort -u)"
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _framesink_play framesink-play
