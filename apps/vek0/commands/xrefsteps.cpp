#include "xrefsteps.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "options.h"
#include "vek0core/geometry/angle.h"
#include "vek0host/referenceeditor.h"
#include "vek0host/saving.h"
#include "vek0host/textvalues.h"

namespace vek0::tool {
namespace {

// Options common to all of these verbs.
struct Options {
  std::string in, out;
  ReferenceChoice choice;
  ReferenceOptions references;
  SaveOptions save;
};

struct RepathOptions : Options {
  std::vector<std::string> changes;  // NAME=PATH
  std::string from, to;
};

struct AttachOptions : Options {
  std::string path, name, at = "0,0", base = "0,0", scale = "1", rotate = "0";
  bool overlay = false;
};

bool bind(ReferenceEditor& editor, const Options& options) { return editor.bind(options.choice); }

bool detach(ReferenceEditor& editor, const Options& options) {
  return editor.detach(options.choice);
}

bool repath(ReferenceEditor& editor, const RepathOptions& options) {
  if (options.changes.empty()) return editor.repath(options.from, options.to);
  std::vector<ReferencePath> changes;
  for (const std::string& change : options.changes) {
    const auto sides = *splitUnquoted(change, '=');
    changes.push_back({unquoted(sides[0]), unquoted(sides[1])});
  }
  return editor.repath(changes);
}

// Up to three numbers; `rest` stands for those that are missing.
PNT_3D pointIn(const std::string& text, double rest) {
  const std::vector<double> numbers = *numbersIn(text);
  const auto at = [&](std::size_t i) { return i < numbers.size() ? numbers[i] : rest; };
  return PNT_3D(at(0), at(1), at(2));
}

bool attach(ReferenceEditor& editor, const AttachOptions& options) {
  NewReference reference;
  reference.path = options.path;
  reference.name = options.name;
  reference.at = pointIn(options.at, 0);
  reference.base = pointIn(options.base, 0);
  const double all = numbersIn(options.scale)->front();
  const PNT_3D scale = pointIn(options.scale, all);
  reference.sx = scale.x;
  reference.sy = scale.y;
  reference.sz = scale.z;
  reference.rotationRad = numbersIn(options.rotate)->front() * kRadiansPerDegree;
  reference.overlay = options.overlay;
  return editor.attach(reference);
}

// Creates a verb that reads IN, applies the operation and writes OUT. `misuse` returns an error in
// the combination of options, or nothing.
template <class Kind>
CLI::App* addStep(CLI::App& group, const char* name, const char* help,
                  const std::shared_ptr<Kind>& options, bool (*work)(ReferenceEditor&, const Kind&),
                  std::string (*misuse)(const Kind&), Session& session,
                  const char* targetOption = "--to") {
  CLI::App* verb = group.add_subcommand(name, help);
  verb->add_option("FILE", options->in, "DXF file; - is the standard input")->required();
  verb->add_option("-o,--output", options->out, "File to write; - is the standard output")
      ->required();
  addReferenceOptions(*verb, options->references);
  addSaveOptions(*verb, options->save);
  addTargetOption(*verb, options->save, targetOption);
  verb->callback([options, work, misuse, &session] {
    if (const std::string problem = misuse(*options); !problem.empty()) {
      return session.fail(kWrongUsage, problem);
    }
    rewrite(options->in, options->out, options->save, session, [&](CData& data, const ReadResult&) {
      ReferenceEditor editor(data, options->in, options->references, session);
      return work(editor, *options);
    });
  });
  return verb;
}

std::string namesOrAll(const Options& options) {
  const auto& [names, all] = options.choice;
  if (names.empty() == all) return "";
  return all ? "--all excludes names" : "name the references, or use --all";
}

void addNames(CLI::App& verb, Options& options) {
  verb.add_option("NAME", options.choice.names, "References; * matches any text, ? one character");
  verb.add_flag("--all", options.choice.all, "All references");
}

void addBind(CLI::App& group, Session& session) {
  auto options = std::make_shared<Options>();
  CLI::App* verb = addStep<Options>(group, "bind", "Convert references into blocks of the drawing",
                                    options, bind, namesOrAll, session);
  addNames(*verb, *options);
  verb->footer(
      "Examples:\n"
      "  vek0 xrefs bind site.dxf --all -o whole.dxf\n"
      "  vek0 xrefs bind site.dxf HOUSE 'TREE*' --search /library -o out.dxf\n\n"
      "Each reference becomes a block of the same name, its layers become NAME$0$LAYER, and\n"
      "so on. Nested references are bound with it. Nothing is written if one cannot be bound.");
}

void addDetach(CLI::App& group, Session& session) {
  auto options = std::make_shared<Options>();
  CLI::App* verb =
      addStep<Options>(group, "detach", "Remove references, with their inserts and layers", options,
                       detach, namesOrAll, session);
  addNames(*verb, *options);
  verb->footer(
      "Examples:\n"
      "  vek0 xrefs detach site.dxf TREES -o bare.dxf\n\n"
      "Nested references that only they show are removed too, as far as their files are found.");
}

std::string pathsOrPrefix(const RepathOptions& options) {
  const bool byPrefix = !options.from.empty();
  if (options.changes.empty() != byPrefix) return "specify NAME=PATH, or --from and --to";
  for (const std::string& change : options.changes) {
    const auto sides = splitUnquoted(change, '=');
    if (!sides || sides->size() != 2 || unquoted((*sides)[0]).empty())
      return "'" + change + "' is not of the form NAME=PATH";
  }
  return "";
}

void addRepath(CLI::App& group, Session& session) {
  auto options = std::make_shared<RepathOptions>();
  CLI::App* verb = addStep<RepathOptions>(group, "repath", "Change the paths of references",
                                          options, repath, pathsOrPrefix, session, "--to-version");
  verb->add_option("NAME=PATH", options->changes, "New path of a reference");
  CLI::Option* from =
      verb->add_option("--from", options->from, "How the old paths begin")->type_name("PREFIX");
  CLI::Option* to =
      verb->add_option("--to", options->to, "How the new paths begin")->type_name("PREFIX");
  from->needs(to);
  to->needs(from);
  verb->footer(
      "Examples:\n"
      "  vek0 xrefs repath site.dxf HOUSE=plans/house.dxf -o out.dxf\n"
      "  vek0 xrefs repath site.dxf --from 'C:\\Jobs\\' --to ../ -o out.dxf\n\n"
      "Beginnings are compared ignoring letter case and the direction of slashes. The new\n"
      "paths are not checked; vek0 xrefs check does that. Quote a name or path that contains\n"
      "an equals sign: 'HOUSE=\"a=b.dxf\"'.");
}

// One to `most` numbers.
CLI::Validator areNumbers(std::size_t least, std::size_t most, const char* what) {
  const auto check = [=](const std::string& text) {
    const auto numbers = numbersIn(text);
    const bool ok = numbers && numbers->size() >= least && numbers->size() <= most;
    return ok ? std::string() : "'" + text + "' is not " + what;
  };
  return CLI::Validator(check, "");
}

std::string attachMisuse(const AttachOptions&) { return ""; }

void addAttach(CLI::App& group, Session& session) {
  auto options = std::make_shared<AttachOptions>();
  CLI::App* verb = addStep<AttachOptions>(group, "attach", "Add a reference and insert it", options,
                                          attach, attachMisuse, session);
  verb->add_option("--path", options->path, "Path of the drawing to reference, relative to FILE")
      ->required();
  verb->add_option("--name", options->name, "Name of the reference; default: the name of its file");
  verb->add_option("--at", options->at, "Insertion point")
      ->type_name("X,Y[,Z]")
      ->check(areNumbers(2, 3, "a point like 100,50"));
  verb->add_option(
          "--base", options->base,
          "Point of the other drawing to place there; 0,0: the base point that it declares")
      ->type_name("X,Y[,Z]")
      ->check(areNumbers(2, 3, "a point like 100,50"));
  verb->add_option("--scale", options->scale, "Scale, for all axes or for each")
      ->type_name("F|X,Y,Z")
      ->check(areNumbers(1, 3, "a scale like 2"));
  verb->add_option("--rotate", options->rotate, "Rotation in degrees, counter-clockwise")
      ->type_name("DEG")
      ->check(areNumbers(1, 1, "an angle like 30"));
  verb->add_flag("--overlay", options->overlay,
                 "Do not show it in drawings that reference this one");
  verb->footer(
      "Examples:\n"
      "  vek0 xrefs attach site.dxf --path trees.dxf --name PARK --at 30,12 --rotate 15 -o "
      "out.dxf\n\n"
      "The reference is attached even if its file is not found; a message reports that.");
}

}  // namespace

void addXrefSteps(CLI::App& group, Session& session) {
  addAttach(group, session);
  addBind(group, session);
  addDetach(group, session);
  addRepath(group, session);
}

}  // namespace vek0::tool
