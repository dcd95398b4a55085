# TESK_SANITIZE names the sanitizers to build everything with, as the compiler spells them:
# "address,undefined" or "thread".
set(TESK_SANITIZE "" CACHE STRING "Sanitizers to build with")
if(TESK_SANITIZE)
  add_compile_options(-fsanitize=${TESK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TESK_SANITIZE})
endif()
