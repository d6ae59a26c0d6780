#include "options.h"

#include <string>

#include "vek0core/files/textcodec.h"

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
          "Version to write from scratch; keep changes nothing in the file but what is edited")
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

}  // namespace vek0::tool
