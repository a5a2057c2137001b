# shellcheck shell=bash
# Debian's packages for 32-bit little-endian MIPS, with a package state of their own, so that the
# machine's stays as it is. Sourced by the scripts that want some.

# Prepares the package state in an empty folder and makes the package tools of this shell use it.
mipsel_packages() {
  local state
  state=$(cd "$1" && pwd)/apt
  mkdir -p "$state"/state/lists/partial "$state"/archives/partial
  : >"$state/status"
  cat >"$state/apt.conf" <<END
APT::Architecture "mipsel";
APT::Architectures { "mipsel"; };
APT::Sandbox::User "$(id -un)";
Acquire::Languages "none";
Dir::State "$state/state";
Dir::State::status "$state/status";
Dir::Cache "$state";
END
  export APT_CONFIG=$state/apt.conf
  apt-get update -qq
}

# Downloads the packages that are named into this folder and compares each with the SHA-256 of the
# signed index.
download_packages() {
  apt-get download -qq --print-uris "$@" |
    sed -nE "s/^'[^']*' ([^ ]+) [0-9]+ SHA256:([0-9a-f]{64})\$/\2  \1/p" >SHA256SUMS
  [ "$(wc -l <SHA256SUMS)" -eq $# ] || {
    echo "mipsel_packages.sh: no SHA-256 for each of: $*" >&2
    return 1
  }
  apt-get download -qq "$@"
  sha256sum --check --strict --quiet SHA256SUMS
}
