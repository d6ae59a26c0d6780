#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "commands.h"
#include "vek0host/paths.h"
// Included last and in a separate file, because its macros clash with function names.
#include <windows.h>

int wmain(int argc, wchar_t** argv) {
  // Drawings on the standard streams are bytes, and all other text is UTF-8.
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
  std::vector<std::string> arguments;
  for (int i = 1; i < argc; ++i) arguments.push_back(vek0::host::toUtf8(argv[i]));
  return vek0::tool::runTool(arguments);
}
