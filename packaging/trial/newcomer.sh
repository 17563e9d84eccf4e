#!/usr/bin/env bash
# Does what a newcomer does, as root in a bare Debian 12: installs the packages in this folder, runs the README's
# examples on a virtual display, builds with the library, runs framesink-play and removes the packages. Fails if
# anything is left.
set -euo pipefail
cd "$(dirname "$0")"
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8

step() {
  printf '%4d s  %s\n' "$SECONDS" "$*"
}

# Installs no recommended packages, because the dependencies must be sufficient.
apt_get() {
  apt-get -y -qq --no-install-recommends "$@" >apt.log 2>&1 || {
    cat apt.log
    return 1
  }
}

# Prints the README's code in a language.
readme() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/{/^\`\`\`/d;p}" README.md; }

# Lists all files and folders except the records of apt, dpkg and the loader.
everything() {
  find / -xdev \( -path "$PWD" -o -path /var/lib/apt -o -path /var/lib/dpkg -o -path /var/cache \
    -o -path /var/log -o -path /tmp \) -prune -o -print | sort
}

see_in_python() {
  readme python >wave.py
  python3 -m doctest -o ELLIPSIS interpreter.txt
}

build_and_run() {
  readme c >ten_lines.h
  # shellcheck disable=SC2046
  gcc host.c -o by_pkg_config $(pkg-config --cflags --libs framesink)
  ./by_pkg_config
  cmake -S . -B by_cmake >cmake.log
  cmake --build by_cmake >>cmake.log
  by_cmake/host
}

play() {
  framesink-play --version
  framesink-play --doctor >doctor.txt || {
    cat doctor.txt
    return 1
  }
  framesink-play --duration 2
}

step "installing a compiler, CMake and a virtual display"
apt_get update
apt_get install cmake gcc libc6-dev make pkg-config x11-utils xvfb
everything >before.txt

step "installing $(echo *.deb)"
apt_get install ./*.deb
mapfile -t packages < <(for deb in *.deb; do dpkg-deb -f "$deb" Package; done)
dpkg -L "${packages[@]}" | sort -u >ours.txt

step "starting a virtual display"
mkfifo display
mkdir framebuffer
Xvfb -displayfd 3 -screen 0 1280x1024x24 -fbdir framebuffer -nolisten tcp 3>display 2>xvfb.log &
read -r number <display || {
  cat xvfb.log
  exit 1
}
export DISPLAY=:$number

step "running the README's Python example, and using its window from the interpreter"
see_in_python
step "building the README's C example with pkg-config and with CMake, and running it"
build_and_run
step "running framesink-play"
play

step "removing the packages, then their dependencies"
apt_get purge "${packages[@]}"
if everything | grep -E 'framesink|pixkit'; then
  echo "these files are left"
  exit 1
fi
apt_get autoremove --purge
everything >after.txt
if ! diff before.txt after.txt >left.txt; then
  echo "left (>) or lost (<):"
  cat left.txt
  exit 1
fi
step "none of the $(comm -23 ours.txt before.txt | wc -l) installed files and folders is left"
