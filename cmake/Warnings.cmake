# Link TeskWarnings privately to have a target compiled with the project's warnings.
add_library(TeskWarnings INTERFACE)
target_compile_options(TeskWarnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  # GCC 12 takes std::string's own code for overlapping copies (its bug 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${TESK_WARNINGS_AS_ERRORS}>:-Werror>)
