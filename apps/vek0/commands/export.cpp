#include <map>
#include <memory>
#include <string>

#include "batch.h"
#include "commands.h"
#include "vek0host/csvtables.h"
#include "vek0host/drawingfile.h"
#include "vek0host/geojson.h"
#include "vek0host/losslog.h"
#include "vek0host/outputfile.h"
#include "vek0host/saving.h"
#include "vek0host/textvalues.h"

namespace vek0::tool {
namespace {

struct ExportOptions {
  BatchOptions batch;
  GeoOptions geo;
  std::string out, format, table;
  bool force = false;
};

// Passes text on in large pieces.
class OutputText {
 public:
  explicit OutputText(IFile& file) : m_file(file) {}
  void put(std::string_view text) {
    constexpr std::size_t most = 1 << 16;
    m_text += text;
    if (m_text.size() > most) flush();
  }
  bool flush() {
    m_isGood = m_isGood && m_file.writeBytes(m_text.data(), static_cast<long>(m_text.size()));
    m_text.clear();
    return m_isGood;
  }

 private:
  IFile& m_file;
  std::string m_text;
  bool m_isGood = true;
};

void tellSkipped(const GeoResult& result, const std::string& path, Session& session) {
  for (const auto& [kind, count] : result.skipped) {
    const std::string what = "GeoJSON cannot hold " + std::to_string(count) + " " + kind;
    session.notify(path + ": " + what);
    if (session.log)
      session.log->addLoss(LossLog::Write, "entity dropped", static_cast<long>(count), what);
  }
}

// Returns why there is no output, else an empty text.
std::string write(const CData& data, const std::string& path, const ExportOptions& options,
                  OutputText& out, Session& session) {
  const auto put = [&out](std::string_view text) { out.put(text); };
  if (options.format == "csv") {
    const std::map<std::string, CsvTable> tables{{"", CsvTable::Entities},
                                                 {"entities", CsvTable::Entities},
                                                 {"texts", CsvTable::Texts},
                                                 {"attributes", CsvTable::Attributes}};
    return writeCsv(data, tables.at(options.table), put);
  }
  const GeoResult result = writeGeoJson(data, options.geo, put);
  if (result.isCut)
    return "blocks and curves unfold to more than 20 million points or 64 levels; nothing is "
           "written";
  tellSkipped(result, path, session);
  return {};
}

void exportFile(const BatchJob& job, const ExportOptions& options, Session& session) {
  OutputFile output(job.out, options.force);
  if (!output.error().empty()) return session.fail(kOutputFailed, output.error());
  const Drawing data = newDrawing();
  session.reading.wholeRecords = true;
  const ReadResult result = loadFile(*data, job.in, session);
  if (!result.ok()) return session.fail(kDrawingFailed, job.in + ": " + result.message());
  warnOfLosses(job.in, result, session);
  if (!output.file().open())
    return session.fail(kOutputFailed, "'" + job.out + "' cannot be written");
  OutputText out(output.file());
  const std::string problem = write(*data, job.in, options, out, session);
  if (!problem.empty()) return session.fail(kDrawingFailed, job.in + ": " + problem);
  const bool isWritten = out.flush();
  output.file().close();
  if (!isWritten || !output.commit())
    session.fail(kOutputFailed,
                 output.error().empty() ? "'" + job.out + "' cannot be written" : output.error());
}

// The format that a name ends with; empty if that is none.
std::string exportFormatOf(const std::string& path) {
  const std::string name = lowered(path);
  if (name.ends_with(".csv")) return "csv";
  return name.ends_with(".geojson") || name.ends_with(".json") ? "geojson" : "";
}

std::string problemOf(const ExportOptions& options) {
  if (options.out.empty() == options.batch.outDir.empty()) return "give one of -o and --out-dir";
  if (options.format.empty()) return "give --format, or an output that ends in .geojson or .csv";
  if (options.format == "csv" && options.geo.chord > 0) return "--chord is an option of GeoJSON";
  if (options.format == "csv" && !options.geo.crs.empty()) return "--crs is an option of GeoJSON";
  if (options.format != "csv" && !options.table.empty()) return "--table is an option of CSV";
  return {};
}

void run(ExportOptions& options, Session& session) {
  if (options.format.empty()) options.format = exportFormatOf(options.out);
  const std::string problem = problemOf(options);
  if (!problem.empty()) return session.fail(kWrongUsage, problem);
  std::vector<BatchJob> jobs = jobsOf(options.batch, "." + options.format, session);
  if (!options.out.empty() && jobs.size() > 1)
    return session.fail(kWrongUsage, "several drawings require --out-dir");
  for (BatchJob& job : jobs)
    if (!options.out.empty()) job.out = options.out;
  runBatch(jobs, options.batch, session,
           [&](const BatchJob& job) { exportFile(job, options, session); });
}

}  // namespace

void addExportCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ExportOptions>();
  CLI::App* verb =
      app.add_subcommand("export", "Write drawings as GeoJSON, or their entities as CSV tables");
  verb->add_option("IN", options->batch.files, "DXF files; - is the standard input")->type_name("");
  verb->add_option("-o,--output", options->out, "File to write; - is the standard output")
      ->type_name("FILE");
  verb->add_option("--format", options->format, "By default what the output's name ends with")
      ->check(CLI::IsMember({"geojson", "csv"}));
  verb->add_option("--table", options->table,
                   "CSV: all entities (the default), those with texts, or inserts with a column "
                   "for each tag of their attributes")
      ->check(CLI::IsMember({"entities", "texts", "attributes"}));
  verb->add_option("--chord", options->geo.chord,
                   "GeoJSON: distance of chords from curves in drawing units; default: 1e-5 of the "
                   "extents, at most a hundredth of the radius")
      ->type_name("DISTANCE")
      ->check(CLI::PositiveNumber);
  verb->add_option("--crs", options->geo.crs,
                   "GeoJSON: name of the coordinate reference system, to be recorded")
      ->type_name("NAME");
  verb->add_flag("-f,--force", options->force, "Replace existing outputs");
  addBatchOutputOptions(*verb, options->batch);
  verb->footer(
      "Examples:\n"
      "  vek0 export site.dxf -o site.geojson --crs EPSG:25832 --chord 0.01\n"
      "  vek0 export plan.dxf -o parts.csv --table attributes\n"
      "  vek0 export --format csv --table texts --out-dir texts *.dxf\n\n"
      "Coordinates are those of the drawing, and --crs changes none. GeoJSON has the entities of\n"
      "model space: closed curves and areas as polygons, other curves as lines, texts and points\n"
      "as points, blocks as what their inserts show, under the handle of the insert.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
