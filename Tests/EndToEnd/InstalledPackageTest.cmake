# Installs the project and builds a project of somebody else's against it: a provider and a host.

set(PREFIX ${WORK_FOLDER}/prefix)
file(REMOVE_RECURSE ${WORK_FOLDER})

function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_FOLDER} --prefix ${PREFIX})
foreach(FILE
    include/tesk/Platform/Util/TSKString.h
    include/tesk/Platform/ProviderFramework/Provider.h
    ${LIBRARY_DIR}/libTeskPlatform.so
    ${LIBRARY_DIR}/pkgconfig/teskplatform.pc
    ${LIBRARY_DIR}/tesk/providers/libWsdlWebProvider.so
    share/bash-completion/completions/tesk
    share/man/man1/tesk.1
    share/man/man5/tesk.toml.5
    share/doc/Tesk/LICENSE)
  if(NOT EXISTS ${PREFIX}/${FILE})
    message(FATAL_ERROR "Not installed: ${FILE}")
  endif()
endforeach()

run(${CMAKE_COMMAND} -S ${PROJECT_FOLDER} -B ${WORK_FOLDER}/build -G ${GENERATOR}
    -D CMAKE_CXX_COMPILER=${COMPILER} -D CMAKE_PREFIX_PATH=${PREFIX})
run(${CMAKE_COMMAND} --build ${WORK_FOLDER}/build)

# Moved, so that nothing is found at the place where it was installed.
file(RENAME ${PREFIX} ${WORK_FOLDER}/moved)
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${WORK_FOLDER}/moved/${LIBRARY_DIR}
    ${WORK_FOLDER}/build/Host ${WORK_FOLDER}/moved/${LIBRARY_DIR}/tesk/providers ${WORK_FOLDER}/build/providers
  OUTPUT_VARIABLE OUTPUT
  COMMAND_ERROR_IS_FATAL ANY)
set(EXPECTED "/root/cimv2/CIM_Foo.wsdl: WsdlWebProvider
/greeting: GreetingProvider
/elsewhere/CIM_Foo.wsdl: nobody
")
if(NOT OUTPUT STREQUAL EXPECTED)
  message(FATAL_ERROR "The host printed:\n${OUTPUT}instead of:\n${EXPECTED}")
endif()
