# shellcheck shell=bash
# Servers of a test in a temporary folder, ended with it. Sourced by the scripts that start some.

folder=$(mktemp -d)
export OLT_RUN_DIR=$folder/run
declare -A servers=()

# Starts a server, which prints into the folder's file NAME, and waits until the text is in there.
serve() { # NAME TEXT COMMAND [ARGUMENT...]
  : >"$folder/$1"
  "${@:3}" >"$folder/$1" 2>&1 &
  servers[$1]=$!
  for ((i = 0; i < 300; i++)); do
    ! grep -q "$2" "$folder/$1" || return 0
    kill -0 "${servers[$1]}" 2>/dev/null || break
    sleep 0.1
  done
  echo "${0##*/}: $1 does not say '$2'" >&2
  cat "$folder/$1" >&2
  exit 1
}

# Ends one by SIGTERM, after which its exit status is 0.
end() { # NAME
  kill "${servers[$1]}"
  wait "${servers[$1]}"
  unset "servers[$1]"
}

finish() {
  [ ${#servers[@]} -eq 0 ] || kill -KILL "${servers[@]}" 2>/dev/null || true
  rm -rf "$folder"
}
trap finish EXIT
