# SPDX-License-Identifier: ISC
# Writes OUTPUT, a source file that holds each of RESOURCES (paths below FOLDER) as a text.
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
#include \"restoration/plugin_LM_Puffguard/Resources.h\"

#include <cstddef>

namespace LMPuffguard {
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

} // namespace LMPuffguard
")
