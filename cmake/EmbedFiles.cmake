# Writes OUTPUT, which defines resources::files() with the bytes of FILES.
set(arrays "")
set(rows "")
set(number 0)
foreach(file IN LISTS FILES)
  get_filename_component(name ${file} NAME)
  file(READ ${file} hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hex}")
  string(APPEND arrays "constexpr char bytes${number}[] = {${bytes}};\n")
  string(APPEND rows "    {\"${name}\", {bytes${number}, sizeof bytes${number}}},\n")
  math(EXPR number "${number} + 1")
endforeach()

file(WRITE ${OUTPUT} "#include \"resources/Resources.h\"

namespace resources {
namespace {

${arrays}
constexpr File kFiles[] = {
${rows}};

}  // namespace

std::span<const File> files() { return kFiles; }

}  // namespace resources
")
