# Completion of the command gri for bash.

_gri() {
  local cur prev words cword split
  _init_completion -s || return

  local command= word
  for word in "${words[@]:1:cword-1}"; do
    case $word in
      info | convert | status)
        command=$word
        break
        ;;
    esac
  done

  case $prev in
    -f | --format)
      COMPREPLY=($(compgen -W 'PNG GTiff COG JPEG raw' -- "$cur"))
      return
      ;;
    --mag)
      COMPREPLY=($(compgen -W '1/2 1/4 1/8 1/16 1/32' -- "$cur"))
      return
      ;;
    --co)
      COMPREPLY=($(compgen -W 'COMPRESS=DEFLATE COMPRESS=LZW TILED=YES INTERLEAVE=PIXEL' -- "$cur"))
      # The line is completed from the last equals sign on.
      [[ $cur == *=* ]] && COMPREPLY=("${COMPREPLY[@]#*=}")
      return
      ;;
    --password-file)
      _filedir
      return
      ;;
    --size | -b | --bands | --password)
      return
      ;;
  esac
  $split && return

  # Four numbers follow these.
  local first=$((cword > 4 ? cword - 4 : 0))
  for word in "${words[@]:first:cword-first}"; do
    [[ $word == --window || $word == --bbox ]] && return
  done

  case $command in
    '')
      COMPREPLY=($(compgen -W 'info convert status --help --version' -- "$cur"))
      ;;
    info)
      if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W '--json --help' -- "$cur"))
      else
        _filedir
      fi
      ;;
    convert)
      if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W '--window --bbox --mag --size --bands --format --co --password
          --password-file --world-file --keep-going --force --quiet --help' -- "$cur"))
      else
        _filedir
      fi
      ;;
  esac
} && complete -F _gri gri
