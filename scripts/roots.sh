# Roots of other Debians, to build and to try the helper in. Shared by scripts of root's, which source it after common.sh.
# shellcheck shell=bash
# shellcheck disable=SC2154 # "root" is common.sh's, "log" of who sources this

# Where they are kept, a folder each Debian: what its roots begin with, the roots, and what was built for it.
roots=/var/tmp/quorvale-roots
# The Debian that this machine runs.
# shellcheck source=/dev/null
machine=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")

# step WHAT COMMAND...: what it says goes to the file "log".
step() {
  local began=$SECONDS what=$1
  shift
  # Where its status is looked at right away, bash would let it go on after a command that fails.
  set +e
  (set -e && "$@") >>"$log" 2>&1
  local status=$?
  set -e
  if ((status != 0)); then
    tail -n 40 "$log" >&2
    fail "$what: failed"
  fi
  echo "$what: $((SECONDS - began)) s"
}

# within FOLDER [OUTSIDE:INSIDE...] COMMAND...: in the root, with folders of this system bound into it. What COMMAND leaves
# behind ends with it.
within() {
  # shellcheck disable=SC2016 # expanded by the inner shell
  unshare --mount --pid --fork --kill-child bash -euc '
    root=$1
    shift
    mount --make-rprivate /
    mount --rbind /dev "$root/dev"
    mount -t proc none "$root/proc"
    mount -t tmpfs none "$root/run"
    mount -t tmpfs -o mode=1777 none "$root/tmp"
    cp --dereference /etc/resolv.conf "$root/etc/"
    while [[ $1 == /*:/* ]]; do
      mkdir -p "$root${1#*:}"
      mount --bind "${1%:*}" "$root${1#*:}"
      shift
    done
    exec chroot "$root" env -i -C / PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
      DEBIAN_FRONTEND=noninteractive "$@"' within "$@" </dev/null
}

# make_base SUITE: what all roots of that Debian begin with.
make_base() {
  local folder=$roots/$1/base
  [[ ! -e $folder.made ]] || return 0
  rm -rf "$folder"
  mkdir -p "${folder%/*}"
  debootstrap --variant=minbase "$1" "$folder" "$(mirror)"
  # Roots are made anew rather than saved from a power failure.
  echo force-unsafe-io >"$folder/etc/dpkg/dpkg.cfg.d/unsafe"
  touch "$folder.made"
}

# make_root SUITE NAME SECTION...: has what is in these sections of packages.txt.
make_root() {
  local suite=$1 folder=$roots/$1/$2 release wanted
  shift 2
  # shellcheck source=/dev/null
  release=$(. "$roots/$suite/base/etc/os-release" && echo "$VERSION_ID")
  mapfile -t wanted < <(packages "$@" "${@/%/$release}")
  if [[ ! -e $folder.made ]]; then
    rm -rf "$folder"
    cp -a --reflink=auto "$roots/$suite/base" "$folder"
    touch "$folder.made"
  fi
  if [[ $(<"$folder.made") != "${wanted[*]}" ]]; then
    within "$folder" apt-get update -q
    within "$folder" apt-get install -q -y --no-install-recommends "${wanted[@]}"
    echo "${wanted[*]}" >"$folder.made"
  fi
}

# make_build_root SUITE: has its compiler and libraries.
make_build_root() {
  make_root "$1" build build package
}

# tree SUITE: where the build for it is.
tree() {
  if [[ $1 == "$machine" ]]; then
    echo "$root/build/release"
  else
    echo "$roots/$1/tree"
  fi
}

# compile SUITE TARGET...: on this machine, or in the root to build in.
compile() {
  local suite=$1 there=() folders=("$root" "$(tree "$1")")
  shift
  mkdir -p "${folders[1]}"
  if [[ $suite != "$machine" ]]; then
    there=(within "$roots/$suite/build" "$root:/source" "${folders[1]}:/build")
    folders=(/source /build)
  fi
  # shellcheck disable=SC2016 # expanded by the inner shell
  "${there[@]}" bash -euc '
    cd "$1"
    tree=$2 options=()
    shift 2
    [[ -e $tree/CMakeCache.txt ]] || options=(-DBUILD_TESTING=OFF -DQUORVALE_WERROR=ON)
    cmake --preset release -B "$tree" "${options[@]}"
    cmake --build "$tree" --target "$@"' compile "${folders[@]}" "$@"
}
