#!/usr/bin/env bash
# Builds SDL (as a DLL), Highway, GoogleTest and CLI11 for 64-bit Windows in build/windows/packages/root.
set -euo pipefail
toolchain=$(cd "$(dirname "$0")" && pwd)/windows.cmake
packages=${toolchain%/cmake/*}/build/windows/packages
. "${toolchain%/*}/cross_packages.sh"

begin libsdl2-dev libhwy-dev libcli11-dev googletest
fetch libsdl2 highway cli11
cross_build sdl "$packages"/sources/libsdl2-*/ -DSDL_STATIC=OFF -DSDL_TEST=OFF -DSDL2_DISABLE_SDL2MAIN=ON
cross_build_highway
cross_build cli11 "$packages"/sources/cli11-*/ -DCLI11_BUILD_TESTS=OFF -DCLI11_BUILD_EXAMPLES=OFF -DCLI11_BUILD_DOCS=OFF
cross_build googletest /usr/src/googletest
finish
