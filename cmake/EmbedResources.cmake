# SPDX-License-Identifier: ISC
# Files that become part of a program. Included: puffguard_resources(). Run as a script: writes OUTPUT,
# a source file that holds each of RESOURCES (paths below FOLDER) as a text, found by the function
# FindResource() that HEADER (a path from the project's root) declares in NAMESPACE.
if(NOT CMAKE_SCRIPT_MODE_FILE)
    set(EMBED_RESOURCES_SCRIPT ${CMAKE_CURRENT_LIST_FILE})

    # puffguard_resources(SOURCE_VARIABLE HEADER ... NAMESPACE ... FOLDER ... FILES ...): the source
    # file to add to a library.
    function(puffguard_resources source_variable)
        cmake_parse_arguments(ARG "" "HEADER;NAMESPACE;FOLDER" "FILES" ${ARGN})
        set(source ${CMAKE_CURRENT_BINARY_DIR}/Resources.cpp)
        set(files ${ARG_FILES})
        list(TRANSFORM files PREPEND ${ARG_FOLDER}/)
        add_custom_command(
            OUTPUT ${source}
            COMMAND ${CMAKE_COMMAND} "-DFOLDER=${ARG_FOLDER}" "-DRESOURCES=${ARG_FILES}"
                    "-DHEADER=${ARG_HEADER}" "-DNAMESPACE=${ARG_NAMESPACE}" "-DOUTPUT=${source}"
                    -P ${EMBED_RESOURCES_SCRIPT}
            DEPENDS ${EMBED_RESOURCES_SCRIPT} ${files}
            VERBATIM)
        set(${source_variable} ${source} PARENT_SCOPE)
    endfunction()
    return()
endif()

set(entries "")
set(arrays "")
set(number 0)
foreach(resource IN LISTS RESOURCES)
    file(READ "${FOLDER}/${resource}" bytes HEX)
    string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
    string(APPEND arrays "constexpr unsigned char Resource${number}[] = {${bytes}};\n")
    string(APPEND entries "    {\"${resource}\", Resource${number}, sizeof Resource${number}},\n")
    math(EXPR number "${number} + 1")
endforeach()
file(WRITE "${OUTPUT}" "// Made by EmbedResources.cmake; changes here are lost.
#include \"${HEADER}\"

#include <cstddef>

namespace ${NAMESPACE} {
namespace {

${arrays}
struct Resource {
    std::string_view path;
    const unsigned char* bytes;
    std::size_t size;
};
constexpr Resource Resources[] = {
${entries}};

} // namespace

std::string_view FindResource(std::string_view path)
{
    for (const Resource& resource : Resources) {
        if (resource.path == path) {
            return {reinterpret_cast<const char*>(resource.bytes), resource.size};
        }
    }
    return {};
}

} // namespace ${NAMESPACE}
")
