# libFuzzer looks for input that runs new code; for that, code must count what of it runs.
if(TESK_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "Fuzzers need Clang: configure with the preset \"asan\"")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
