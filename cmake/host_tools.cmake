# Programs for the build machine: kwapayload and, for the sample, the payload's generator. A project of its own, since
# they want the build machine's compiler.
include(ExternalProject)

set(kwaPayloadTool ${CMAKE_BINARY_DIR}/kwapayload)
set(kwaSampleTool ${CMAKE_BINARY_DIR}/samplepayload)

# A ready tool saves most of a release's build time.
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
