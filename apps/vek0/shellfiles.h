#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace vek0::tool {

/// Removes what the parser prints for itself from a help text: names of option groups and the
/// values of negated flags.
std::string tidyHelp(const std::string& help);

/// The manual page of the tool, for `man`, with all its commands and options.
std::string manualPage(const CLI::App& app);

/// A script that completes commands and options: for "bash", "zsh" or "fish".
std::string completionScript(const CLI::App& app, const std::string& shell);

/// Adds the verbs that print these files; installing the tool installs what they print.
void addShellCommands(CLI::App& app);

}  // namespace vek0::tool
