#include "vek0host/commandline.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "commandkinds.h"
#include "commandwords.h"
#include "vek0host/editsteps.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

// What drafters type for steps that have no reader of their own here.
struct Shortcut {
  const char* text;
  const char* step;
};
constexpr Shortcut kStepShortcuts[] = {
    {"e", "delete"}, {"erase", "delete"}, {"j", "join"},
    {"pu", "purge"}, {"sel", "select"},   {"x", "explode"},
};

bool hasShortcut(const CommandKind& kind, const std::string& word) {
  CommandWords shortcuts(kind.shortcuts);
  while (!shortcuts.isAtEnd())
    if (shortcuts.word("") == word) return true;
  return false;
}

const CommandKind* findCommand(const std::string& word) {
  const auto& kinds = commandKinds();
  const auto found = std::find_if(kinds.begin(), kinds.end(), [&](const CommandKind& kind) {
    return kind.name == word || hasShortcut(kind, word);
  });
  return found == kinds.end() ? nullptr : &*found;
}

const StepKind* findStep(const std::string& word) {
  std::string option = "--" + word;
  for (const Shortcut& shortcut : kStepShortcuts)
    if (word == shortcut.text) option = std::string("--") + shortcut.step;
  const auto& kinds = stepKinds();
  const auto found = std::find_if(kinds.begin(), kinds.end(),
                                  [&](const StepKind& kind) { return kind.option == option; });
  return found == kinds.end() ? nullptr : &*found;
}

std::string readStep(const StepKind& kind, CommandWords& words, EditStep& step) {
  const std::string value = words.rest();
  if (kind.value && value.empty()) return std::string(kind.value) + " is missing";
  if (!kind.value && !value.empty()) return "'" + value + "' is too much";
  return kind.read(value, step);
}

std::string readKind(const CommandKind& kind, CommandWords& words, EditStep& step) {
  step = kind.read(words);
  if (words.problem().empty() && !words.isAtEnd())
    words.complain("'" + words.rawRest() + "' is too much");
  return words.problem();
}

}  // namespace

const std::vector<CommandKind>& commandKinds() {
  static const std::vector<CommandKind> kinds = {
      {"line", "l", "P P... [close]", "Draw lines from point to point", false, readLineCommand},
      {"circle", "c", "CENTER RADIUS|P, 2p P P, or 3p P P P", "Draw a circle", false,
       readCircleCommand},
      {"arc", "a", "P P P, or c CENTER P P, or c CENTER RADIUS DEG DEG",
       "Draw an arc through three points, or counterclockwise about a center", false,
       readArcCommand},
      {"polyline", "pl pline", "[w=WIDTH] P [b=BULGE] P... [close]",
       "Draw a polyline; a bulge applies to the segment that follows", false, readPolylineCommand},
      {"rectangle", "rec rect rectang", "P P", "Draw a rectangle between two corners", false,
       readRectangleCommand},
      {"point", "po", "P...", "Draw points", false, readPointCommand},
      {"text", "t dt dtext", "[center|right|middle|tl|tc|...] P HEIGHT [DEG] TEXT",
       "Draw a text in the current style", false, readTextCommand},
      {"insert", "i", "BLOCK P [SCALE|X,Y[,Z]] [DEG] [TAG=VALUE...]",
       "Insert a block with its attributes", false, readInsertCommand},
      {"hatch", "h bh", "PATTERN [SCALE [DEG]]",
       "Hatch what the selected curves enclose; the pattern may be solid", false, readHatchCommand},
      {"move", "m", "DX,DY[,DZ], or P P", "Move", false, readMoveCommand},
      {"copy", "co cp", "DX,DY[,DZ], or P P", "Copy, and select the copies", false,
       readCopyCommand},
      {"rotate", "ro", "DEG@X,Y, or P DEG", "Rotate counterclockwise about a point", false,
       readRotateCommand},
      {"mirror", "mi", "P P", "Mirror at the line through two points; texts stay readable", false,
       readMirrorCommand},
      {"scale", "sc", "F@X,Y, or P F", "Scale about a point", false, readScaleCommand},
      {"stretch", "st", "P P",
       "Move the ends, vertices and other grips at the first point to the second", false,
       readStretchCommand},
      {"offset", "o", "D [round|mitre|bevel] [P]",
       "Add parallels, on the side of P or as the step does", false, readOffsetCommand},
      {"trim", "tr", "[selected] P...",
       "Remove the part of the curve at each point, between its crossings with all others or with "
       "those selected",
       false, readTrimCommand},
      {"extend", "ex", "[selected] P...",
       "Lengthen the curve at each point to the first of the others, or of those selected", false,
       readExtendCommand},
      {"fillet", "f", "RADIUS [P P]",
       "Round the corner of the curves at two points; without points, of the two that are "
       "selected, and all corners of selected polylines",
       false, readFilletCommand},
      {"chamfer", "cha", "D [D] [P P]", "Cut the corner off likewise", false, readChamferCommand},
      {"layer", "la",
       "NAME, or new|on|off|freeze|thaw|lock|unlock|delete NAME, color NAME COLOR, linetype NAME "
       "LINETYPE, lineweight NAME MM|default, rename NAME NEW",
       "Make a layer current, creating it if necessary, or change layers; names may contain * and "
       "?",
       false, readLayerCommand},
      {"color", "col", "COLOR", "Color what is drawn next", false, readColorCommand},
      {"linetype", "lt", "NAME", "Give what is drawn next a linetype", false, readLinetypeCommand},
      {"undo", "u", "[COUNT]", "Undo the last commands; nothing is selected then", true,
       readUndoCommand},
      {"redo", "", "[COUNT]", "Redo what was undone; nothing is selected then", true,
       readRedoCommand},
      {"help", "?", "", "List the commands", true, readHelpCommand},
  };
  return kinds;
}

