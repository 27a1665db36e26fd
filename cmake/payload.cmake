# Makes the two payload archives. Leaves their paths in kwaArchiveA and kwaArchiveB.

if(KWA_PAYLOAD_DIR)
  set(payloadDir ${KWA_PAYLOAD_DIR})
elseif(KWA_PAYLOAD STREQUAL "sample")
  set(payloadDir ${CMAKE_BINARY_DIR}/payload)
else()
  set(payloadDir ${CMAKE_SOURCE_DIR}/payload)
endif()
# A payload folder may bring its own list of contents.
set(kwaContents ${CMAKE_SOURCE_DIR}/payload/contents.json)
if(EXISTS ${payloadDir}/contents.json)
  set(kwaContents ${payloadDir}/contents.json)
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${kwaContents})

set(payloadFiles)
set(differences "")
file(READ ${kwaContents} contents)
string(JSON last LENGTH "${contents}" files)
math(EXPR last "${last} - 1")
foreach(i RANGE ${last})
  string(JSON archive GET "${contents}" files ${i} archive)
  string(JSON name GET "${contents}" files ${i} name)
  string(JSON wanted GET "${contents}" files ${i} size)
  string(TOLOWER ${archive} folder)
  set(file ${payloadDir}/${folder}/${name})
  list(APPEND payloadFiles ${file})
  if(NOT EXISTS ${file})
    string(APPEND differences "\n  ${file}: is missing")
  else()
    file(SIZE ${file} size)
    if(NOT size EQUAL wanted)
      string(APPEND differences "\n  ${file}: has ${size} bytes instead of ${wanted}")
    endif()
  endif()
endforeach()
file(GLOB unexpected ${payloadDir}/a/* ${payloadDir}/b/*)
list(REMOVE_ITEM unexpected ${payloadFiles})
foreach(file IN LISTS unexpected)
  string(APPEND differences "\n  ${file}: is not in the list of contents")
endforeach()

if(KWA_PAYLOAD STREQUAL "sample" AND NOT KWA_PAYLOAD_DIR)
  # The sample's Windows programs, for both machines.
  add_subdirectory(tools/sample/programs programs-x86)
  set(x64Dir ${CMAKE_BINARY_DIR}/programs-x64)
  set(sampleFiles ${CMAKE_SOURCE_DIR}/tools/sample/files)
  ExternalProject_Add(sample_programs_x64
    SOURCE_DIR ${CMAKE_SOURCE_DIR}/tools/sample/programs
    BINARY_DIR ${x64Dir}
    CMAKE_GENERATOR ${CMAKE_GENERATOR}
    CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release -DKWA_WERROR=${KWA_WERROR}
      -DCMAKE_TOOLCHAIN_FILE=${CMAKE_SOURCE_DIR}/cmake/toolchain-mingw-x86_64.cmake
    INSTALL_COMMAND ""
    BUILD_ALWAYS TRUE
    BUILD_BYPRODUCTS ${x64Dir}/standin.exe ${x64Dir}/driver.sys ${x64Dir}/asio.dll)
  # The folders stand below as what the archives depend on: they must exist before the first build.
  file(MAKE_DIRECTORY ${payloadDir}/a ${payloadDir}/b)
  add_custom_command(
    OUTPUT ${payloadFiles}
    COMMAND ${kwaSampleTool} --contents ${kwaContents} --files ${sampleFiles}
      --programs-x86 ${CMAKE_BINARY_DIR}/programs-x86 --programs-x64 ${x64Dir} ${payloadDir}
    DEPENDS ${kwaSampleTool} ${kwaContents} ${sampleFiles}/eula_de.txt ${sampleFiles}/eula_en.txt
      ${sampleFiles}/signer.pem standin settings driver asio mixer
      ${x64Dir}/standin.exe ${x64Dir}/driver.sys ${x64Dir}/asio.dll
    COMMENT "Making the sample payload"
    VERBATIM)
elseif(differences)
  # Better here than as a failing build: the person who configures is the one who has other files.
  message(FATAL_ERROR "The payload does not fit the list of contents:${differences}\nIf the files are right, this makes a new list:"
    "\n  kwapayload contents ${payloadDir} --output ${payloadDir}/contents.json")
endif()

foreach(archive A B)
  string(TOLOWER ${archive} folder)
  set(kwaArchive${archive} ${CMAKE_BINARY_DIR}/archive_${folder}.kwap)
  set(generatedFiles)
  if(TARGET sample_programs_x64)
    set(generatedFiles ${payloadFiles})
    list(FILTER generatedFiles INCLUDE REGEX "/${folder}/[^/]*$")
  endif()
  # The folder stands for added and removed files, the depfile for changed ones.
  add_custom_command(
    OUTPUT ${kwaArchive${archive}}
    COMMAND ${kwaPayloadTool} pack ${payloadDir}/${folder} ${kwaArchive${archive}}
      --contents ${kwaContents} --archive ${archive} --depfile ${kwaArchive${archive}}.d
    DEPENDS ${kwaPayloadTool} ${kwaContents} ${generatedFiles} ${payloadDir}/${folder}
    DEPFILE ${kwaArchive${archive}}.d
    COMMENT "Packing archive ${archive}"
    VERBATIM)
endforeach()
