# shellcheck shell=bash
# What ./run and ./check share: the packages that the lists in tools/packages name, and the build.
# Sourced; sets `root`, the top folder of the tree.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '==> %s\n' "$*"; }
fail() {
  printf '%s\n' "$*" >&2
  exit 1
}

# lines NAME...: the entries of the lists, without comments and empty lines.
lines() {
  local name
  for name in "$@"; do sed -e '/^#/d' -e '/^ *$/d' "$root/tools/packages/$name.list"; done
}

# Names the libraries and stops, on a system whose packages we do not know.
require_debian() {
  local id=unknown
  # shellcheck disable=SC1091
  [ -r /etc/os-release ] && id=$(. /etc/os-release && printf '%s' "${ID:-unknown}")
  [ "$id" = debian ] && return
  {
    echo "This script knows the packages of Debian 12 and 13 only; this system calls itself '$id'."
    echo "Calmdeck needs:"
    lines build | sed -E 's/^[^ ]+ +/  - /'
    echo "With these installed: cmake --preset release && cmake --build --preset release"
  } >&2
  exit 1
}

as_root() {
  if [ "$(id -u)" = 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    fail "Installing packages takes root or sudo. Missing:${missing[*]/#/ }"
  fi
}

# An entry a|b is there when one of them is.
installed() {
  local name
  for name in ${1//|/ }; do [ -n "${present[$name]:-}" ] && return; done
  return 1
}

# The first name of an entry a|b that this release has.
obtainable() {
  local name
  for name in ${1//|/ }; do
    if [[ $1 != *"|"* ]] || apt-cache show --no-all-versions "$name" >/dev/null 2>&1; then
      printf '%s\n' "$name"
      return
    fi
  done
  fail "This release has none of ${1//|/, }."
}

# install_packages LIST...: takes a moment where nothing is missing.
install_packages() {
  local -A present=()
  local -a missing=() names=()
  local status name entry log
  while read -r status name; do
    [ "$status" = installed ] && present[$name]=yes
  done < <(dpkg-query -W -f '${db:Status-Status} ${Package}\n')
  while read -r entry _; do installed "$entry" || missing+=("$entry"); done < <(lines "$@")
  [ ${#missing[@]} = 0 ] && return
  say "Installing ${missing[*]}"
  log=$(mktemp)
  local -a apt=(env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=600)
  # A machine that is thrown away afterwards need not wait for its disk at each file.
  [ -n "${CI:-}" ] && apt+=(-o Dpkg::Options::=--force-unsafe-io)
  as_root "${apt[@]}" update >"$log" 2>&1 || { cat "$log" >&2; fail "apt-get update failed."; }
  for entry in "${missing[@]}"; do
    name=$(obtainable "$entry") || exit 1
    names+=("$name")
  done
  as_root "${apt[@]}" install -y --no-install-recommends "${names[@]}" >"$log" 2>&1 </dev/null ||
    { cat "$log" >&2; fail "The packages could not be installed."; }
  rm -f "$log"
}

# build PRESET [TARGET...]: quiet unless something has to be done.
build() {
  local preset=$1
  shift
  local -a options=()
  # Traces with line numbers are enough where nobody debugs, and a third of the time cheaper.
  [ -n "${CI:-}" ] && options+=(-DCMAKE_CXX_FLAGS_DEBUG=-g1)
  say "Building ($preset)"
  (cd "$root" && cmake --preset "$preset" "${options[@]}" >/dev/null &&
    cmake --build --preset "$preset" ${1:+--target "$@"})
}
