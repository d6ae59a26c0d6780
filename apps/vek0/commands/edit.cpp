#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "batch.h"
#include "commands.h"
#include "options.h"
#include "terminal.h"
#include "vek0host/commandline.h"
#include "vek0host/editdrawing.h"
#include "vek0host/editsteps.h"
#include "vek0host/inputfault.h"
#include "vek0host/paths.h"
#include "vek0host/saving.h"

namespace vek0::tool {
namespace {

struct EditCommand {
  BatchOptions batch;
  std::string out;
  std::map<std::string, std::vector<std::string>> values;  // by option, in order
  std::vector<std::string> scripts;                        // paths, in order
  std::map<std::string, std::vector<NamedStep>> commands;  // of the scripts, by path
  bool inPlace = false;
  EditOptions edit;
  SaveOptions save;
};

// Returns an error message, or an empty text.
std::string readScriptFile(const std::string& path, std::vector<NamedStep>& steps) {
  const InputFault fault = inputFault(path);
  if (fault.kind) return path + ": " + fault.message;
  std::ifstream file;
  if (path != "-") file.open(toPath(path), std::ios::binary);
  std::ostringstream script;
  script << (path == "-" ? std::cin : file).rdbuf();
  steps.clear();
  return readScript(script.str(), path, steps);
}

// Determines the steps in command-line order, which the parser does not keep for their values.
std::vector<NamedStep> stepsInOrder(const CLI::App& verb, const EditCommand& options) {
  std::vector<NamedStep> steps;
  std::map<std::string, std::size_t> taken;
  for (const CLI::Option* option : verb.parse_order()) {
    const std::string name = option->get_name();
    const auto& kinds = stepKinds();
    if (name == "--script") {
      const auto& commands = options.commands.at(options.scripts[taken[name]++]);
      steps.insert(steps.end(), commands.begin(), commands.end());
    }
    const auto kind = std::find_if(kinds.begin(), kinds.end(),
                                   [&](const StepKind& each) { return each.option == name; });
    if (kind == kinds.end()) continue;
    const std::string value = kind->value ? options.values.at(name)[taken[name]++] : std::string();
    steps.push_back({kind->value ? name + " " + value : name, {}});
    kind->read(value, steps.back().work);
  }
  return steps;
}

constexpr const char* kStepGroup = "Steps, performed in the given order";

void addStepOptions(CLI::App& verb, EditCommand& options) {
  for (const StepKind& kind : stepKinds()) {
    CLI::Option* option = nullptr;
    if (kind.value == nullptr) {
      // "--delete=no" must not delete.
      option = verb.add_flag(kind.option, kind.help)->disable_flag_override();
    } else {
      const auto check = [read = kind.read](const std::string& text) {
        EditStep ignored;
        return read(text, ignored);
      };
      option = verb.add_option(kind.option, options.values[kind.option], kind.help)
                   ->allow_extra_args(false)
                   ->check(check)
                   ->type_name(kind.value);
    }
    option->group(kStepGroup);
  }
  verb.add_option("--script", options.scripts,
                  "Take the commands of a file, one per line: 'line 0,0 @10<45', 'select "
                  "layer=WALL', 'trim 3,0', 'undo'; --commands lists them")
      ->allow_extra_args(false)
      ->check([&commands = options.commands](const std::string& path) {
        return readScriptFile(path, commands[path]);
      })
      ->type_name("FILE")
      ->group(kStepGroup);
}

void addCommandList(CLI::App& verb) {
  const auto list = [] {
    print(
        "Commands of scripts. P is a point: 10,5 or 10,5,2; @3,4 from the last point; 10<45 by\n"
        "distance and angle, @10<45 from the last point. Quote words that contain blanks.\n\n" +
        commandHelp());
    throw CLI::Success();
  };
  verb.add_flag_callback("--commands", list, "List the commands of scripts and exit");
}

void addOutputOptions(CLI::App& verb, EditCommand& options) {
  verb.add_option("-o,--output", options.out, "File to write; - is the standard output");
  CLI::Option* inPlace = verb.add_flag("-i,--in-place", options.inPlace, "Replace IN");
  addBatchOutputOptions(verb, options.batch);
  verb.add_flag("--backup", options.save.backup, "Copy the replaced file to IN.bak")
      ->needs(inPlace);
}

void edit(EditCommand& options, const std::vector<NamedStep>& steps, Session& session) {
  if (options.save.repair && options.save.form != SaveForm::Kept)
    return session.fail(kWrongUsage, "--repair requires --to keep");
  options.save.force = options.save.force || options.inPlace;
  runBatch(editJobsOf(options.batch, options.out, options.inPlace, session), options.batch, session,
           [&](const BatchJob& job) {
             rewrite(job.in, job.out, options.save, session, [&](CData& data, const ReadResult&) {
               return editDrawing(data, steps, options.edit, session);
             });
           });
}

}  // namespace

void addEditCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<EditCommand>();
  CLI::App* verb = app.add_subcommand("edit", "Edit a drawing step by step");
  verb->add_option("IN", options->batch.files, "DXF files; - is the standard input");
  addOutputOptions(*verb, *options);
  verb->add_flag("--undo-check", options->edit.undoCheck,
                 "Undo all steps, verify that this restores the drawing, and redo them");
  verb->add_flag("--undo-all", options->edit.undoAll, "Undo all steps before writing");
  verb->add_flag("--repair", options->save.repair,
                 "Also declare undeclared names, replace repeated handles, remove pointers to "
                 "nothing, and end a cut file");
  verb->add_flag("--leave-unsupported", options->edit.leaveUnsupported,
                 "Leave entities that cannot be moved, rotated, scaled or exploded, such as "
                 "3DSOLID and IMAGE, where they are; otherwise such a step fails");
  addSaveOptions(*verb, options->save);
  addTargetOption(*verb, options->save);
  addStepOptions(*verb, *options);
  addCommandList(*verb);
  verb->footer(
      "Examples:\n"
      "  vek0 edit plan.dxf -o moved.dxf --move 1000,0\n"
      "  vek0 edit -i --backup plan.dxf --select layer=OLD --delete\n"
      "  vek0 edit plan.dxf -o out.dxf --select 'layer=WALL*,kind=line,arc' --join 0.01 \\\n"
      "      --offset 12.5 --set-layer PLASTER --select window=0,0,500,300 --rotate 90@250,150\n"
      "  vek0 edit plan.dxf -o out.dxf --remap-layer '0-*=OLD' --remap-style 'TXT=STANDARD' "
      "--purge\n\n"
      "Steps apply to all of model space until the first --select; each --select starts a new\n"
      "selection. The entities that --explode, --join and --offset create are selected for\n"
      "the steps that follow. Names may contain * and ?; quote those that contain commas or\n"
      "equals signs: 'layer=\"A,B\"'. Nothing is written if a step fails.\n\n"
      "Whatever is not edited stays as it is in the file, byte for byte; --to writes the\n"
      "drawing anew instead. Without steps, the output is a copy.");
  verb->callback(
      [options, verb, &session] { edit(*options, stepsInOrder(*verb, *options), session); });
}

}  // namespace vek0::tool
