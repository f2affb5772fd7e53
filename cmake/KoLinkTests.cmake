# The list of tests is ctest's. ko_test adds one entry to it, beside the test:
#
#   ko_test(exports LABELS library COMMAND tests/library/exports.sh linux ...)
#
# NAME      is said with the build's before it: linux.exports, win32.exports
# COMMAND   a program or a script with its arguments. It prints "ok - what" or "not ok - what" for
#           each single check (tests/support/checks.sh), or is a GoogleTest program; one that ran
#           nothing has failed. It sees an empty home, no screen and no language that it does not
#           name, and has a TMPDIR of its own (tests/support/run)
# WINE      it runs Windows programs: it gets a Wine folder that no other test has meanwhile
# SCREEN    the same for programs with windows, through tests/dialog/run.sh
# LOCALE    its language; C.UTF-8 unless told otherwise
# LABELS    for ctest -L, besides the build's own name: quick (the inner loop), dialogs, cli, fuzz,
#           fault, package, wine, soak (not part of script/test)
# NEEDS     other fixtures than the build, such as native (the programs of the Linux build)
# QUICK     it needs the two test programs alone, not the whole build
# SECONDS   its limit, for a machine ten times slower than any; 3600 unless told otherwise
#
# Every entry needs the fixture "build", so that ctest builds before it tests, and those of Wine
# the prepared folder. A program counts two of ctest's jobs, as it computes, one on a screen
# counts one, as it waits.
if(WIN32)
    set(KO_BUILD win64)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        set(KO_BUILD win32)
    endif()
elseif(KOLINK_SANITIZE MATCHES thread)
    set(KO_BUILD tsan)
elseif(CMAKE_CXX_COMPILER_ID MATCHES Clang AND KOLINK_FUZZ)
    set(KO_BUILD fuzz)
elseif(KOLINK_SANITIZE)
    set(KO_BUILD asan)
else()
    set(KO_BUILD linux)
endif()
get_filename_component(KO_BUILDS ${PROJECT_BINARY_DIR} DIRECTORY)
set(KO_TEST_LOGS ${PROJECT_BINARY_DIR}/test)
set(KO_RUN ${PROJECT_SOURCE_DIR}/tests/support/run)
set(KO_PRINTER /usr/share/color/icc/ghostscript/default_cmyk.icc)
set(KO_SOURCE ${PROJECT_SOURCE_DIR}/tests/data/CGATS001Compat-v2-micro.icc)

function(ko_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "WINE;SCREEN;QUICK" "LOCALE;SECONDS" "COMMAND;LABELS;NEEDS")
    if(KO_BUILD STREQUAL tsan)
        if(NOT name STREQUAL thread_tests)
            return()  # the thread sanitizer looks at threads alone
        endif()
        list(PREPEND arg_COMMAND setarch -R)  # and wants the address layout that it knows
    endif()
    set(kind checks)
    set(jobs 2)
    set(labels ${KO_BUILD} ${arg_LABELS})
    set(fixtures ${KO_BUILD}.build ${arg_NEEDS})
    if(arg_QUICK)
        set(fixtures ${KO_BUILD}.programs ${arg_NEEDS})
    endif()
    if(arg_WINE OR arg_SCREEN)
        set(kind wine)
        list(APPEND labels wine)
        list(APPEND fixtures ${KO_BUILD}.wine)
    endif()
    if(arg_SCREEN)
        set(kind screen)
        set(jobs 1)
    endif()
    if(NOT arg_LOCALE)
        set(arg_LOCALE C.UTF-8)
    endif()
    if(NOT arg_SECONDS)
        set(arg_SECONDS 3600)
    endif()
    list(TRANSFORM arg_COMMAND REPLACE "^(tests|fuzz|bench)/" "${PROJECT_SOURCE_DIR}/\\1/")
    add_test(NAME ${KO_BUILD}.${name}
             COMMAND ${KO_RUN} ${kind} ${KO_TEST_LOGS} ${KO_BUILD}.${name}
                     env LC_ALL=${arg_LOCALE} ${arg_COMMAND})
    set_tests_properties(${KO_BUILD}.${name} PROPERTIES LABELS "${labels}" PROCESSORS ${jobs}
        TIMEOUT ${arg_SECONDS} FIXTURES_REQUIRED "${fixtures}" ENVIRONMENT KO_WINE=${KO_BUILDS}/wine)
endfunction()

