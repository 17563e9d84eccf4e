#!/usr/bin/env bash
# Builds Highway and GoogleTest for 64-bit ARM from Debian's sources, in the versions that are installed
# for this machine: build/aarch64/packages/root, kept until one of them changes. Apt gets lists of its own
# there; the machine's configuration, lists and architectures stay as they are.
set -euo pipefail
toolchain=$(cd "$(dirname "$0")" && pwd)/aarch64.cmake
packages=${toolchain%/cmake/*}/build/aarch64/packages

die() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# The machine's Debian repositories, for sources.
source_list() {
  apt-get indextargets --release-info 'Created-By: Packages' 'Origin: Debian' --format \
    'deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(REPO_URI) $(RELEASE) $(COMPONENT)' | sort -u
}

# apt-get with configuration and state of its own. Nothing is installed: no user of apt's own is needed.
private_apt_get() {
  apt-get -qq -o Dir::Etc::sourcelist="$packages/apt/sources.list" -o Dir::Etc::sourceparts=/dev/null \
    -o Dir::State="$packages/apt/state" -o Dir::State::lists="$packages/apt/lists" \
    -o Dir::Cache="$packages/apt/cache" -o APT::Sandbox::User= "$@"
}

# fetch PACKAGE=VERSION: unpacks a source package into the folder `sources`.
fetch() {
  mkdir -p "$packages"/apt/{state,lists/partial,cache/archives/partial} "$packages/sources"
  source_list >"$packages/apt/sources.list"
  [ -s "$packages/apt/sources.list" ] || die "apt knows no repository of Debian's; run apt-get update"
  private_apt_get update
  (cd "$packages/sources" && private_apt_get source "$1" >"$packages/fetch.log" 2>&1) || {
    cat "$packages/fetch.log" >&2
    die "fetching the source of $1 failed"
  }
}

# cross_build NAME SOURCE [CMAKE_ARGUMENT...]
cross_build() {
  local name=$1 source=$2 log=$packages/$1.log
  shift 2
  {
    cmake -S "$source" -B "$packages/$name" -G Ninja --toolchain "$toolchain" -DCMAKE_BUILD_TYPE=Release \
      -DCMAKE_INSTALL_PREFIX="$packages/root/usr" -DCMAKE_INSTALL_LIBDIR=lib "$@" &&
      cmake --build "$packages/$name" --target install
  } >"$log" 2>&1 || {
    tail -n 50 "$log" >&2
    die "building $name failed; see $log"
  }
}

versions=$(dpkg-query -W -f '${source:Package}=${source:Version}\n' libhwy-dev googletest)
[ "$(cat "$packages/root/versions" 2>/dev/null)" = "$versions" ] && exit
rm -rf "$packages"
highway=$(grep '^highway=' <<<"$versions")
fetch "$highway"
cross_build highway "$packages"/sources/highway-*/ -DHWY_ENABLE_CONTRIB=OFF -DHWY_ENABLE_EXAMPLES=OFF \
  -DHWY_ENABLE_TESTS=OFF -DBUILD_TESTING=OFF
cross_build googletest /usr/src/googletest -DBUILD_GMOCK=OFF
printf '%s\n' "$versions" >"$packages/root/versions"
