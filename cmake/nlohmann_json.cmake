# The target kwa_nlohmann_json: the header-only JSON library, for Windows programs too. A cross build cannot simply use
# the build machine's include folder, since the C library's headers of that machine stand there as well: it gets a copy.
include_guard(GLOBAL)

find_path(KWA_NLOHMANN_JSON_FOLDER nlohmann/json.hpp NO_CMAKE_FIND_ROOT_PATH
  DOC "Folder that holds nlohmann/json.hpp")
if(NOT KWA_NLOHMANN_JSON_FOLDER)
  message(FATAL_ERROR "nlohmann/json.hpp was not found; script/setup installs it (nlohmann-json3-dev).")
endif()
file(COPY ${KWA_NLOHMANN_JSON_FOLDER}/nlohmann DESTINATION ${CMAKE_BINARY_DIR}/nlohmann_json)

add_library(kwa_nlohmann_json INTERFACE)
target_include_directories(kwa_nlohmann_json SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/nlohmann_json)
