# Makes the two payload archives of payloadDir. Leaves their paths in kwaArchiveA and kwaArchiveB.

# A payload folder may bring its own list of contents.
set(kwaContents ${CMAKE_SOURCE_DIR}/payload/contents.json)
if(EXISTS ${payloadDir}/contents.json)
  set(kwaContents ${payloadDir}/contents.json)
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${kwaContents})

# The full paths of the listed files, in payloadFilesA and payloadFilesB. A file that does not exist is left out
# unless the build makes it: Ninja would stop with a poor message, and kwapayload reports everything that is wrong, in
# the list as well.
file(READ ${kwaContents} contents)
string(JSON count ERROR_VARIABLE fault LENGTH "${contents}" files)
set(i 0)
while(NOT fault AND i LESS count)
  string(JSON archive ERROR_VARIABLE fault GET "${contents}" files ${i} archive)
  string(JSON name ERROR_VARIABLE fault GET "${contents}" files ${i} name)
  string(TOLOWER "${archive}" folder)
  math(EXPR i "${i} + 1")
  if(kwaMakesSample OR EXISTS ${payloadDir}/${folder}/${name})
    list(APPEND payloadFiles${archive} ${payloadDir}/${folder}/${name})
  endif()
endwhile()

if(kwaMakesSample)
  # The sample's Windows programs, for both machines.
  add_subdirectory(tools/sample/programs programs-x86)
  set(x64Dir ${CMAKE_BINARY_DIR}/programs-x64)
  ExternalProject_Add(sample_programs_x64
    SOURCE_DIR ${CMAKE_SOURCE_DIR}/tools/sample/programs
    BINARY_DIR ${x64Dir}
    CMAKE_GENERATOR ${CMAKE_GENERATOR}
    CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release -DKWA_WERROR=${KWA_WERROR}
      -DCMAKE_TOOLCHAIN_FILE=${CMAKE_SOURCE_DIR}/cmake/toolchain-mingw-x86_64.cmake
    INSTALL_COMMAND ""
    BUILD_ALWAYS TRUE
    BUILD_BYPRODUCTS ${x64Dir}/standin.exe ${x64Dir}/driver.sys ${x64Dir}/asio.dll)
  file(GLOB sampleFiles ${CMAKE_SOURCE_DIR}/tools/sample/files/*)
  add_custom_command(
    OUTPUT ${payloadFilesA} ${payloadFilesB}
    COMMAND ${kwaSampleTool} --contents ${kwaContents} --files ${CMAKE_SOURCE_DIR}/tools/sample/files
      --programs-x86 ${CMAKE_BINARY_DIR}/programs-x86 --programs-x64 ${x64Dir} ${payloadDir}
    DEPENDS ${kwaSampleTool} ${kwaContents} ${sampleFiles} standin settings driver asio mixer
      ${x64Dir}/standin.exe ${x64Dir}/driver.sys ${x64Dir}/asio.dll
    COMMENT "Making the sample payload"
    VERBATIM)
else()
  # An added or removed file changes the time of its folder. CMake then finds out again which files exist.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${payloadDir} ${payloadDir}/a ${payloadDir}/b)
endif()

foreach(archive A B)
  string(TOLOWER ${archive} folder)
  set(kwaArchive${archive} ${CMAKE_BINARY_DIR}/archive_${folder}.kwap)
  # The folder is in the list because of files that are added or removed.
  add_custom_command(
    OUTPUT ${kwaArchive${archive}}
    COMMAND ${kwaPayloadTool} pack ${payloadDir}/${folder} ${kwaArchive${archive}}
      --contents ${kwaContents} --archive ${archive}
    DEPENDS ${kwaPayloadTool} ${kwaContents} ${payloadFiles${archive}} ${payloadDir}/${folder}
    COMMENT "Packing archive ${archive}"
    VERBATIM)
endforeach()
