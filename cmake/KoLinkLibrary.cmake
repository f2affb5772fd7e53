# The shared library: the folders' exports.cpp over their static targets. cmake/exports.txt is
# the one list of names; the .def file and the version script are made from it.
file(STRINGS ${PROJECT_SOURCE_DIR}/cmake/exports.txt KO_EXPORTS REGEX "^[A-Za-z]")
if(WIN32)
    file(STRINGS ${PROJECT_SOURCE_DIR}/cmake/exports_windows.txt dialogs REGEX "^[A-Za-z]")
    list(APPEND KO_EXPORTS ${dialogs})
endif()
set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
             ${PROJECT_SOURCE_DIR}/cmake/exports.txt
             ${PROJECT_SOURCE_DIR}/cmake/exports_windows.txt)

set(KO_ENGINE frame grid icc table tone calib cmyk link front)
set(patterns)
set(dialog_sources)
foreach(folder ${KO_ENGINE})
    list(APPEND patterns ${PROJECT_SOURCE_DIR}/${folder}/exports*.cpp)
    list(APPEND dialog_sources ${PROJECT_SOURCE_DIR}/${folder}/dialog/exports*.cpp)
endforeach()
file(GLOB sources CONFIGURE_DEPENDS ${patterns})
# Compiled once: the tool has them as well.
add_library(ko_exports OBJECT ${sources})
list(TRANSFORM KO_ENGINE PREPEND ko_)
target_link_libraries(ko_exports PUBLIC ${KO_ENGINE} PRIVATE ko_warnings)
file(GLOB dialog_sources CONFIGURE_DEPENDS ${dialog_sources})
if(NOT WIN32)
    set(dialog_sources)
endif()
# Memory belongs to the library itself: an archive gives up only what something refers to.
add_library(kolink SHARED ${dialog_sources} frame/memory.cpp frame/entry_${KO_PLATFORM}.cpp)
target_link_libraries(kolink PRIVATE ko_exports)
ko_carry_tables(kolink)
ko_adapt_runtime(kolink)
add_library(KoLink::KoLink ALIAS kolink)
set_target_properties(kolink PROPERTIES EXPORT_NAME KoLink)
target_link_libraries(kolink PRIVATE ko_frame ko_grid ko_icc ko_tone ko_calib ko_cmyk ko_link
    ko_front ko_dialog ko_tone_dialog ko_calib_dialog ko_cmyk_dialog ko_front_dialog ko_warnings)
target_include_directories(kolink INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)

if(WIN32)
    list(JOIN KO_EXPORTS "\n    " names)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        # Dialog procedures are stdcall: exported under their plain names, referred to by their
        # decorated ones. The linker's own import library knows only the first.
        set(procedure "[A-Za-z]+DlgProc")
        string(REGEX REPLACE "${procedure}" "\\0@16" imports "${names}")
        string(REGEX REPLACE "${procedure}" "\\0 = \\0@16" names "${names}")
        file(CONFIGURE OUTPUT imports.def CONTENT "LIBRARY KoLink.dll\nEXPORTS\n    ${imports}\n")
        add_custom_command(TARGET kolink POST_BUILD VERBATIM
            COMMAND ${CMAKE_DLLTOOL} --deterministic-libraries --kill-at
                    --input-def ${CMAKE_CURRENT_BINARY_DIR}/imports.def
                    --output-lib $<TARGET_LINKER_FILE:kolink>)
    endif()
    file(CONFIGURE OUTPUT KoLink.def CONTENT "LIBRARY KoLink.dll\nEXPORTS\n    ${names}\n")
    target_sources(kolink PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/KoLink.def ${KO_VERSION_RESOURCE})
    file(GLOB templates CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/resources/dialogs/*.rc)
    target_sources(kolink PRIVATE ${templates})
    set_source_files_properties(${templates} PROPERTIES
        OBJECT_DEPENDS ${PROJECT_SOURCE_DIR}/resources/dialog_ids.h
        COMPILE_OPTIONS "-I${PROJECT_SOURCE_DIR};-c65001")
    set_target_properties(kolink PROPERTIES PREFIX "" OUTPUT_NAME KoLink)
else()
    list(JOIN KO_EXPORTS ";\n        " names)
    file(CONFIGURE OUTPUT kolink.map
         CONTENT "{\n    global:\n        ${names};\n    local: *;\n};\n")
    target_link_options(kolink PRIVATE -Wl,--no-undefined-version
                        -Wl,--version-script=${CMAKE_CURRENT_BINARY_DIR}/kolink.map)
    if(NOT KOLINK_SANITIZE)  # a sanitizer's runtime stays with the program
        target_link_options(kolink PRIVATE -Wl,-z,defs -static-libstdc++ -static-libgcc)
    endif()
    set_target_properties(kolink PROPERTIES OUTPUT_NAME kolink
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
        LINK_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/kolink.map)
endif()
