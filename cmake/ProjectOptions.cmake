# SPDX-License-Identifier: ISC
# What every target of the project is built with: link `project_options` PRIVATE.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

find_package(Threads REQUIRED)

add_library(project_options INTERFACE)
target_include_directories(project_options INTERFACE ${PROJECT_SOURCE_DIR})
target_link_libraries(project_options INTERFACE Threads::Threads)
target_compile_options(project_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wconversion -Wdouble-promotion -Wshadow -Wold-style-cast>
    # Fields and functions name the lock that guards them: util's ThreadAnnotations.h.
    $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wthread-safety>
    # Products and sums stay two operations everywhere: the same audio on every processor.
    -ffp-contract=off
    # Lets the compiler use the square root instruction; no result changes, errno isn't read.
    -fno-math-errno)
if(PUFFGUARD_SANITIZE)
    target_compile_options(project_options INTERFACE
        -fsanitize=${PUFFGUARD_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1
        # Said of instrumented code that it is not true of; the plain build has the warning on.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(project_options INTERFACE -fsanitize=${PUFFGUARD_SANITIZE})
endif()

# One static library per folder: puffguard_library(NAME SOURCES ... LINKS ...). Only links along
# the arrows of docs/architecture.md are allowed; a test reads the includes.
function(puffguard_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC project_options ${ARG_LINKS})
endfunction()

# What users read of the plug-in, in each bundle: puffguard_documentation(BUNDLE_TARGET FOLDER PLACE)
# copies it into FOLDER when the target is built, and installs it in PLACE below the prefix.
function(puffguard_documentation bundle folder place)
    set(source ${PROJECT_SOURCE_DIR}/docs/plugin.txt)
    add_custom_command(
        OUTPUT ${folder}/documentation.txt
        COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
        COMMAND ${CMAKE_COMMAND} -E copy ${source} ${folder}/documentation.txt
        DEPENDS ${source}
        VERBATIM)
    add_custom_target(${bundle}_documentation DEPENDS ${folder}/documentation.txt)
    add_dependencies(${bundle} ${bundle}_documentation)
    install(FILES ${source} DESTINATION ${place} RENAME documentation.txt)
endfunction()

# The factory presets beside the copy of the module in each bundle, where it looks for them:
# puffguard_presets(BUNDLE_TARGET FOLDER PLACE), as above.
function(puffguard_presets bundle folder place)
    get_target_property(source factory-presets PRESET_FOLDER)
    get_target_property(source_stamp factory-presets PRESET_STAMP)
    set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${bundle}_presets.stamp)
    add_custom_command(
        OUTPUT ${stamp}
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${folder}/Presets
        COMMAND ${CMAKE_COMMAND} -E copy_directory ${source} ${folder}/Presets
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
        DEPENDS factory-presets ${source_stamp}
        VERBATIM)
    add_custom_target(${bundle}_presets DEPENDS ${stamp})
    add_dependencies(${bundle} ${bundle}_presets)
    install(DIRECTORY ${folder}/Presets DESTINATION ${place})
endfunction()