# A step that other entries need: a build, or Wine's folder. Of those with the same LOCK one runs
# at a time, the dearest first.
function(ko_fixture name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "COST;LOCK" "COMMAND;NEEDS;SETUP")
    add_test(NAME ${KO_BUILD}.${name}
             COMMAND ${KO_RUN} build ${KO_TEST_LOGS} ${KO_BUILD}.${name} ${arg_COMMAND})
    set_tests_properties(${KO_BUILD}.${name} PROPERTIES LABELS fixture PROCESSORS 2 TIMEOUT 20000
        FIXTURES_SETUP "${arg_SETUP}" FIXTURES_REQUIRED "${arg_NEEDS}" COST ${arg_COST}
        RESOURCE_LOCK ${arg_LOCK} ENVIRONMENT KO_WINE=${KO_BUILDS}/wine)
endfunction()

# Those that wait longest for their build come first: programs with windows, then the tool.
set(cost_win32 900)
set(cost_linux 800)
set(cost_asan 700)
set(cost_win64 600)
set(cost_tsan 500)
set(cost_fuzz 400)
function(ko_build_fixture)
    set(build ${CMAKE_COMMAND} --build ${PROJECT_BINARY_DIR})
    set(cost ${cost_${KO_BUILD}})
    if(KO_BUILD STREQUAL tsan)
        ko_fixture(build COST ${cost} LOCK compiler SETUP tsan.build
                   COMMAND ${build} --target thread_tests)
    elseif(KO_BUILD STREQUAL fuzz)
        ko_fixture(build COST ${cost} LOCK compiler SETUP fuzz.build
                   COMMAND ${build} --target fuzz_targets)
    else()
        math(EXPR first "${cost} + 50")
        ko_fixture(programs COST ${first} LOCK compiler SETUP ${KO_BUILD}.programs
                   COMMAND ${build} --target library_tests engine_tests)
        ko_fixture(build COST ${cost} LOCK compiler SETUP ${KO_BUILD}.build
                   NEEDS ${KO_BUILD}.programs COMMAND ${build})
    endif()
    if(WIN32)
        ko_fixture(wine COST 1000 LOCK wine SETUP ${KO_BUILD}.wine
                   COMMAND ${PROJECT_SOURCE_DIR}/tests/support/prepare_wine)
    endif()
    # lcms2 looks at what the tool of every build wrote.
    if(NOT KO_BUILD MATCHES "^(linux|tsan|fuzz)$")
        ko_fixture(native COST 810 LOCK compiler SETUP ${KO_BUILD}.native
                   COMMAND ${PROJECT_SOURCE_DIR}/script/build linux link_check)
    endif()
endfunction()

# The parts of a GoogleTest program: one a folder that has given it sources, and one of the cases
# that take long, on one language alone (LONG names them, as a filter).
#   ko_test_program(library library_tests LONG *Damage*:*Mutat*)
function(ko_test_program name program)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "LONG" "")
    get_target_property(sources ${program} SOURCES)
    set(folders)
    foreach(source ${sources})
        if(source MATCHES "/tests/([a-z]+)/[a-z_0-9]+_test\\.cpp$")
            list(APPEND folders ${CMAKE_MATCH_1})
        endif()
    endforeach()
    list(REMOVE_DUPLICATES folders)
    set(run tests/support/program.sh ${PROJECT_BINARY_DIR} ${program})
    set(label)
    if(KO_BUILD STREQUAL linux)
        set(label quick)
    endif()
    set(wine)
    set(languages plain)
    if(WIN32)
        set(wine WINE)
        set(languages 932 1252)
    endif()
    set(locale_plain C.UTF-8)
    set(locale_932 ja_JP.UTF-8)
    set(locale_1252 C.UTF-8)
    foreach(language ${languages})
        set(prefix)
        if(WIN32)
            set(prefix ${language}.)
        endif()
        foreach(folder ${folders})
            ko_test(${prefix}${name}.${folder} ${wine} QUICK LOCALE ${locale_${language}}
                    LABELS ${label} programs COMMAND ${run} ${folder} ${arg_LONG})
        endforeach()
    endforeach()
    list(GET languages 0 language)
    set(prefix)
    if(WIN32)
        set(prefix ${language}.)
    endif()
    ko_test(${prefix}${name}.long ${wine} QUICK LOCALE ${locale_${language}}
            LABELS programs COMMAND ${run} =${arg_LONG})
    ko_test(${name}.whole ${wine} QUICK LABELS programs COMMAND ${run} ?${arg_LONG} ${folders})
endfunction()
