#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "batch.h"
#include "commands.h"
#include "options.h"
#include "vek0host/hatching.h"
#include "vek0host/linetypefile.h"
#include "vek0host/saving.h"
#include "vek0host/textvalues.h"
#include "vek0host/units.h"

namespace vek0::tool {
namespace {

struct ConvertOptions {
  BatchOptions batch;
  std::vector<std::string> linetypes;
  std::string toUnits, fromUnits;
  std::string hatch = "lines";
  std::string target = "r12";
  bool leaveUnsupported = false;
  SaveOptions save;
};

bool addAllLinetypes(CData& data, const ConvertOptions& options, Session& session) {
  return std::all_of(options.linetypes.begin(), options.linetypes.end(),
                     [&](const std::string& path) { return addLinetypes(data, path, session); });
}

// The first entity that cannot be scaled; null if there is none.
const CEnt* findUnsupported(const CData& data) {
  const CEnt* first = nullptr;
  forEachEnt(data, [&first](const CEnt& ent) {
    if (!first && ent.getRecord() == EntRecord::Opaque) first = &ent;
  });
  return first;
}

bool changeUnits(CData& data, const ConvertOptions& options, const std::string& in, long stated,
                 Session& session) {
  if (options.toUnits.empty()) return true;
  const CEnt* unsupported = options.leaveUnsupported ? nullptr : findUnsupported(data);
  if (unsupported) {
    session.fail(kDrawingFailed, in + ": " + opaqueKindOf(*unsupported).toUtf8() + " " +
                                     hexText(unsupported->GetHandle()) +
                                     " cannot be scaled; --leave-unsupported leaves it as it is");
    return false;
  }
  if (convertUnits(data, stated, options.fromUnits, options.toUnits)) return true;
  session.fail(kDrawingFailed, in + ": the drawing does not state its unit; use --from-units");
  return false;
}

void warnIfGrown(const ConvertOptions& options, const BatchJob& job, std::uintmax_t written,
                 std::size_t hatchLines, const Session& session) {
  constexpr std::uintmax_t kMuch = 10;
  const std::uintmax_t read = sizeOf(job.in);
  // Later versions have hatches.
  if (!options.save.isR12()) return;
  if (hatchLines == 0 || read == 0 || written <= kMuch * read) return;
  session.notify("'" + job.out + "' is " + std::to_string(written / read) +
                 " times as large as the input; it contains " + std::to_string(hatchLines) +
                 " lines of hatch patterns, which --hatch outline omits");
}

void convert(const ConvertOptions& options, const BatchJob& job, Session& session) {
  std::size_t hatchLines = 0;
  const std::uintmax_t written =
      rewrite(job.in, job.out, options.save, session, [&](CData& data, const ReadResult& result) {
        hatchLines = countHatchLines(data);
        return addAllLinetypes(data, options, session) &&
               changeUnits(data, options, job.in, result.outcome.units, session);
      });
  warnIfGrown(options, job, written, hatchLines, session);
}

// Without a folder, the second name is that of the output.
std::vector<BatchJob> jobsOf(const ConvertOptions& options, Session& session) {
  if (!options.batch.outDir.empty()) return jobsOf(options.batch, ".dxf", session);
  if (options.batch.files.size() == 2 && options.batch.filesFrom.empty())
    return {{options.batch.files[0], options.batch.files[1]}};
  session.fail(kWrongUsage, "give IN and OUT, or any number of drawings with --out-dir");
  return {};
}

void run(ConvertOptions& options, Session& session) {
  options.save.setTarget(options.target);
  if (!options.linetypes.empty() && !options.save.isR12())
    return session.fail(kWrongUsage, "--linetypes requires --to r12");
  session.reading.hatchOutlines = options.hatch == "outline";
  runBatch(jobsOf(options, session), options.batch, session,
           [&](const BatchJob& job) { convert(options, job, session); });
}

}  // namespace

void addConvertCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ConvertOptions>();
  CLI::App* verb =
      app.add_subcommand("convert", "Load a drawing and save it as DXF R12 or a later version");
  verb->add_option("IN OUT", options->batch.files,
                   "DXF file and the file to write, - for the standard input and output; with "
                   "--out-dir any number of drawings")
      ->type_name("");
  addBatchOutputOptions(*verb, options->batch);
  verb->add_option("--linetypes", options->linetypes,
                   "Add the linetypes of a definition file; those that the drawing has are kept")
      ->type_name("FILE.lin")
      ->allow_extra_args(false);
  verb->add_option("--to", options->target,
                   "Version to write; from 2000 on, the records of later files than R14 stay as "
                   "they are, apart "
                   "from what the version lacks; keep copies the file but for changed units")
      ->check(CLI::IsMember(targetNames()))
      ->type_name("VERSION")
      ->capture_default_str();
  CLI::Option* toUnits =
      verb->add_option("--to-units", options->toUnits,
                       "Scale the drawing to this unit: mm, cm, m, in, ft and others")
          ->check(CLI::IsMember(unitNames()))
          ->type_name("UNIT");
  verb->add_option("--from-units", options->fromUnits,
                   "Unit of the drawing, overriding the one that the file states")
      ->check(CLI::IsMember(unitNames()))
      ->type_name("UNIT")
      ->needs(toUnits);
  verb->add_flag("--leave-unsupported", options->leaveUnsupported,
                 "Leave entities that cannot be scaled, such as 3DSOLID and IMAGE, as they are; "
                 "otherwise --to keep refuses them")
      ->needs(toUnits);
  verb->add_option("--hatch", options->hatch,
                   "Write patterned hatches as the lines of their patterns (from 2000 on as "
                   "hatches), or as their outlines (boundaries) only; solid hatches stay filled")
      ->check(CLI::IsMember({"lines", "outline"}))
      ->capture_default_str();
  addSaveOptions(*verb, options->save);
  verb->footer(
      "Examples:\n"
      "  vek0 convert plan.dxf plan_r12.dxf\n"
      "  vek0 convert --to 2018 plan.dxf plan_2018.dxf\n"
      "  vek0 convert --to 2000 --out-dir old *.dxf\n"
      "  vek0 convert --flatten --visible-only - - < in.dxf > out.dxf\n"
      "  vek0 convert --linetypes pipes.lin plan.dxf plan_with_pipes.dxf\n"
      "  vek0 convert --to-units mm --from-units in part.dxf part_mm.dxf\n"
      "  vek0 convert --hatch outline plan.dxf small.dxf\n\n"
      "--flatten, --visible-only, --no-tables, --plain and --linetypes require R12.\n"
      "The output is written completely or not at all. Nothing is written for a file with an\n"
      "error.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
