#!/usr/bin/env bash
# in_bare_debian.sh [FOLDER]: has newcomer.sh use FOLDER's packages in a bare Debian 12, made in TMPDIR; without
# FOLDER tells only whether that can be. Needs root, debootstrap and a mirror: FRAMESINK_DEBIAN_MIRROR, or
# Debian's. What is mounted and started for it is seen by nobody else, and ends with it.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
mirror=${FRAMESINK_DEBIAN_MIRROR:-http://deb.debian.org/debian}

die() {
  printf 'packages were not tried: %s\n' "$*" >&2
  exit 1
}

# Runs a command that has mounts and processes of its own.
apart() { unshare --mount --pid --fork --kill-child "$@"; }

[ "$(id -u)" -eq 0 ] || die "only root can make a bare Debian and go there"
command -v debootstrap >/dev/null || die "debootstrap is not installed"
apart true 2>/dev/null || die "unshare is not allowed here"
[ $# -eq 1 ] || exit 0
packages=$1
ls "$packages"/*.deb >/dev/null 2>&1 || die "there are none in $packages"

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

# With an environment of a newcomer's own, but for the way to the mirror.
newcomers=(HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin)
[ -z "${http_proxy:-}" ] || newcomers+=("http_proxy=$http_proxy")
# shellcheck disable=SC2016
apart env -i "${newcomers[@]}" bash -euc \
  'mount -t proc proc "$0/proc"; mount --rbind /dev "$0/dev"; exec chroot "$0" /trial/newcomer.sh' "$root"
