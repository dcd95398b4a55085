# Link TeskWarnings privately to have a target compiled with the project's warnings.
add_library(TeskWarnings INTERFACE)
target_compile_options(TeskWarnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  # GCC 12 takes std::string's own code for overlapping copies (its bug 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${TESK_WARNINGS_AS_ERRORS}>:-Werror>)
if(TESK_SANITIZE)
  # With sanitizers GCC 12 takes members of std::regex for uninitialized (its bug 105562). The other
  # builds keep that warning.
  target_compile_options(TeskWarnings INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()
