# Installs the project, builds the examples against the installed copy, and sends requests to the
# example host, which loads the plug-in and the example provider.

set(PREFIX ${WORK_DIRECTORY}/prefix)
file(REMOVE_RECURSE ${WORK_DIRECTORY})

function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIRECTORY} --prefix ${PREFIX})
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

# What is internal is neither installed nor needed by what is.
file(GLOB_RECURSE HEADERS ${PREFIX}/include/tesk/*.h)
foreach(HEADER ${HEADERS})
  file(STRINGS ${HEADER} INTERNAL REGEX "#include \"Platform/Internal/")
  if(HEADER MATCHES "/Internal/" OR INTERNAL)
    message(FATAL_ERROR "Internal, or includes what is: ${HEADER}")
  endif()
endforeach()

run(${CMAKE_COMMAND} -S ${PROJECT_DIRECTORY} -B ${WORK_DIRECTORY}/build -G ${GENERATOR}
    -D CMAKE_CXX_COMPILER=${COMPILER} -D CMAKE_PREFIX_PATH=${PREFIX})
run(${CMAKE_COMMAND} --build ${WORK_DIRECTORY}/build)

# Moved, so that nothing is found at the place where it was installed.
file(RENAME ${PREFIX} ${WORK_DIRECTORY}/moved)

# Sends a request for PATH to the example host and compares the response with the pattern.
function(expect_response PATH PATTERN)
  file(WRITE ${WORK_DIRECTORY}/request "GET ${PATH} HTTP/1.1\r\nHost: localhost\r\n\r\n")
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${WORK_DIRECTORY}/moved/${LIBRARY_DIR}
      ${WORK_DIRECTORY}/build/Host ${WORK_DIRECTORY}/moved/${LIBRARY_DIR}/tesk ${WORK_DIRECTORY}/build/providers
    INPUT_FILE ${WORK_DIRECTORY}/request
    OUTPUT_VARIABLE RESPONSE
    COMMAND_ERROR_IS_FATAL ANY)
  if(NOT RESPONSE MATCHES "${PATTERN}")
    message(FATAL_ERROR "The response to ${PATH} is\n${RESPONSE}\nwhich does not match\n${PATTERN}")
  endif()
endfunction()

set(DOCUMENT "^HTTP/1.1 200 OK\r?\n.*Content-Type: text/xml\r?\n\r?\n<[?]xml ")
expect_response(/greeting "^HTTP/1.1 200 OK\r?\n.*\r?\n\r?\nHello guest\n$")
expect_response(/root/cimv2/EX_Greeting.wsdl
  "${DOCUMENT}.*\n  name=\"EX_Greeting_WSDL\"\n.*location=\"http://localhost/wsman\".*\n</wsdl:definitions>\n$")
expect_response(/root/cimv2/EX_Greeting.xsd
  "${DOCUMENT}.*<xs:element name=\"Text\" type=\"cim:cimString\"/>\n.*\n</xs:schema>\n$")
expect_response(/root/cimv2/STSService.wsdl "${DOCUMENT}.*name=\"STSService\"")
expect_response(/root/cimv2/EX_Unknown.wsdl "^HTTP/1.1 404 ")
expect_response(/elsewhere/EX_Greeting.wsdl "^HTTP/1.1 404 ")
