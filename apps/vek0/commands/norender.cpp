#include "commands.h"

namespace vek0::tool {

// Explains why rendering is unavailable, where the parser would suggest another command.
void addRenderCommand(CLI::App& app, Session& session) {
  CLI::App* verb = app.add_subcommand("render", "Not in this build of vek0");
  verb->allow_extras()->fallthrough(false);
  verb->callback([&session] {
    session.fail(kWrongUsage, "this vek0 was built without 'render' (VEK0_BUILD_RENDER=OFF)");
  });
}

}  // namespace vek0::tool
