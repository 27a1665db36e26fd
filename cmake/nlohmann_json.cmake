# The target kwa_nlohmann_json: the header-only JSON library, also for Windows programs. A cross build gets a copy of
# it, because the include folder of the build machine also contains the headers of that machine's C library.
include_guard(GLOBAL)

find_path(KWA_NLOHMANN_JSON_FOLDER nlohmann/json.hpp NO_CMAKE_FIND_ROOT_PATH
  DOC "Folder that holds nlohmann/json.hpp")
if(NOT KWA_NLOHMANN_JSON_FOLDER)
  message(FATAL_ERROR "nlohmann/json.hpp was not found; script/setup installs it (nlohmann-json3-dev).")
endif()
file(COPY ${KWA_NLOHMANN_JSON_FOLDER}/nlohmann DESTINATION ${CMAKE_BINARY_DIR}/nlohmann_json)

add_library(kwa_nlohmann_json INTERFACE)
target_include_directories(kwa_nlohmann_json SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/nlohmann_json)
