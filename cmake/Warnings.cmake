# Link TeskWarnings privately to have a target compiled with the project's warnings.
add_library(TeskWarnings INTERFACE)
target_compile_options(TeskWarnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${TESK_WARNINGS_AS_ERRORS}>:-Werror>)
