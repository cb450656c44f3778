# One interface target carries the warnings and the sanitizers; every target of the tree links it.
add_library(vrx_compiler INTERFACE)
target_compile_options(vrx_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor
  -Woverloaded-virtual
  $<$<BOOL:${VRX_WERROR}>:-Werror>
  # Several sources in one look like headers to GCC.
  $<$<BOOL:${VRX_UNITY}>:-Wno-subobject-linkage>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>  # GCC 12 reports false ones in std::string
  # The arithmetic rounds each step as written: no fused multiply-add on any processor.
  -ffp-contract=off)
if(VRX_SANITIZE)
  target_compile_options(vrx_compiler INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    # GCC reports false ones in sanitized code.
    -Wno-maybe-uninitialized)
  target_link_options(vrx_compiler INTERFACE -fsanitize=address,undefined)
endif()
