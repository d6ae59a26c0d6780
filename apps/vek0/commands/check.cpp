#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "batch.h"
#include "commands.h"
#include "options.h"
#include "terminal.h"
#include "vek0host/inspection.h"
#include "vek0host/losslog.h"
#include "vek0host/outputfile.h"
#include "vek0host/reports.h"
#include "vek0host/textvalues.h"
#include "vek0paint/drawingfonts.h"
#include "vek0paint/rendering.h"

namespace vek0::tool {
namespace {

struct CheckOptions {
  BatchOptions batch;
  bool json = false;
  bool hasPurpose = false;
  InspectionOptions inspection;
  std::string picture;
  paint::RenderOptions render;
};

Hue hueOf(std::string_view line) {
  if (line.find(": error (") != line.npos) return Hue::Bad;
  if (line.ends_with(": ok\n")) return Hue::Good;
  const bool isNotable = line.starts_with("    fault: ") || line.starts_with("    loss: ");
  return isNotable ? Hue::Notable : Hue::Plain;
}

Hue hueOfFinding(std::string_view line) {
  if (line.find(" error: ") != line.npos) return Hue::Bad;
  return line.find(" warning: ") != line.npos ? Hue::Notable : Hue::Plain;
}

// The output is checked before the work is done.
bool prepareMarks(CheckOptions& options, std::size_t drawings, Session& session) {
  if (options.picture.empty()) return true;
  const std::optional<paint::Format> format = pictureFormat(options.picture, session);
  if (!format) return false;
  options.render.picture.format = *format;
  if (drawings > 1) session.fail(kWrongUsage, "--picture takes a single drawing");
  const OutputFile output(options.picture, options.render.force);
  if (!output.error().empty()) session.fail(kOutputFailed, output.error());
  return session.worst == kNoFailure;
}

void drawMarks(CData& data, const std::string& path, const Inspection& found,
               const CheckOptions& options, Session& session) {
  constexpr RGB_COLOR error{220, 20, 20}, warning{200, 110, 0};
  std::vector<paint::PictureMark> marks;
  // Where an entity has both, it shows the error. The picture shows the model.
  for (const bool isError : {true, false})
    for (std::size_t i = 0; i < found.findings.size(); ++i) {
      const Finding& finding = found.findings[i];
      if (finding.isError == isError && finding.layout.empty())
        marks.push_back({i + 1, finding.ents, finding.point, isError ? error : warning});
    }
  paint::renderMarks({data, path}, marks, options.picture, options.render, session);
}

void addMarkOptions(CLI::App& verb, CheckOptions& options, CLI::Option& purpose) {
  CLI::Option* picture =
      verb.add_option("--picture", options.picture,
                      "Also draw the model with its findings, as .svg, .png or .pdf: errors red, "
                      "warnings orange, with their numbers")
          ->type_name("FILE")
          ->needs(&purpose);
  verb.add_flag("-f,--force", options.render.force, "Replace the picture if it exists")
      ->needs(picture);
}

Inspection inspect(const CData& data, long units, InspectionOptions options) {
  const std::unique_ptr<paint::IDrawingFonts> fonts = paint::makeDrawingFonts();
  options.hasFont = [&fonts](const zim::WString& name) { return fonts->has(name); };
  return inspectDrawing(data, units, options);
}

void check(const std::string& path, const CheckOptions& options, Session& session) {
  session.readsTwice = true;
  session.reading.wholeRecords = options.hasPurpose;
  const Drawing data = newDrawing();
  // Fonts are found by name.
  const ReadResult result = loadFile(*data, path, session, options.hasPurpose);
  if (!result.ok()) session.failed(kDrawingFailed);
  const bool isAudited = result.ok() && (options.json || !session.quiet);
  const CFileReport audit = isAudited ? auditOf(path, session) : CFileReport();
  if (session.log) session.log->add(LossLog::Read, audit);
  Inspection found;
  if (options.hasPurpose && result.ok())
    found = inspect(*data, result.outcome.units, options.inspection);
  if (found.hasErrors()) session.failed(kDrawingFailed);
  if (options.json) {
    Json object = checkToJson(path, result, audit);
    if (options.hasPurpose) object["findings"] = findingsToJson(found);
    std::printf("%s\n", toLine(object).c_str());
  } else if (!session.quiet || !result.ok()) {
    printLines(checkToText(path, result, audit), hueOf);
    if (options.hasPurpose && result.ok()) printLines(findingsToText(found), hueOfFinding);
  }
  if (found.isCut && options.json)
    session.notify(path + ": the drawing shows too much to examine all of it");
  if (!options.picture.empty() && result.ok()) drawMarks(*data, path, found, options, session);
}

void addLength(CLI::App& verb, CLI::Option& purpose, const char* name, const char* help,
               std::optional<double>& value) {
  const auto read = [&value](const std::string& text) {
    double number = 0;
    parseNumbers(text, ',', &number, 1);
    value = number;
  };
  const auto check = [](const std::string& text) {
    double number;
    const bool isValid = parseNumbers(text, ',', &number, 1) && number >= 0;
    return isValid ? std::string() : "'" + text + "' is not a distance of 0 or more";
  };
  verb.add_option_function<std::string>(name, read, help)
      ->type_name("DISTANCE")
      ->check(check)
      ->needs(&purpose);
}

void addPurposeOptions(CLI::App& verb, CheckOptions& options) {
  const auto setPurpose = [&options](const std::string& name) {
    const std::vector<std::string>& names = purposeNames();
    options.hasPurpose = true;
    options.inspection.purpose =
        static_cast<Purpose>(std::find(names.begin(), names.end(), name) - names.begin());
  };
  CLI::Option* purpose =
      verb.add_option_function<std::string>(
              "--for", setPurpose,
              "Also find what is wrong for a purpose: saving as R12, cutting with a laser, "
              "printing, or use as a map; exit code 1 if there are errors")
          ->check(CLI::IsMember(purposeNames()))
          ->type_name("r12|laser|print|gis");
  addLength(verb, *purpose, "--tolerance",
            "Largest gap between ends that are meant to meet, in drawing units; default: 1e-4 of "
            "the extents",
            options.inspection.tolerance);
  addLength(verb, *purpose, "--tiny",
            "Length below which a curve is tiny, in drawing units; default: a tenth of the "
            "tolerance",
            options.inspection.tiny);
  verb.add_option_function<std::string>(
          "--bed", [&options](const std::string& text) { options.inspection.bed = bedOf(text); },
          "Size of the machine's bed or of the paper, in drawing units or with a unit: 600x400mm")
      ->type_name("WxH")
      ->check([](const std::string& text) {
        return bedOf(text) ? std::string()
                           : "'" + text + "' is not a size like 600x400 or 600x400mm";
      })
      ->needs(purpose);
  addMarkOptions(verb, options, *purpose);
}

}  // namespace

void addCheckCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* verb =
      app.add_subcommand("check", "Check drawings: print ok, or the error and its line");
  verb->add_option("FILE", options->batch.files, "DXF files; - is the standard input");
  verb->add_flag("--json", options->json, "One JSON object per file, one per line");
  addBatchOptions(*verb, options->batch);
  addPurposeOptions(*verb, *options);
  verb->footer(
      "Examples:\n"
      "  vek0 check *.dxf             one line per file; exit code 1 if any file fails\n"
      "  vek0 check --for laser --bed 600x400mm part.dxf --picture findings.png\n"
      "  vek0 check --json a.dxf      "
      "{\"file\":\"a.dxf\",\"ok\":true,\"error\":null,\"report\":[],\"audit\":[]}\n\n"
      "Repairs, changes and losses are listed below the line of their file, and so are faults "
      "that\n"
      "an audit finds in it: repeated handles, missing owners, dangling pointers, undeclared "
      "names.\n"
      "Faults do not change the exit code. With --strict, a file that violates the format fails.");
  verb->callback([options, &session] {
    const std::vector<BatchJob> jobs = jobsOf(options->batch, "", session);
    if (!prepareMarks(*options, jobs.size(), session)) return;
    runBatch(jobs, options->batch, session,
             [&](const BatchJob& job) { check(job.in, *options, session); });
  });
}

}  // namespace vek0::tool
