// The scripts call "oltctl __complete LINE", which completion_answer() answers.
#include <string_view>

#include "cli/completion.h"

namespace olt::cli {

namespace {

constexpr const char *kBash =
    R"(# Completion of oltctl, oltbox, oltreplay and oltsnmp, printed by: oltctl completion bash
_oltctl() {
  local line=${COMP_LINE:0:COMP_POINT} answer=() entry path i
  local word=${line##*[[:blank:]]}
  # Readline replaces what stands after the last of the characters that end words for it.
  local kept=${word%"${word##*["$COMP_WORDBREAKS"]}"}
  if shopt -q hostcomplete; then kept=${kept%@}; fi
  mapfile -t answer < <(oltctl __complete "$line" 2>/dev/null)
  case ${answer[0]} in
    words)
      for entry in "${answer[@]:1}"; do COMPREPLY+=("${entry%%$'\t'*}"); done
      if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]]; then compopt -o nospace; fi
      ;;
    'files '* | 'directories '*)
      local before=${answer[0]#* } action=-f
      [[ ${answer[0]} == files* ]] || action=-d
      path=${word#"$before"}
      mapfile -t COMPREPLY < <(compgen "$action" -- "$path")
      for i in "${!COMPREPLY[@]}"; do COMPREPLY[i]=$before${COMPREPLY[i]}; done
      if [[ $kept == "$before" ]]; then compopt -o filenames; fi
      ;;
  esac
  for i in "${!COMPREPLY[@]}"; do COMPREPLY[i]=${COMPREPLY[i]#"$kept"}; done
}
complete -F _oltctl oltctl oltbox oltreplay oltsnmp
)";

constexpr const char *kZsh =
    R"(# Completion of oltctl, oltbox, oltreplay and oltsnmp, printed by: oltctl completion zsh
_oltctl() {
  local line="${(j: :)words[1,CURRENT-1]} $PREFIX" entry word summary
  local -a answer names values
  answer=("${(@f)$(oltctl __complete "$line" 2>/dev/null)}")
  case $answer[1] in
    words)
      for entry in "${(@)answer[2,-1]}"; do
        word=${entry%%$'\t'*} summary=${entry#$word} summary=${summary#$'\t'}
        if [[ $word == *= ]]; then
          names+=("$word")
        else
          values+=("${word//:/\\:}${summary:+:$summary}")
        fi
      done
      (( $#names == 0 )) || compadd -S '' -a names
      (( $#values == 0 )) || _describe -t words word values
      ;;
    files\ *)
      compset -P "${(b)answer[1]#files }"
      _files
      ;;
    directories\ *)
      compset -P "${(b)answer[1]#directories }"
      _files -/
      ;;
  esac
}
compdef _oltctl oltctl oltbox oltreplay oltsnmp
)";

constexpr const char *kFish =
    R"(# Completion of oltctl, oltbox, oltreplay and oltsnmp, printed by: oltctl completion fish
function __oltctl_complete
  set -l answer (oltctl __complete (commandline -cp | string collect) 2>/dev/null)
  set -l kind (string split -m 1 ' ' -- $answer[1])
  set -l path (string replace -- "$kind[2]" '' (commandline -ct))
  switch "$kind[1]"
    case words
      string join \n -- $answer[2..-1]
    case files
      string join \n -- "$kind[2]"(__fish_complete_path $path)
    case directories
      string join \n -- "$kind[2]"(__fish_complete_directories $path)
  end
end
complete -c oltctl -f -a '(__oltctl_complete)'
complete -c oltbox -f -a '(__oltctl_complete)'
complete -c oltreplay -f -a '(__oltctl_complete)'
complete -c oltsnmp -f -a '(__oltctl_complete)'
)";

}  // namespace

const char *completion_script(std::string_view shell) {
  if (shell == "bash") return kBash;
  if (shell == "zsh") return kZsh;
  if (shell == "fish") return kFish;
  return nullptr;
}

}  // namespace olt::cli
