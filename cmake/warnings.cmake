# Every target of the project links this privately. It sets warnings and the flags that let the library unload.
add_library(framesink_warnings INTERFACE)
target_compile_options(framesink_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Werror=return-type
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>
  # GCC 12 mistakes string concatenation for an overlapping copy (GCC bug 105329).
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>
  # Contraction to fused multiply-add would change the specified results of conversions.
  -ffp-contract=off
  # A UNIQUE symbol would keep the library mapped after dlclose.
  $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU>>:-fno-gnu-unique>)

# Targets that use locks link this; see src/process/thread_safety.hpp.
add_library(framesink_lock_checks INTERFACE)
target_compile_options(framesink_lock_checks INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety;-Werror=thread-safety>)
