# The tests are projects of their own: the Windows tests need the thread variant of the compiler that GoogleTest
# needs, the host tests need the compiler of the build machine with sanitizers. One ctest in this build folder runs
# all of them.
enable_testing()

ExternalProject_Add(windows_tests
  SOURCE_DIR ${CMAKE_SOURCE_DIR}/tests
  BINARY_DIR ${CMAKE_BINARY_DIR}/tests
  CMAKE_GENERATOR ${CMAKE_GENERATOR}
  CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release -DKWA_WERROR=${KWA_WERROR}
    -DCMAKE_TOOLCHAIN_FILE=${CMAKE_SOURCE_DIR}/cmake/toolchain-mingw-i686.cmake -DKWA_THREADS=posix
    -DKWA_INSTALLER=${CMAKE_BINARY_DIR}/kwa_installer.exe -DKWA_PAYLOAD_DIR=${payloadDir}
    -DKWA_WINE_DIR=${CMAKE_BINARY_DIR}/wine
  INSTALL_COMMAND ""
  BUILD_ALWAYS TRUE)

ExternalProject_Add(host_tests
  SOURCE_DIR ${CMAKE_SOURCE_DIR}/tools
  BINARY_DIR ${CMAKE_BINARY_DIR}/host-tests
  CMAKE_GENERATOR ${CMAKE_GENERATOR}
  # tools/CMakePresets.json has the flags. With the sanitizers, -O1 compiles in little more than half the time of -O2.
  CMAKE_ARGS --preset test -B <BINARY_DIR> -DKWA_WERROR=${KWA_WERROR}
    -DKWA_INSTALLER=${CMAKE_BINARY_DIR}/kwa_installer.exe -DKWA_PAYLOAD_DIR=${payloadDir} -DKWA_CONTENTS=${kwaContents}
  INSTALL_COMMAND ""
  BUILD_ALWAYS TRUE)

file(WRITE ${CMAKE_BINARY_DIR}/sub_tests.cmake
  "subdirs(\"${CMAKE_BINARY_DIR}/tests\" \"${CMAKE_BINARY_DIR}/host-tests\")\n")
set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${CMAKE_BINARY_DIR}/sub_tests.cmake)

# The prefixes are made at build time, because CTest runs the Windows test programs, to list their tests, before it runs
# the fixture.
set(winePrefixes ${CMAKE_SOURCE_DIR}/tests/wine_prefixes)
add_custom_target(wine_prefixes ALL COMMAND ${winePrefixes} make ${CMAKE_BINARY_DIR}/wine
  COMMENT "Making the Wine prefixes" VERBATIM)
add_test(NAME wine.start COMMAND ${winePrefixes} start ${CMAKE_BINARY_DIR}/wine)
add_test(NAME wine.stop COMMAND ${winePrefixes} stop ${CMAKE_BINARY_DIR}/wine)
set_tests_properties(wine.start PROPERTIES FIXTURES_SETUP wine)
set_tests_properties(wine.stop PROPERTIES FIXTURES_CLEANUP wine)

set(releaseTests ${CMAKE_SOURCE_DIR}/tests/release)
add_test(NAME release.reproducible COMMAND ${releaseTests}/reproducible_test
  ${CMAKE_SOURCE_DIR} ${payloadDir} ${kwaPayloadTool} ${CMAKE_BINARY_DIR}/release-test/reproducible)
add_test(NAME release.signed COMMAND ${releaseTests}/signed_test
  ${CMAKE_SOURCE_DIR} ${payloadDir} ${CMAKE_BINARY_DIR}/kwa_installer.exe ${CMAKE_BINARY_DIR}/release-test/signed)
# These take by far the longest, so CTest starts them first.
set_tests_properties(release.reproducible release.signed PROPERTIES COST 100)
set_tests_properties(release.signed PROPERTIES FIXTURES_REQUIRED wine)
