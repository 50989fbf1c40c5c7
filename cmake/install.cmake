# What `cmake --install` lays down: a complete installation directory and a relocatable package.
include(CMakePackageConfigHelpers)

install(TARGETS kestrion EXPORT kestrion-targets ARCHIVE DESTINATION lib)
install(EXPORT kestrion-targets NAMESPACE kestrion:: DESTINATION lib/cmake/kestrion)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kestrion-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/kestrion-config.cmake
              ${PROJECT_BINARY_DIR}/kestrion-config-version.cmake
        DESTINATION lib/cmake/kestrion)

configure_file(${PROJECT_SOURCE_DIR}/cmake/kestrion.pc.in ${PROJECT_BINARY_DIR}/kestrion.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kestrion.pc DESTINATION lib/pkgconfig)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kestrion DESTINATION include)
