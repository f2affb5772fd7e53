# Header-only libraries of the tool: CLI11 and nlohmann-json, as Debian installs them. A cross
# compiler must not see the rest of /usr/include, so a folder of links holds these two alone.
add_library(ko_third_party INTERFACE)
set(headers ${PROJECT_BINARY_DIR}/third_party/include)
file(MAKE_DIRECTORY ${headers})
foreach(library CLI nlohmann)
    string(TOUPPER KO_${library}_INCLUDE_DIR folder)
    find_path(${folder} ${library} NO_CMAKE_FIND_ROOT_PATH
              PATHS /usr/include /usr/local/include NO_DEFAULT_PATH REQUIRED)
    mark_as_advanced(${folder})
    file(CREATE_LINK ${${folder}}/${library} ${headers}/${library} COPY_ON_ERROR SYMBOLIC)
endforeach()
target_include_directories(ko_third_party SYSTEM INTERFACE ${headers})
