# Builds for 64-bit ARM with Debian's cross compiler. Programs run under qemu. aarch64_packages.sh builds the
# libraries.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static -L /usr/aarch64-linux-gnu)

cmake_path(SET FRAMESINK_AARCH64_ROOT NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../build/aarch64/packages/root)
set(CMAKE_FIND_ROOT_PATH ${FRAMESINK_AARCH64_ROOT} /usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
