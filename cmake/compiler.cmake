# An interface target with the warnings and the sanitizers; every target of the tree links it.
add_library(vrx_compiler INTERFACE)
target_compile_options(vrx_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor
  -Woverloaded-virtual
  $<$<BOOL:${VRX_WERROR}>:-Werror>
  # GCC treats the sources of a unity build as headers and warns.
  $<$<BOOL:${VRX_UNITY}>:-Wno-subobject-linkage>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>  # GCC 12 reports false ones in std::string
  # Each arithmetic step rounds as written: no fused multiply-add on any processor.
  -ffp-contract=off)
if(VRX_SANITIZE)
  target_compile_options(vrx_compiler INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    # GCC reports false positives in sanitized code.
    -Wno-maybe-uninitialized)
  target_link_options(vrx_compiler INTERFACE -fsanitize=address,undefined)
endif()
