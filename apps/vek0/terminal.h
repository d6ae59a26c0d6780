#pragma once

#include <string_view>

namespace vek0::tool {

/// When output is colored: `Auto` is on a terminal, unless the environment sets NO_COLOR or says
/// that the terminal is dumb.
enum class ColorUse { Auto, Always, Never };

/// Decides it for the standard output of this process and those that it starts; never before.
void setColorUse(ColorUse use);

/// Colors of output. They stand for the same things in all commands: what is gone or wrong, what is
/// new or right, what has changed or deserves a look, where something is.
enum class Hue { Plain, Bad, Good, Notable, Place };

/// As `print`, in that color.
void print(std::string_view text, Hue hue);

/// As `print`, each line in the color that `hueOf` says.
void printLines(std::string_view text, Hue (*hueOf)(std::string_view line));

/// Whether the error stream is a terminal, so that progress may be shown.
bool isErrorTerminal();

/// Prints text on the standard output. Line feeds are kept; any other control character is escaped.
void print(std::string_view text);

/// Likewise on the error stream.
void printError(std::string_view text);

/// Flushes the standard output; returns whether everything was written.
bool flushOutput();

}  // namespace vek0::tool
