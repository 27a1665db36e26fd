# Programs for the build machine: kwapayload and the generator of the sample payload. They are a project of their own,
# because they need the compiler of the build machine.
include(ExternalProject)

set(kwaPayloadTool ${CMAKE_BINARY_DIR}/kwapayload)
set(kwaSampleTool ${CMAKE_BINARY_DIR}/samplepayload)

# With a tool that is already built, a release takes much less time.
set(KWA_PAYLOAD_TOOL "" CACHE FILEPATH "kwapayload for a release; empty: the build makes its own")
if(KWA_PAYLOAD_TOOL AND KWA_PAYLOAD STREQUAL "release")
  set(kwaPayloadTool ${KWA_PAYLOAD_TOOL})
  return()
endif()

ExternalProject_Add(host_tools
  SOURCE_DIR ${CMAKE_SOURCE_DIR}/tools
  BINARY_DIR ${CMAKE_BINARY_DIR}/host
  CMAKE_GENERATOR ${CMAKE_GENERATOR}
  CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release -DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${CMAKE_BINARY_DIR} -DKWA_WERROR=${KWA_WERROR}
  INSTALL_COMMAND ""
  BUILD_ALWAYS TRUE
  BUILD_BYPRODUCTS ${kwaPayloadTool} ${kwaSampleTool})
