# One arithmetic everywhere: SSE2 on 32-bit builds, no fused multiply-add, no fast-math, so that
# every platform computes the same bits.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

add_compile_options(-ffp-contract=off -fno-strict-aliasing)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    add_compile_options(-msse2 -mfpmath=sse -mstackrealign)
endif()
if(WIN32)
    # GCC would count on the registers that its own version of an inline function leaves alone; the
    # linker may keep another object's version, compiled with other options, which does not.
    add_compile_options(-fno-ipa-ra)
    add_compile_definitions(WINVER=0x0601 _WIN32_WINNT=0x0601 __USE_MINGW_ANSI_STDIO=0)
    add_link_options(-static)
endif()
# What a build can do against faults that nobody has found. The sanitizers look closer by
# themselves.
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)  # two builds give the same bytes
if(NOT KOLINK_SANITIZE)
    add_compile_options(-fstack-protector-strong)
    add_link_options(-fstack-protector-strong)
    if(NOT CMAKE_BUILD_TYPE STREQUAL Debug)  # it needs optimisation
        add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
    endif()
endif()
if(WIN32)
    # The linker's own choice of a base is made from the folder that it writes to.
    add_link_options(-Wl,--no-insert-timestamp -Wl,--disable-auto-image-base
                     -Wl,--dynamicbase -Wl,--nxcompat)
    if(CMAKE_SIZEOF_VOID_P EQUAL 8)
        add_link_options(-Wl,--high-entropy-va)
    endif()
else()
    add_compile_options(-fcf-protection -ftls-model=initial-exec)  # see frame/exception_room.h
    add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
    include(CheckPIESupported)
    check_pie_supported()
endif()
if(KOLINK_SANITIZE)
    add_compile_options(-fsanitize=${KOLINK_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer -g1)
    add_link_options(-fsanitize=${KOLINK_SANITIZE})
endif()
if(KOLINK_FUZZ AND CMAKE_CXX_COMPILER_ID MATCHES Clang)
    add_compile_options(-fsanitize=fuzzer-no-link)  # so that the fuzzer sees what is reached
endif()

# Linked by every target of our own; never by what comes from elsewhere.
add_library(ko_warnings INTERFACE)
target_compile_options(ko_warnings INTERFACE -Wall -Wextra -Wshadow -Wconversion -Wno-sign-conversion
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)  # GCC 12 sees overlap inside std::string's operator+

# Linked by what need not be fast, the tests' own code and the sanitized tool's: it is most of the
# source and, with its headers, would take most of the time that everything takes to build.
add_library(ko_quickly_built INTERFACE)
if(KOLINK_SANITIZE)
    target_compile_options(ko_quickly_built INTERFACE -Og -g1)
else()
    target_compile_options(ko_quickly_built INTERFACE -O1)
endif()

# The big headers of a target, read once. A compiler cache does better without: it would take every
# change of one of them for a change of everything.
function(ko_precompile target)
    if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
        target_precompile_headers(${target} PRIVATE ${ARGN})
        # GCC 12 then sees what it overlooks in the system's headers otherwise, and is wrong.
        target_compile_options(${target} PRIVATE
            $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds> $<$<CXX_COMPILER_ID:GNU>:-Wno-dangling-else>
            $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow>)
    endif()
endfunction()

# User texts are written in UTF-8 and live in Shift-JIS at run time. clang has no such option:
# its builds (the fuzz targets) keep them in UTF-8.
function(ko_shift_jis_texts target)
    target_compile_options(${target} PRIVATE
        $<$<CXX_COMPILER_ID:GNU>:-finput-charset=UTF-8> $<$<CXX_COMPILER_ID:GNU>:-fexec-charset=CP932>)
endfunction()

# ko_folder(icc SOURCES ... USES ko_frame): the static target of one source folder.
function(ko_folder name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;USES")
    add_library(ko_${name} STATIC ${arg_SOURCES})
    target_include_directories(ko_${name} PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
    target_link_libraries(ko_${name} PUBLIC ${arg_USES} PRIVATE ko_warnings)
endfunction()
