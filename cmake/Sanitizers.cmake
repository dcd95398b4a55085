# TESK_SANITIZE names the sanitizers to build everything with, as the compiler spells them:
# "address,undefined" or "thread".
set(TESK_SANITIZE "" CACHE STRING "Sanitizers to build with")
if(TESK_SANITIZE)
  add_compile_options(-fsanitize=${TESK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  if(TESK_SANITIZE MATCHES "address")
    add_compile_definitions(TESK_ADDRESS_SANITIZER)
  endif()
  add_link_options(-fsanitize=${TESK_SANITIZE})
  # That check compares the addresses of type information, of which each library that hides its symbols
  # has its own.
  add_compile_options($<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=function>)
endif()
