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

os_release=/etc/os-release

# Names the libraries and stops, on a system whose packages we do not know. Those that descend from
# Debian (Ubuntu, Mint and others) name theirs as it does.
require_debian() {
  local names=unknown
  # shellcheck disable=SC1090
  [ -r "$os_release" ] && names=$(. "$os_release" && printf '%s %s' "${ID:-unknown}" "${ID_LIKE:-}")
  case " $names " in *" debian "* | *" ubuntu "*) return ;; esac
  {
    echo "This script knows the packages of Debian and its kin only; this system calls itself '${names%% *}'."
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

# suffices VERSION ENTRY: whether there is a version, and the entry asks for none that is later.
suffices() {
  [ -n "$1" ] && { [[ $2 != *">="* ]] || dpkg --compare-versions "$1" ge "${2#*>=}"; }
}

# An entry a|b is there when one of them is.
installed() {
  local name
  for name in ${1//|/ }; do suffices "${present[${name%>=*}]:-}" "$name" && return; done
  return 1
}

# The first name of an entry a|b that this release has, as late as the entry asks for.
obtainable() {
  local name version had=
  for name in ${1//|/ }; do
    version=$(LC_ALL=C apt-cache policy "${name%>=*}" | sed -n 's/^  Candidate: \([^(].*\)/\1/p')
    suffices "$version" "$name" && printf '%s\n' "${name%>=*}" && return
    had=${version:-$had}
  done
  fail "Calmdeck cannot be built here: it takes ${1//|/ or }, and this release has ${had:-none}."
}

# install_packages LIST...: takes a moment where nothing is missing.
install_packages() {
  local -A present=()
  local -a missing=() names=()
  local status name version entry log
  while read -r status name version; do
    [ "$status" = installed ] && present[$name]=$version
  done < <(dpkg-query -W -f '${db:Status-Status} ${Package} ${Version}\n')
  while read -r entry _; do installed "$entry" || missing+=("$entry"); done < <(lines "$@")
  [ ${#missing[@]} = 0 ] && return
  log=$(mktemp)
  local -a apt=(env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=600)
  # A machine that is thrown away afterwards need not wait for its disk at each file.
  [ -n "${CI:-}" ] && apt+=(-o Dpkg::Options::=--force-unsafe-io)
  as_root "${apt[@]}" update >"$log" 2>&1 || { cat "$log" >&2; fail "apt-get update failed."; }
  for entry in "${missing[@]}"; do
    name=$(obtainable "$entry") || exit 1
    names+=("$name")
  done
  say "Installing ${names[*]}"
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
