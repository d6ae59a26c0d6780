#include "vek0host/merging.h"

#include "vek0host/saving.h"

namespace vek0::host {
namespace {

// Importing modifies the drawing, so a damaged file would leave half of its content behind: it is
// first read into a separate drawing.
bool canBeLoaded(const std::string& path, const Session& session, std::string& message) {
  const Drawing trial = newDrawing();
  const ReadResult result = loadFile(*trial, path, session);
  message = result.message();
  return result.ok();
}

}  // namespace

void mergeFile(CData& base, const std::string& path, Session& session) {
  std::string message;
  const bool good = canBeLoaded(path, session, message);
  if (good) {
    const ReadResult result = importFile(base, path, session);
    message = result.message();
    warnOfLosses(path, result, session);
  }
  if (message.empty()) return;
  session.fail(kDrawingFailed, path + ": " + message + (good ? "" : " The file is skipped."));
}

}  // namespace vek0::host
