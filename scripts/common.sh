# Shared by the scripts of this tree, which source it.
# shellcheck shell=bash
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

fail() {
  echo "${0##*/}: $*" >&2
  exit 1
}

# packages SECTION...: the packages of these sections of packages.txt, one a line.
packages() {
  awk -v wanted=" $* " '
    /^\[/ { inside = index(wanted, " " substr($0, 2, length($0) - 2) " "); next }
    inside && NF && !/^#/ { print $1 }' "$root/packages.txt"
}

# install_packages SECTION...: those that are missing, also of the sections for this release of Debian alone, which have its
# number after the name. Nothing is asked and nothing else is touched if none is.
install_packages() {
  local release wanted missing as_root=()
  # shellcheck source=/dev/null
  release=$(. /etc/os-release && echo "${VERSION_ID:-}")
  mapfile -t wanted < <(packages "$@" "${@/%/$release}" | sort)
  if ! command -v dpkg-query >/dev/null; then
    echo "This is no Debian; it must have what is called there: ${wanted[*]}" >&2
    return
  fi
  # dpkg-query fails when it doesn't know one of the packages, and still lists the others.
  mapfile -t missing < <(comm -23 <(printf '%s\n' "${wanted[@]}") \
    <(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null | sed -n 's/^installed //p' | sort))
  ((${#missing[@]})) || return 0
  echo "Installing: ${missing[*]}"
  if ((EUID != 0)); then
    command -v sudo >/dev/null || fail "neither root nor sudo here; please install: ${missing[*]}"
    as_root=(sudo)
    [[ -t 0 ]] || as_root+=(-n)
  fi
  "${as_root[@]}" apt-get update -q
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# Where this machine has its Debian from.
mirror() {
  # shellcheck disable=SC2016 # apt's own variable
  apt-get indextargets 'Identifier: Packages' 'Origin: Debian' 'Label: Debian' --format '$(REPO_URI)' | head -n 1
}

# wait_for SECONDS WHAT COMMAND...: until COMMAND succeeds.
wait_for() {
  local end=$((SECONDS + $1)) what=$2
  shift 2
  until "$@" >/dev/null 2>&1; do
    if ((SECONDS > end)); then
      [[ -z ${QUORVALE_SESSION:-} ]] || tail -n 20 "$QUORVALE_SESSION"/*.log >&2 || true
      fail "$what doesn't come about"
    fi
    sleep 0.05
  done
}

# Has the helper that runs in this session open its log window.
open_log_window() {
  gdbus call --session --dest com.quorvale.QuorvaleHelper --object-path /com/quorvale/QuorvaleHelper \
    --method org.freedesktop.Application.ActivateAction log-viewer '[]' '{}' >/dev/null
}
