# The second shared library: precise/exports.cpp over the same static targets. Names come from
# cmake/exports_precise.txt alone.
file(STRINGS ${PROJECT_SOURCE_DIR}/cmake/exports_precise.txt KO_PRECISE_EXPORTS REGEX "^[A-Za-z]")
set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
             ${PROJECT_SOURCE_DIR}/cmake/exports_precise.txt)

add_library(kolink_precise SHARED precise/exports.cpp frame/memory.cpp)
ko_carry_tables(kolink_precise)
ko_adapt_runtime(kolink_precise)
add_library(KoLink::KoLinkPrecise ALIAS kolink_precise)
set_target_properties(kolink_precise PROPERTIES EXPORT_NAME KoLinkPrecise)
target_link_libraries(kolink_precise PRIVATE ko_precise ko_warnings)
target_include_directories(kolink_precise INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)

if(WIN32)
    list(JOIN KO_PRECISE_EXPORTS "\n    " names)
    file(CONFIGURE OUTPUT KoLinkPrecise.def
         CONTENT "LIBRARY KoLinkPrecise.dll\nEXPORTS\n    ${names}\n")
    target_sources(kolink_precise PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/KoLinkPrecise.def
                   ${KO_PRECISE_VERSION_RESOURCE})
    set_target_properties(kolink_precise PROPERTIES PREFIX "" OUTPUT_NAME KoLinkPrecise)
else()
    list(JOIN KO_PRECISE_EXPORTS ";\n        " names)
    file(CONFIGURE OUTPUT kolink_precise.map
         CONTENT "{\n    global:\n        ${names};\n    local: *;\n};\n")
    target_link_options(kolink_precise PRIVATE -Wl,--no-undefined-version
                        -Wl,--version-script=${CMAKE_CURRENT_BINARY_DIR}/kolink_precise.map)
    if(NOT KOLINK_SANITIZE)  # a sanitizer's runtime stays with the program
        target_link_options(kolink_precise PRIVATE -Wl,-z,defs -static-libstdc++ -static-libgcc)
    endif()
    set_target_properties(kolink_precise PROPERTIES OUTPUT_NAME kolink-precise
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
        LINK_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/kolink_precise.map)
endif()
