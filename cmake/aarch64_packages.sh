#!/usr/bin/env bash
# Builds Highway and GoogleTest for 64-bit ARM in build/aarch64/packages/root.
set -euo pipefail
toolchain=$(cd "$(dirname "$0")" && pwd)/aarch64.cmake
packages=${toolchain%/cmake/*}/build/aarch64/packages
. "${toolchain%/*}/cross_packages.sh"

begin libhwy-dev googletest
fetch highway
cross_build_highway
cross_build googletest /usr/src/googletest -DBUILD_GMOCK=OFF
finish