std::string commandHelp() {
  std::string text;
  for (const CommandKind& kind : commandKinds()) {
    std::string names = kind.name;
    CommandWords shortcuts(kind.shortcuts);
    while (!shortcuts.isAtEnd()) names += ", " + shortcuts.word("");
    text += names + (*kind.arguments ? std::string(" ") + kind.arguments : "") + "\n    " +
            kind.help + "\n";
  }
  for (const StepKind& kind : stepKinds()) {
    const std::string name = kind.option + 2;
    if (findCommand(name)) continue;
    std::string names = name;
    for (const Shortcut& shortcut : kStepShortcuts)
      if (name == shortcut.step) names += std::string(", ") + shortcut.text;
    text += names + (kind.value ? std::string(" ") + kind.value : "") + "\n    " + kind.help + "\n";
  }
  return text;
}

std::string readCommand(const std::string& line, NamedStep& step) {
  CommandWords words(line);
  step = {words.isAtEnd() ? std::string() : line.substr(line.find_first_not_of(" \t")), {}, false};
  if (words.isAtEnd() || step.name.front() == '#') return {};
  const std::string name = lowered(words.word(""));
  if (const CommandKind* kind = findCommand(name)) {
    step.isTravel = kind->isTravel;
    return readKind(*kind, words, step.work);
  }
  if (const StepKind* kind = findStep(name)) return readStep(*kind, words, step.work);
  return "'" + name + "' is not a command; the command help lists them";
}

std::string readScript(const std::string& script, const std::string& name,
                       std::vector<NamedStep>& steps) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  std::size_t number = 1;
  for (std::size_t at = script.compare(0, 3, kMark) == 0 ? 3 : 0; at < script.size(); ++number) {
    const std::size_t end = std::min(script.find_first_of("\r\n", at), script.size());
    const std::string place = name + ":" + std::to_string(number) + ": ";
    NamedStep step;
    const std::string problem = readCommand(script.substr(at, end - at), step);
    if (!problem.empty()) return place + problem;
    step.name = place + step.name;
    if (step.work) steps.push_back(std::move(step));
    at = end + (script.compare(end, 2, "\r\n") == 0 ? 2 : 1);
  }
  return {};
}

}  // namespace vek0::host
