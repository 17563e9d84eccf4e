#!/usr/bin/env bash
# in_bare_debian.sh [FOLDER]: makes a bare Debian 12 in TMPDIR and runs newcomer.sh there with the packages of FOLDER.
# Without FOLDER it only checks that this is possible. It needs root, debootstrap and a mirror: FRAMESINK_DEBIAN_MIRROR,
# or Debian's. Its mounts and processes are invisible outside and end with the script.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
mirror=${FRAMESINK_DEBIAN_MIRROR:-http://deb.debian.org/debian}

die() {
  printf 'packages were not tried: %s\n' "$*" >&2
  exit 1
}

# Runs a command with separate mounts and processes.
apart() { unshare --mount --pid --fork --kill-child "$@"; }

[ "$(id -u)" -eq 0 ] || die "making a bare Debian needs root"
command -v debootstrap >/dev/null || die "debootstrap is not installed"
apart true 2>/dev/null || die "unshare is not allowed here"
[ $# -eq 1 ] || exit 0
packages=$1
ls "$packages"/*.deb >/dev/null 2>&1 || die "there are no packages in $packages"

folder=$(mktemp -d)
trap 'rm -rf --one-file-system "$folder"' EXIT
root=$folder/root
debootstrap --variant=minbase bookworm "$root" "$mirror" >"$folder/log" 2>&1 || {
  tail -20 "$folder/log" >&2
  die "debootstrap failed with $mirror"
}
apt-config dump | grep -i '^Acquire::[a-z]*::Proxy' >"$root/etc/apt/apt.conf.d/proxy" || true
cp -L /etc/resolv.conf "$root/etc/resolv.conf"
mkdir "$root/trial"
cp "$here"/* "$here/../../README.md" "$packages"/*.deb "$root/trial"

# The environment is a newcomer's, except for the proxy to the mirror.
newcomers=(HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin)
[ -z "${http_proxy:-}" ] || newcomers+=("http_proxy=$http_proxy")
# shellcheck disable=SC2016
apart env -i "${newcomers[@]}" bash -euc \
  'mount -t proc proc "$0/proc"; mount --rbind /dev "$0/dev"; exec chroot "$0" /trial/newcomer.sh' "$root"
