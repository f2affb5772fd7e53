# KO_VERSION: what include/kolink/version.h says.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
             ${CMAKE_CURRENT_SOURCE_DIR}/include/kolink/version.h)
file(STRINGS ${CMAKE_CURRENT_SOURCE_DIR}/include/kolink/version.h KO_VERSION
     REGEX "^#define KOLINK_VERSION_(MAJOR|MINOR|PATCH) [0-9]+")
list(TRANSFORM KO_VERSION REPLACE "^#define KOLINK_VERSION_[A-Z]+ ([0-9]+).*" "\\1")
list(JOIN KO_VERSION "." KO_VERSION)
if(NOT KO_VERSION MATCHES "^[0-9]+\\.[0-9]+\\.[0-9]+$")
    message(FATAL_ERROR "include/kolink/version.h does not say the version")
endif()
