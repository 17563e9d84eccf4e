# Completion of framesink-play in bash.
_framesink_play() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} words
  case $before in
    --kind) words='rgb intensity ycbcr422' ;;
    --type) words='double single int8 uint8 int16 uint16 int32 uint32 boolean' ;;
    --layout) words='column row' ;;
    --fps) words=max ;;
    --raw | --windows | --size | --position | --title | --seek | --frames | --duration) return ;;
    *)
      [[ $word == -* ]] || return
      words='-h --help --kind --type --layout --raw --windows --sync --size --position --fullscreen --title
        --fps --seek --loop --frames --duration --hold --library --dump-frame --stats --stats=json --doctor
        --version'
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _framesink_play framesink-play
