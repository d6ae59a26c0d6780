#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "vek0host/session.h"

namespace vek0::tool {

// The tool consists of calls into the library below.
using namespace host;

/// Runs the tool and returns its exit code, a `Failure`. `arguments` exclude the program's name;
/// they are UTF-8, or arbitrary bytes in the platform's file names.
int runTool(const std::vector<std::string>& arguments);

/// Each adds one verb with its options and help; `session` must outlive `app`.
void addInfoCommand(CLI::App& app, Session& session);
void addListCommand(CLI::App& app, Session& session);
void addCheckCommand(CLI::App& app, Session& session);
void addDiffCommand(CLI::App& app, Session& session);
void addExportCommand(CLI::App& app, Session& session);
void addGrepCommand(CLI::App& app, Session& session);
void addConvertCommand(CLI::App& app, Session& session);
void addImportCommand(CLI::App& app, Session& session);
void addEditCommand(CLI::App& app, Session& session);
void addHatchCommand(CLI::App& app, Session& session);
void addHatchesCommand(CLI::App& app, Session& session);
void addLinetypesCommand(CLI::App& app, Session& session);
void addRenderCommand(CLI::App& app, Session& session);
#ifdef VEK0_SERVE
void addServeCommand(CLI::App& app, Session& session);
#endif
void addViewCommand(CLI::App& app, Session& session);
void addXrefsCommand(CLI::App& app, Session& session);

}  // namespace vek0::tool
