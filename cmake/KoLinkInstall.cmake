# What cmake --install puts in place: library, import library, headers, the tool, and the two
# descriptions by which other projects find them. Everything may be moved as one folder.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/KoLink)
install(TARGETS kolink kolink_precise EXPORT KoLinkTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(WIN32)  # for compilers that make their own import library
    install(FILES ${PROJECT_BINARY_DIR}/KoLink.def ${PROJECT_BINARY_DIR}/KoLinkPrecise.def
            DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT KoLinkTargets NAMESPACE KoLink:: DESTINATION ${package})
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/KoLinkConfig.cmake
     "include(\"\${CMAKE_CURRENT_LIST_DIR}/KoLinkTargets.cmake\")\n")
write_basic_package_version_file(KoLinkConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KoLinkConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/KoLinkConfigVersion.cmake DESTINATION ${package})

get_target_property(KO_LIBRARY_NAME kolink OUTPUT_NAME)
file(RELATIVE_PATH KO_PREFIX_FROM_PKGCONFIG /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" KO_PREFIX_FROM_PKGCONFIG ${KO_PREFIX_FROM_PKGCONFIG})
configure_file(${PROJECT_SOURCE_DIR}/cmake/kolink.pc.in kolink.pc @ONLY)
get_target_property(KO_LIBRARY_NAME kolink_precise OUTPUT_NAME)
configure_file(${PROJECT_SOURCE_DIR}/cmake/kolink.pc.in kolink-precise.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kolink.pc ${CMAKE_CURRENT_BINARY_DIR}/kolink-precise.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET kolink_tool)
    install(TARGETS kolink_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
