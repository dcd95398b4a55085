# A library of the program's own, not installed: its target has the project's prefix, so that no
# project that embeds this one has a target of the same name; everybody links Tesk::NAME.
function(tesk_add_library NAME)
  add_library(Tesk${NAME} STATIC ${ARGN})
  add_library(Tesk::${NAME} ALIAS Tesk${NAME})
  target_link_libraries(Tesk${NAME} PRIVATE TeskWarnings)
endfunction()
