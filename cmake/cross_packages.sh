# Sourced by aarch64_packages.sh and windows_packages.sh: builds libraries for another machine from Debian's
# sources, in the versions that are installed for this one, into $packages/root, which is kept until one of them
# changes. Apt gets lists of its own there; the machine's configuration, lists and architectures stay as they are.
# Expects `toolchain`, CMake's toolchain file, and `packages`, the folder for all of this.

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

# fetch SOURCE_PACKAGE...: unpacks them in the wanted versions into the folder `sources`.
fetch() {
  local name
  mkdir -p "$packages"/apt/{state,lists/partial,cache/archives/partial} "$packages/sources"
  source_list >"$packages/apt/sources.list"
  [ -s "$packages/apt/sources.list" ] || die "apt knows no repository of Debian's; run apt-get update"
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

# begin INSTALLED_PACKAGE...: sets `versions` to those of their sources; ends the script when the root has these
# and was built by the present scripts.
begin() {
  versions=$(dpkg-query -W -f '${source:Package}=${source:Version}\n' "$@" && cat "${BASH_SOURCE[@]}" "$toolchain" | sha256sum)
  [ "$(cat "$packages/root/versions" 2>/dev/null)" = "$versions" ] && exit
  rm -rf "$packages"
}

finish() { printf '%s\n' "$versions" >"$packages/root/versions"; }
