# Programs for the build machine: kwapayload and the generator of the sample payload. They are a project of their own,
# because they need the compiler of the build machine. All presets use the same programs, build/kwapayload and
# build/samplepayload, and compile them with the same flags. The lock is for builds that run at the same time.
include(ExternalProject)

set(kwaPayloadTool ${CMAKE_SOURCE_DIR}/build/kwapayload)
set(kwaSampleTool ${CMAKE_SOURCE_DIR}/build/samplepayload)

# For the test that builds a copy of this tree. A tool of other sources would write a wrong digest of the texts.
set(KWA_PAYLOAD_TOOL "" CACHE FILEPATH "kwapayload of the same sources; empty: the build makes its own")
mark_as_advanced(KWA_PAYLOAD_TOOL)
if(KWA_PAYLOAD_TOOL)
  set(kwaPayloadTool ${KWA_PAYLOAD_TOOL})
  return()
endif()

set(hostDir ${CMAKE_SOURCE_DIR}/build/host)
file(MAKE_DIRECTORY ${hostDir})
add_custom_target(host_tools
  COMMAND flock ${hostDir}.lock ${CMAKE_COMMAND} -G ${CMAKE_GENERATOR} -S ${CMAKE_SOURCE_DIR}/tools -B ${hostDir}
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${CMAKE_SOURCE_DIR}/build -DKWA_WERROR=${KWA_WERROR}
    --log-level=WARNING
  COMMAND flock ${hostDir}.lock ${CMAKE_COMMAND} --build ${hostDir}
  BYPRODUCTS ${kwaPayloadTool} ${kwaSampleTool}
  COMMENT "Building the host tools"
  # Shows the progress, because this takes longest.
  USES_TERMINAL
  VERBATIM)
