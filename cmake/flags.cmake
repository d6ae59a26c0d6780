# Compile options of our own targets. Linked privately, so nothing of it
# reaches a project that uses the library.
add_library(vek0_flags INTERFACE)
if(MSVC)
  target_compile_options(vek0_flags INTERFACE /utf-8 /fp:strict
    $<$<BOOL:${VEK0_WERROR}>:/W4> $<$<BOOL:${VEK0_WERROR}>:/WX>)
else()
  target_compile_options(vek0_flags INTERFACE
    # A fused multiply-add rounds once where the source rounds twice: results would
    # differ between ARM and x86, and so would saved drawings.
    -ffp-contract=off
    # Failed checks print paths inside the project, wherever it was built.
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
  if(VEK0_WERROR)
    target_compile_options(vek0_flags INTERFACE
      -Wall -Wextra -Wconversion -Wshadow -Woverloaded-virtual -Wnon-virtual-dtor -Werror
      # GCC 12 reports nonexistent overlaps in std::string (its bug 105651).
      $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  endif()
  # Determined from the compiler: -m32 and cross compilers make CMAKE_SYSTEM_PROCESSOR wrong.
  include(CheckCXXSymbolExists)
  check_cxx_symbol_exists(__i386__ "" VEK0_IS_I386)
  if(VEK0_IS_I386)
    # The x87 unit keeps extra bits, which break exact comparisons.
    target_compile_options(vek0_flags INTERFACE -msse2 -mfpmath=sse)
  endif()
endif()

if(VEK0_SANITIZE)
  target_compile_options(vek0_flags INTERFACE
    -fsanitize=${VEK0_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vek0_flags INTERFACE -fsanitize=${VEK0_SANITIZE})
endif()
