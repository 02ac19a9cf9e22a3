# cmake --install: the library, its headers in a folder of their own, and what find_package(kvt01) reads.
include(CMakePackageConfigHelpers)

install(TARGETS kvt01 EXPORT kvt01Targets)
install(FILES ${kvt01_headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kvt01)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/kvt01)
install(EXPORT kvt01Targets NAMESPACE kvt01:: FILE kvt01Config.cmake DESTINATION ${package_folder})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/kvt01ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kvt01ConfigVersion.cmake DESTINATION ${package_folder})
