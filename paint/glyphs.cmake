# Turns a file into a source that defines `builtInGlyphs`. usage: cmake -DIN=FILE -DOUT=FILE -P glyphs.cmake
file(READ "${IN}" bytes HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
string(REGEX REPLACE "(................................................................................)"
       "\\1\n" bytes "${bytes}")
file(WRITE "${OUT}" "#include \"builtinglyphs.h\"

namespace vek0::paint {
namespace {

constexpr unsigned char kGlyphs[] = {
${bytes}};

}  // namespace

std::string_view builtInGlyphs() {
  return {reinterpret_cast<const char*>(kGlyphs), sizeof kGlyphs};
}

}  // namespace vek0::paint
")
