#include "options.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "vek0core/files/textcodec.h"
#include "vek0host/losslog.h"
#include "vek0host/outputfile.h"
#include "vek0host/paths.h"

namespace vek0::tool {

void addReadOptions(CLI::App& app, ReadOptions& options) {
  CLI::Option* strict =
      app.add_flag("--strict", options.strict,
                   "Reject files that violate the format; skip unsupported entities");
  app.add_flag("--paper-space", options.paperSpace,
               "Read the current sheet instead of the model; render plots its layout")
      ->excludes(strict);
  app.add_option_function<std::string>(
         "--encoding",
         [&options](const std::string& name) { options.codePage = codePageFromName(name); },
         "Encoding of texts, overriding the file's own: utf-8, windows-1251, cp932, iso-8859-2 ...")
      ->check([](const std::string& name) {
        return codePageFromName(name) == kCodePageAuto ? "'" + name + "' is not a known encoding"
                                                       : std::string();
      });
}

void addReportOptions(CLI::App& app, ReportOptions& options) {
  app.add_option("--report", options.path,
                 "Write what was repaired, changed or lost to a file, one JSON object per drawing; "
                 "- is the standard output")
      ->type_name("FILE");
  app.add_option("--fail-on", options.failOn,
                 "Exit with code 1 if a drawing has an entry of this severity or a worse one in "
                 "its report")
      ->check(CLI::IsMember({"repair", "change", "loss"}))
      ->type_name("repair|change|loss");
  app.add_flag("--dry-run", options.dryRun, "Do everything but put the outputs into place");
}

namespace {

// Of the verb and of its part, such as "xrefs" and "list".
template <class Predicate>
bool anyGiven(const CLI::App& verb, const Predicate& predicate) {
  const auto options = verb.get_options([&](const CLI::Option* option) {
    return option->count() > 0 && predicate(*option, option->get_single_name());
  });
  const auto parts = verb.get_subcommands();
  return !options.empty() || std::any_of(parts.begin(), parts.end(), [&](const CLI::App* part) {
    return anyGiven(*part, predicate);
  });
}

bool isSameFile(const std::string& a, const std::string& b) {
  // A relative path to a file that does not exist would stay as it is.
  const auto whole = [](const std::string& file) {
    std::error_code ignored;
    const auto path = std::filesystem::absolute(host::toPath(file), ignored);
    return std::filesystem::weakly_canonical(path, ignored);
  };
  return a == b || whole(a) == whole(b);
}

// Whether results, or an output, go to the standard output.
bool usesStandardOutput(const CLI::App& verb) {
  return anyGiven(verb, [](const CLI::Option& option, const std::string& name) {
    const bool isOutput =
        name == "output" || name == "save" || name == "picture" || name == "IN OUT";
    return name == "json" || (isOutput && option.results().back() == "-");
  });
}

// Whether the verb reads or writes that file.
bool usesFile(const CLI::App& verb, const std::string& path) {
  return anyGiven(verb, [&](const CLI::Option& option, const std::string& name) {
    const bool isFile = name == "output" || name == "save" || name == "picture" ||
                        (option.get_positional() && name != "PATTERN");
    const auto isReport = [&](const std::string& file) { return isSameFile(file, path); };
    const std::vector<std::string> files = option.results();
    return isFile && std::any_of(files.begin(), files.end(), isReport);
  });
}

}  // namespace

void checkReport(const ReportOptions& options, const CLI::App& verb) {
  if (options.path.empty()) return;
  std::string problem;
  if (options.path == "-") {
    if (usesStandardOutput(verb)) problem = "the standard output has another use; name a file";
  } else {
    problem = usesFile(verb, options.path) ? "'" + options.path + "' has another use"
                                           : OutputFile(options.path, true).error();
  }
  if (!problem.empty()) throw CLI::ValidationError("--report", problem);
}

void finishReport(const ReportOptions& options, const std::string& verb, Session& session) {
  if (!session.log) return;
  const auto severity = options.failOn == "repair"   ? ReportSeverity::Repair
                        : options.failOn == "change" ? ReportSeverity::Change
                                                     : ReportSeverity::Loss;
  if (!options.failOn.empty() && session.log->has(severity)) {
    if (session.answer)
      session.answer = 1;
    else
      session.failed(kDrawingFailed);
  }
  if (options.path.empty()) return;
  std::string text;
  for (const Json& drawing : session.log->toJson(verb)) text += toLine(drawing) + "\n";
  // It describes what would be written, and is written itself.
  OutputFile::setDryRun(false);
  OutputFile output(options.path, true);
  const bool isWritten = output.error().empty() && output.file().open() &&
                         output.file().writeBytes(text.data(), static_cast<long>(text.size()));
  if (isWritten) output.file().close();
  if (!isWritten || !output.commit())
    session.fail(kOutputFailed, output.error().empty() ? "'" + options.path + "' cannot be written"
                                                       : output.error());
}

void addSaveOptions(CLI::App& verb, SaveOptions& options) {
  verb.add_flag("--flatten", options.flatten, "Write every point with Z = 0");
  verb.add_flag("--visible-only", options.visibleOnly,
                "Omit entities on layers that are frozen or off");
  verb.add_flag("--no-tables", options.noTables, "Write only blocks and entities");
  CLI::Option* plain =
      verb.add_flag("--plain", options.plain,
                    "Write the classic form: six decimals, chords instead of arcs in polylines");
  const auto setNames = [&options](const std::string& names) {
    options.keepNames = names == "keep";
  };
  verb.add_option_function<std::string>(
          "--names", setNames,
          "Names that R12 does not allow: convert transliterates them (M\u00F6bel becomes MOEBEL), "
          "keep writes them as they are; later versions allow nearly all names")
      ->check(CLI::IsMember({"convert", "keep"}))
      ->type_name("convert|keep")
      ->default_str("convert")
      ->excludes(plain);
  verb.add_flag("-f,--force", options.force, "Replace the output file if it exists");
}

void addTargetOption(CLI::App& verb, SaveOptions& options, const char* name) {
  options.form = SaveForm::Kept;
  verb.add_option_function<std::string>(
          name, [&options](const std::string& target) { options.setTarget(target); },
          "Version to write; keep changes nothing in the file but what is edited")
      ->check(CLI::IsMember(targetNames()))
      ->type_name("VERSION")
      ->default_str("keep");
}

void addReferenceOptions(CLI::App& verb, ReferenceOptions& options) {
  verb.add_option("--search", options.searched,
                  "Also search this folder for references; may be repeated")
      ->type_name("DIR")
      ->allow_extra_args(false)
      ->check(CLI::ExistingDirectory);
  verb.add_option("--allow", options.allowed,
                  "Allow references to files in or below this folder; may be repeated")
      ->type_name("DIR")
      ->allow_extra_args(false)
      ->check(CLI::ExistingDirectory);
}

std::optional<paint::Format> pictureFormat(const std::string& name, Session& session) {
  const std::optional<paint::Format> format = paint::formatOf(name);
  if (format && paint::isWritable(*format)) return format;
  session.fail(kWrongUsage,
               format ? "this vek0 draws only SVG: it was built with VEK0_BUILD_RENDER=OFF"
                      : "the picture must end in .svg, .png or .pdf");
  return {};
}

}  // namespace vek0::tool
