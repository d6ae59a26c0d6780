// What the entries of a report mean, in words for people.
#include <algorithm>
#include <array>
#include <string_view>

#include "vek0host/losslog.h"
#include "vek0host/visibletext.h"

namespace vek0::host {
namespace {

// In the order of the enumeration. "#" is the number, "@" the sample, "<one|many>" follows the
// number.
constexpr auto kMessages = std::to_array<const char*>({
    "# <text was|texts were> cut at the longest line",
    "",  // see `messageOfCode`
    "# @ <entity|entities> may be misplaced: <its plane is|their planes are> not supported",
    "the clips of # <insert do|inserts do> not apply: @",
    "# @ <entity is|entities are> of a kind that is not supported",
    "# @ <entity is|entities are> approximated by simpler ones",
    "layer @, which no table declares, was created",
    "linetype @ is unknown: # <entity follows its layer|entities follow their layers>",
    "text style @ is unknown: # <text uses|texts use> STANDARD",
    "font @ is unknown; another one takes its place",
    "# fitted <text is|texts are> not fitted any more",
    "# <mesh|meshes> became 3D faces",
    "# <face lacks|faces lack> vertices and <was|were> dropped",
    "arcs of # <curve|curves> became chords, because there are too many",
    "# <curve|curves> without control points became plain polylines",
    "# <curve|curves> without usable knots became their control polygons",
    "# <curve has|curves have> fewer chords, because there are too many",
    "the weights of # <curve|curves> are invalid",
    "# @ <has|have> lost arrow heads",
    "# formatted <text shows|texts show> nothing",
    "the ends of # long <text|texts> were cut",
    "formats within # <text|texts> are lost: @",
    "the backgrounds of # <text|texts> are lost",
    "# <dimension|dimensions> without a picture were drawn by their styles",
    "the blocks of # <leader|leaders> are lost",
    "the lines of # <hatch|hatches> could not be generated: @",
    "# patterned <hatch|hatches> became boundaries",
    "the boundaries of # <hatch|hatches> have fewer chords, because there are too many",
    "# open <loop|loops> of hatches were closed",
    "# <hatch has|hatches have> too many loops: inner ones may be wrong",
    "# <hatch encloses|hatches enclose> no area and <was|were> dropped",
    "# gradient <fill|fills> became single colors",
    "# <shape|shapes> in linetypes are lost: @",
    "block @ is inserted but never defined",
    "the block @ of the drawing replaced that of the file",
    "block @ got another name",
    "the layer @ of the drawing replaced that of the file",
    "the linetype @ of the drawing replaced that of the file",
    "the text style @ of the drawing replaced that of the file",
    "the layer @ of the file replaced that of the drawing",
    "the linetype @ of the file replaced that of the drawing",
    "the text style @ of the file replaced that of the drawing",
    "the block @ of the file replaced that of the drawing",
    "layer @ got another name",
    "linetype @ got another name",
    "text style @ got another name",
    "the version @ does not exist; read as the newest one",
    "the texts contradict the code page that the header declares",
    "section @ was skipped",
    "section @ is unknown and was skipped",
    "the file ends before its end mark",
    "a section ends before its end mark",
    "a table ends before its end mark",
    "a block ends before its end mark",
    "# <sequence|sequences> of vertices or attributes without an end",
    "# misplaced <record|records> skipped: @",
    "# <line|lines> where a group code was expected",
    "# empty <line|lines> where a group code was expected",
    "# <number was|numbers were> written unusually: @",
    "# <value is|values are> no number: @",
    "# <loop|loops> of hatches with values that are no numbers were dropped",
    "# <number was|numbers were> out of range: @",
    "# true <color was|colors were> approximated by color numbers",
    "# <color was|colors were> out of range: @",
    "the flags of # <object contradict its|objects contradict their> content: @",
    "# <entity without a layer is|entities without a layer are> on layer 0",
    "# @ <lacks|lack> a required value",
    "variable @ is invalid and was dropped",
    "# unreadable table <entry was|entries were> dropped: @",
    "# unreadable <entity was|entities were> dropped: @",
    "# unreadable <block was|blocks were> dropped: @",
    "# invisible <entity was|entities were> omitted: @",
    "# <insert|inserts> of blocks within themselves were dropped: @",
    "# <curve|curves> in inclined planes became polylines: @",
    "# <entity is|entities are> in the other space: @",
    "layout @ is lost",
    "views of # <viewport are|viewports are> simplified: @",
    "the draw order of # <entity is|entities are> lost: @",
    "# <group is|groups are> lost",
    "dimension style @ is lost",
    "the named view or coordinate system @ is lost",
    "the unit of the drawing is lost: @",
    "the setting @ is lost",
    "the file is binary DXF",
    "the file is DWG, not DXF",
    "the file is empty",
    "there are more entities than allowed",
    "handle @ belongs to several objects",
    "# @ <object has|objects have> no owner",
    "a pointer leads to nothing: @",
    "@ is not declared",
    "a name was changed: @",
    "two names became one: @",
    "@ is no longer marked as part of an external reference",
    "# @ <entity|entities> with numbers that are not finite were omitted",
    "# <number is|numbers are> not finite: @",
    "# <color is|colors are> out of range: @",
    "# <insert|inserts> of missing blocks were omitted: @",
    "# filled <face became an outline|faces became outlines>",
    "# @ <entity|entities> became lines of finite length",
    "# clipped <insert shows all of its block|inserts show all of their blocks>",
    "# <insert|inserts> of fixed size on the screen became ordinary",
    "# <hatch|hatches> became inserts of their lines",
    "the plot settings of layout @ are lost",
    "elements of linetype @ other than dashes are lost",
    "the lineweights of # <layer are|layers are> lost",
    "# <lineweight was|lineweights were> rounded",
    "# @ <record stays as it was|records stay as they were>, though moved or copied",
    "# <part|parts> that the version lacks <was|were> left out: @",
    "blocks insert each other in a circle: @",
    "the external reference @ does not exist",
    "the external reference @ is outside of the allowed folders",
    "the external reference @ is a folder or a device",
    "the external reference @ cannot be read",
    "the external reference @ changes while it is read",
    "the external reference @ leads back to itself",
    "external references are nested too deeply: @",
    "the external reference @ is used too often",
    "the external reference @ is an overlay of another one and not shown",
    "the external reference @ got another name",
    "shape @ is left out of a linetype",
    "a linetype names the unknown style @",
    "a linetype has @ instead of a number",
    "a number of a linetype is out of range: @",
    "a field of a linetype is empty",
    "an element of a linetype is not closed",
    "linetype @ has no pattern",
    "quotes in a linetype were replaced",
    "separators in a linetype were replaced",
    "a number of a linetype was rounded: @",
});
static_assert(kMessages.size() == kReportCodes, "one message per code");

struct CodeName {
  std::string_view code, name;
};
// What the dropped group codes of entities and layers say.
constexpr CodeName kCodes[] = {
    {"370", "lineweights"},      {"48", "linetype scales"}, {"420", "true colors"},
    {"430", "color names"},      {"440", "transparency"},   {"39", "thickness"},
    {"1001", "extended data"},   {"1071", "transparency"},  {"290", "plot flags"},
    {"390", "plot styles"},      {"60", "visibility"},      {"4", "big fonts"},
    {"71", "text generation"},   {"210", "directions"},     {"999", "comments"},
    {"102", "groups of handles"}};

std::string replaced(std::string text, std::string_view what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
    text.replace(at, what.size(), by);
  return text;
}

// Chooses between "<one|many>".
std::string inNumber(std::string text, bool isOne) {
  for (std::size_t from; (from = text.find('<')) != std::string::npos;) {
    const std::size_t middle = text.find('|', from), to = text.find('>', from);
    const std::string chosen =
        isOne ? text.substr(from + 1, middle - from - 1) : text.substr(middle + 1, to - middle - 1);
    text.replace(from, to - from + 1, chosen);
  }
  return text;
}

// "370" of entities, "LAYER 370" of layers, "STYLE 4" of text styles.
std::string messageOfCode(const std::string& sample, const std::string& count,
                          const std::string& target) {
  const std::size_t blank = sample.rfind(' ');
  const std::string code = blank == std::string::npos ? sample : sample.substr(blank + 1);
  const std::string owner = blank == std::string::npos ? "" : sample.substr(0, blank);
  const auto known = std::find_if(std::begin(kCodes), std::end(kCodes),
                                  [&](const CodeName& each) { return each.code == code; });
  const std::string what =
      known == std::end(kCodes) ? "group code " + code : std::string(known->name);
  std::string of = owner;
  if (owner.empty()) of = "<entity|entities>";
  if (owner == "LAYER") of = "<layer|layers>";
  if (owner == "STYLE") of = "text <style|styles>";
  if (owner == "LTYPE") of = "<linetype|linetypes>";
  const std::string holder = target.empty() ? "a drawing" : target;
  return holder + " cannot hold the " + what + " of " + count + " " + of;
}

}  // namespace

std::string messageOf(const CFileReport::Entry& entry, const std::string& target) {
  const std::string count = std::to_string(entry.count);
  const bool isOne = entry.count == 1;
  const std::string sample = visible(entry.sample);
  if (entry.code == ReportCode::CodeDropped)
    return inNumber(messageOfCode(sample, count, target), isOne);
  std::string text = inNumber(kMessages[static_cast<std::size_t>(entry.code)], isOne);
  // A kind is part of the sentence; other samples are quoted.
  const bool isKind = text.starts_with("# @");
  if (sample.empty()) {
    for (const std::string_view hole : {": @", " @", "@ "}) text = replaced(text, hole, "");
    return replaced(text, "#", count);
  }
  text = replaced(text, "#", count);
  return replaced(text, "@", isKind ? sample : "'" + sample + "'");
}

}  // namespace vek0::host
