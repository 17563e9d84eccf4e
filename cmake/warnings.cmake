# Linked privately by every target of ours: warnings, and the flags that keep the library unloadable.
add_library(framesink_warnings INTERFACE)
target_compile_options(framesink_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Werror=return-type
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>
  # GCC 12 takes the concatenation of strings for an overlapping copy (its bug 105329).
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>
  # Contraction into fused multiply-add would change the bytes that conversion promises.
  -ffp-contract=off
  # A UNIQUE symbol would keep the library mapped after dlclose.
  $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU>>:-fno-gnu-unique>)

# For what takes locks: see src/process/thread_safety.hpp.
add_library(framesink_lock_checks INTERFACE)
target_compile_options(framesink_lock_checks INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety;-Werror=thread-safety>)
