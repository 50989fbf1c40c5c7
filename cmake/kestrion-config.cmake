include("${CMAKE_CURRENT_LIST_DIR}/kestrion-targets.cmake")
