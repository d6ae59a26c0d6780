#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "terminal.h"
#include "vek0host/drawingfile.h"
#include "vek0host/linetypefile.h"
#include "vek0host/outputfile.h"
#include "vek0host/summary.h"
#include "vek0host/visibletext.h"

namespace vek0::tool {
namespace {

constexpr double kDegPerRad = 57.295779513082321;

struct LinetypesOptions {
  std::vector<std::string> files;
  std::string saveTo;
  bool json = false;
  bool force = false;
};

// Rounded to the six decimals of the files, because the conversion is inexact.
double degrees(double angleRad) { return std::round(angleRad * kDegPerRad * 1e6) / 1e6; }

Json elementToJson(const ILtypeComplexDash& dash) {
  const TEXT_3D* const text = dash.GetText();
  if (!text) return dash.GetValue();
  const CStyle* const style = text->getStyle();
  const CTextContext& context = text->getContext();
  return {{"text", context.getString().toUtf8()},
          {"style", style ? Json(style->getName().toUtf8()) : nullptr},
          {"scale", context.getHeight()},
          {"rotation", degrees(context.getRotate())},
          {"offset", {text->x, text->y}}};
}

Json linetypeToJson(const CLtype& ltype) {
  Json elements = Json::array();
  for (int i = 0; i < ltype.getNoDashes(); ++i) elements.push_back(elementToJson(*ltype[i]));
  return {{"name", ltype.getName().toUtf8()},
          {"description", ltype.getDesc().toUtf8()},
          {"length", ltype.getPatternLen()},
          {"elements", elements}};
}

Json reportToJson(const CFileReport& report) {
  Json entries = Json::array();
  for (const auto& entry : report.entries()) {
    entries.push_back({{"code", entry.code},
                       {"line", entry.firstLine},
                       {"count", entry.count},
                       {"sample", entry.sample.toUtf8()}});
  }
  return entries;
}

Json errorToJson(const InputFault& fault) {
  if (!fault.kind) return nullptr;
  return Json{{"kind", fault.kind}, {"line", 0}, {"message", fault.message}};
}

void printJson(const std::string& path, const CLtypeLoader& loader, const InputFault& fault) {
  Json linetypes = Json::array();
  for (int i = 0; i < loader.GetNoLtype(); ++i) {
    linetypes.push_back(linetypeToJson(*loader.GetLtypeNo(i)));
  }
  const Json line = {{"file", path},
                     {"ok", !fault.kind},
                     {"error", errorToJson(fault)},
                     {"linetypes", linetypes},
                     {"report", reportToJson(loader.GetReport())}};
  std::printf("%s\n", line.dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
}

// Numbers as JSON writes them: short, and with a point in every locale.
std::string elementToText(const ILtypeComplexDash& dash) {
  const TEXT_3D* const text = dash.GetText();
  if (!text) return Json(dash.GetValue()).dump();
  return '"' + text->getContext().getString().toUtf8() + '"';
}

void printText(const std::string& path, const CLtypeLoader& loader, const InputFault& fault) {
  if (fault.kind) {
    print(visible(path) + ": error (" + fault.kind + "): " + visible(fault.message) + "\n");
    return;
  }
  print(visible(path) + ": " + std::to_string(loader.GetNoLtype()) + " linetypes\n");
  for (int i = 0; i < loader.GetNoLtype(); ++i) {
    const CLtype& ltype = *loader.GetLtypeNo(i);
    print("  " + visible(ltype.getName()) + " (" + visible(ltype.getDesc()) + "):");
    for (int k = 0; k < ltype.getNoDashes(); ++k) {
      print(" " + visible(elementToText(*ltype[k])));
    }
    print("\n");
  }
  if (!loader.GetReport().empty()) {
    print("  skipped or repaired:\n" + reportToText(loader.GetReport()));
  }
}

void saveTo(const LinetypesOptions& options, CLtypeLoader& loader, Session& session) {
  OutputFile output(options.saveTo, options.force);
  if (!output.error().empty()) {
    session.complain(output.error());
    return session.failed(kOutputFailed);
  }
  loader.Save(output.file());
  if (loader.GetStatus() != CLtypeLoader::Done) {
    session.complain("'" + output.path() + "' cannot be written");
    return session.failed(kOutputFailed);
  }
  if (!output.commit()) {
    session.complain(output.error());
    return session.failed(kOutputFailed);
  }
  if (!session.quiet && !loader.GetReport().empty()) {
    session.complain("not everything could be written as it was:",
                     reportToText(loader.GetReport()));
  }
}

// If saved to the standard output, nothing else may be printed there.
bool listsFiles(const LinetypesOptions& options, const Session& session) {
  return options.saveTo != "-" && (options.json || !session.quiet);
}

void runFile(const LinetypesOptions& options, const std::string& path, Session& session) {
  CStyleTable styles;
  CStyleFactory styleFactory;
  CLtypeFactory ltypeFactory;
  StyleMaker maker(styles, styleFactory);
  CLtypeLoader loader(styles, ltypeFactory);
  loader.SetNotifier(&maker);
  const InputFault fault = loadLinetypes(loader, path);
  if (listsFiles(options, session)) {
    options.json ? printJson(path, loader, fault) : printText(path, loader, fault);
  } else if (fault.kind) {
    session.complain(path + ": " + fault.message);
  }
  if (fault.kind) return session.failed(kDrawingFailed);
  if (!options.saveTo.empty()) saveTo(options, loader, session);
}

void run(const LinetypesOptions& options, Session& session) {
  if (!options.saveTo.empty() && options.files.size() > 1) {
    session.complain("--save takes one definition file");
    return session.failed(kWrongUsage);
  }
  for (const std::string& path : options.files) runFile(options, path, session);
}

}  // namespace

void addLinetypesCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<LinetypesOptions>();
  CLI::App* verb =
      app.add_subcommand("linetypes", "List and check linetype definition files, or rewrite one");
  verb->add_option("FILE", options->files, "Definition files (.lin); - is the standard input")
      ->required();
  verb->add_flag("--json", options->json, "One JSON object a line and file");
  verb->add_option("--save", options->saveTo,
                   "Write the definitions that were read; - is the standard output")
      ->type_name("OUT");
  verb->add_flag("-f,--force", options->force, "Replace the output file if it exists");
  verb->footer(
      "Examples:\n"
      "  vek0 linetypes pipes.lin                   the linetypes, and what was not understood\n"
      "  vek0 linetypes pipes.lin --save clean.lin  the same definitions in the plain form\n\n"
      "vek0 convert --linetypes adds the linetypes of a file to a drawing.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
