#pragma once

#include <string>
#include <vector>

#include "vek0host/editdrawing.h"

namespace vek0::host {

class CommandWords;

/// A command of the language of scripts and command lines: "line 0,0 10,5". Besides these, each
/// step of `stepKinds` is a command, by its option without the dashes, with the value as it is
/// there.
struct CommandKind {
  const char* name;
  const char* shortcuts;  ///< separated by blanks
  const char* arguments;
  const char* help;
  bool isTravel;  ///< as in `NamedStep`
  EditStep (*read)(CommandWords& words);
};

/// All kinds, in help order.
const std::vector<CommandKind>& commandKinds();

/// The commands, steps included, with their shortcuts and arguments, one per line.
std::string commandHelp();

/// Creates the step of a line. A line that is empty or a comment, which begins with "#", leaves
/// `step` without work. Returns an empty text, or what is wrong with the line.
std::string readCommand(const std::string& line, NamedStep& step);

/// Appends the steps of the lines of a script, in UTF-8 with any line ends. Returns an empty text,
/// or what is wrong and the number of the line. `name` denotes the script in messages.
std::string readScript(const std::string& script, const std::string& name,
                       std::vector<NamedStep>& steps);

}  // namespace vek0::host
