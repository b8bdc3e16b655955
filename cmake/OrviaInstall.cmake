include(CMakePackageConfigHelpers)

install(TARGETS orvia EXPORT OrviaTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/orvia DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_BINARY_DIR}/generated/orvia/version.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvia)

set(ORVIA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Orvia)
install(EXPORT OrviaTargets NAMESPACE Orvia:: DESTINATION ${ORVIA_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OrviaConfig.cmake.in
    ${PROJECT_BINARY_DIR}/OrviaConfig.cmake INSTALL_DESTINATION ${ORVIA_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrviaConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OrviaConfig.cmake ${PROJECT_BINARY_DIR}/OrviaConfigVersion.cmake
    DESTINATION ${ORVIA_CMAKE_DIR})

configure_file(${PROJECT_SOURCE_DIR}/cmake/orvia.pc.in ${PROJECT_BINARY_DIR}/orvia.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orvia.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
