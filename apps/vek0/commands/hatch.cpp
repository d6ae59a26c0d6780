#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "batch.h"
#include "commands.h"
#include "options.h"
#include "vek0host/hatching.h"
#include "vek0host/saving.h"
#include "vek0host/textvalues.h"

namespace vek0::tool {
namespace {

struct HatchOptions {
  BatchOptions batch;
  std::string out;
  HatchRequest hatch;
  std::vector<std::string> boundary;  // points
  SaveOptions save;
};

// Parses "x,y"; returns an error text or nothing, as the argument parser expects.
std::string checkPoint(const std::string& text, PNT_3D& pnt) {
  const auto numbers = numbersIn(text);
  if (!numbers || numbers->size() != 2) return "'" + text + "' is not a point like 12.5,-3";
  pnt.set((*numbers)[0], (*numbers)[1], 0);
  return {};
}

HATCH_RING ringOf(const std::vector<std::string>& points) {
  HATCH_RING ring(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) checkPoint(points[i], ring[i]);
  return ring;
}

std::string checkPattern(const std::string& name) {
  if (isHatchPattern(name)) return {};
  return "'" + name + "' is not a pattern; vek0 hatches lists them";
}

}  // namespace

void addHatchCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<HatchOptions>();
  CLI::App* verb = app.add_subcommand("hatch", "Hatch an area of a drawing");
  verb->add_option("IN", options->batch.files, "DXF files; - is the standard input");
  verb->add_option("-o,--output", options->out, "File to write; - is the standard output");
  addBatchOutputOptions(*verb, options->batch);
  verb->add_option("--pattern", options->hatch.pattern,
                   "Pattern of the catalog (see vek0 hatches), or SOLID")
      ->capture_default_str()
      ->check(checkPattern);
  verb->add_option("--scale", options->hatch.scale, "Scale of the pattern")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  verb->add_option("--angle", options->hatch.angleDeg, "Rotation of the pattern in degrees")
      ->capture_default_str();
  verb->add_option("--layer", options->hatch.layer,
                   "Layer of the hatch, created if it does not exist")
      ->capture_default_str();
  verb->add_option("--limit", options->hatch.limit, "Maximum number of lines and dots of the hatch")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  CLI::Option_group* area = verb->add_option_group("area");
  area->add_option("--boundary", options->boundary, "Corners of the area: x,y x,y x,y ...")
      ->check([](const std::string& text) {
        PNT_3D ignored;
        return checkPoint(text, ignored);
      })
      ->expected(3, CLI::detail::expected_max_vector_size);
  area->add_flag("--closed-polylines", options->hatch.closedPolylines,
                 "Hatch the closed polylines of model space, excluding islands");
  area->require_option(1);
  addSaveOptions(*verb, options->save);
  addTargetOption(*verb, options->save);
  verb->footer(
      "Examples:\n"
      "  vek0 hatch plan.dxf -o hatched.dxf --pattern ANSI31 --scale 25 --closed-polylines\n"
      "  vek0 hatch plan.dxf -o hatched.dxf --pattern BRICK --angle 45 --boundary 0,0 10,0 10,5\n\n"
      "In R12 files, a hatch is an insert of its lines, with the data that restores the hatch\n"
      "when the file is read again.");
  verb->callback([options, &session] {
    options->hatch.corners = ringOf(options->boundary);
    const auto hatch = [&](const BatchJob& job) {
      rewrite(job.in, job.out, options->save, session, [&](CData& data, const ReadResult&) {
        return addHatch(data, options->hatch, job.in, session);
      });
    };
    runBatch(editJobsOf(options->batch, options->out, false, session), options->batch, session,
             hatch);
  });
}

}  // namespace vek0::tool
