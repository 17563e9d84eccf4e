# Builds for 64-bit Windows with Debian's cross compiler. Programs run under Wine. windows_packages.sh builds the
# libraries. The compiler's own libraries (C++, threads) are linked statically.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -static)
# Windows aligns stacks to 16 bytes only, but this compiler assumes aligned addresses for wider vectors on the stack.
# With this option the assembler makes their moves accept any address.
set(CMAKE_C_FLAGS_INIT -Wa,-muse-unaligned-vector-move)
set(CMAKE_CXX_FLAGS_INIT -Wa,-muse-unaligned-vector-move)

cmake_path(SET FRAMESINK_WINDOWS_BUILD NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../build/windows)
set(CMAKE_FIND_ROOT_PATH ${FRAMESINK_WINDOWS_BUILD}/packages/root /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine.sh)
