# Writes OUTPUT, a source that holds the files TABLES under the names of their resources.
set(arrays "")
set(lookups "")
foreach(table ${TABLES})
    get_filename_component(name ${table} NAME_WE)
    string(TOUPPER ${name} resource)
    file(READ ${table} bytes HEX)
    string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
    string(APPEND arrays "constexpr char k_${name}[] = {${bytes}};\n")
    string(APPEND lookups "    if (name == \"${resource}\") return k_${name};\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"resources/texts.h\"

namespace ko::texts {
namespace {
${arrays}}  // namespace

std::span<const char> table(std::string_view name) noexcept {
${lookups}    return {};
}

}  // namespace ko::texts
")
