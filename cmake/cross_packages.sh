# Builds libraries for another architecture from Debian's sources; aarch64_packages.sh and windows_packages.sh
# source this file. It builds the versions that are installed on this machine into $packages/root. A later run
# keeps $packages/root if versions and scripts are unchanged. Apt uses its own lists below $packages, so the
# machine's configuration, lists and architectures do not change.
# The caller sets `toolchain` to CMake's toolchain file, and `packages` to the folder for all of this.

die() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# Prints the machine's Debian repositories as entries for sources.
source_list() {
  apt-get indextargets --release-info 'Created-By: Packages' 'Origin: Debian' --format \
    'deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(REPO_URI) $(RELEASE) $(COMPONENT)' | sort -u
}

# Runs apt-get with separate configuration and state. It needs no sandbox user, because it installs nothing.
private_apt_get() {
  apt-get -qq -o Dir::Etc::sourcelist="$packages/apt/sources.list" -o Dir::Etc::sourceparts=/dev/null \
    -o Dir::State="$packages/apt/state" -o Dir::State::lists="$packages/apt/lists" \
    -o Dir::Cache="$packages/apt/cache" -o APT::Sandbox::User= "$@"
}

# fetch SOURCE_PACKAGE...: unpacks these packages into the folder `sources`, in the versions that `versions` lists.
fetch() {
  local name
  mkdir -p "$packages"/apt/{state,lists/partial,cache/archives/partial} "$packages/sources"
  source_list >"$packages/apt/sources.list"
  [ -s "$packages/apt/sources.list" ] || die "apt has no Debian repository; run apt-get update"
  private_apt_get update
  for name in "$@"; do
    (cd "$packages/sources" && private_apt_get source "$(grep "^$name=" <<<"$versions")" >"$packages/fetch.log" 2>&1) || {
      cat "$packages/fetch.log" >&2
      die "fetching the source of $name failed"
    }
  done
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

cross_build_highway() {
  cross_build highway "$packages"/sources/highway-*/ -DHWY_ENABLE_CONTRIB=OFF -DHWY_ENABLE_EXAMPLES=OFF \
    -DHWY_ENABLE_TESTS=OFF -DBUILD_TESTING=OFF
}

# begin INSTALLED_PACKAGE...: sets `versions` to the versions of their source packages and a checksum of the scripts.
# Ends the script if $packages/root was built from the same versions by the same scripts.
begin() {
  versions=$(dpkg-query -W -f '${source:Package}=${source:Version}\n' "$@" && cat "${BASH_SOURCE[@]}" "$toolchain" | sha256sum)
  [ "$(cat "$packages/root/versions" 2>/dev/null)" = "$versions" ] && exit
  rm -rf "$packages"
}

finish() { printf '%s\n' "$versions" >"$packages/root/versions"; }
