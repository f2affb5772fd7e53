# GoogleTest is built from Debian's sources, so that native, sanitized and Windows programs have
# the same one.
set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
if(NOT TARGET GTest::gmock_main)
    add_library(GTest::gmock_main ALIAS gmock_main)
endif()
foreach(target gtest gmock gmock_main)
    target_link_libraries(${target} PRIVATE ko_quickly_built)
    if(KOLINK_SANITIZE MATCHES undefined)
        target_compile_options(${target} PRIVATE -fno-sanitize=undefined)
    endif()
endforeach()
