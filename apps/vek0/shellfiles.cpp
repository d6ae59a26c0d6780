// Files for shells and readers of manuals. They follow from the commands, so they cannot disagree
// with them.
#include "shellfiles.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "terminal.h"

namespace vek0::tool {
namespace {

std::vector<const CLI::App*> verbsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* verb) { return !verb->get_name().empty(); });
}

// Options of groups belong to the verb for its user.
std::vector<const CLI::Option*> optionsOf(const CLI::App& app) {
  std::vector<const CLI::Option*> options = app.get_options([](const CLI::Option* option) {
    return !option->get_positional() && option->nonpositional();
  });
  for (const CLI::App* group :
       app.get_subcommands([](const CLI::App* part) { return part->get_name().empty(); })) {
    const auto more = optionsOf(*group);
    options.insert(options.end(), more.begin(), more.end());
  }
  return options;
}

// "-o", "--output", "--no-xrefs".
std::vector<std::string> namesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

bool takesValue(const CLI::Option& option) { return option.get_expected_max() > 0; }

std::string joined(const std::vector<std::string>& words, const std::string& between) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
    text.replace(at, what.size(), by);
  return text;
}

// --- Manual page

std::string manualText(const std::string& text) {
  std::string escaped = replaced(replaced(text, "\\", "\\e"), "-", "\\-");
  // A dot or an apostrophe at the beginning of a line would be a command.
  escaped = replaced(replaced(escaped, "\n.", "\n\\&."), "\n'", "\n\\&'");
  return escaped.starts_with('.') || escaped.starts_with('\'') ? "\\&" + escaped : escaped;
}

void writeOptions(std::ostream& out, const CLI::App& app) {
  for (const CLI::Option* option : optionsOf(app)) {
    out << ".TP\n\\fB" << manualText(joined(namesOf(*option), ", ")) << "\\fR";
    if (takesValue(*option)) out << " \\fI" << manualText(option->get_type_name()) << "\\fR";
    out << "\n" << manualText(option->get_description()) << "\n";
  }
}

// --- Completion

// For single quotes of shells.
std::string quoted(const std::string& text) { return "'" + replaced(text, "'", "'\\''") + "'"; }

std::vector<std::string> allNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : optionsOf(app))
    for (const std::string& name : namesOf(*option)) names.push_back(name);
  return names;
}

std::vector<std::string> allNamesOf(const CLI::App& app, const CLI::App& verb) {
  std::vector<std::string> names = allNames(verb);
  for (const std::string& name : allNames(app))
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  return names;
}

std::string bashScript(const CLI::App& app) {
  std::ostringstream out;
  std::vector<std::string> verbs;
  for (const CLI::App* verb : verbsOf(app)) verbs.push_back(verb->get_name());
  out << "_vek0() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} options=\n"
         "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
         "    COMPREPLY=($(compgen -W "
      << quoted(joined(verbs, " ") + " " + joined(allNames(app), " "))
      << " -- \"$word\"))\n"
         "    return\n"
         "  fi\n"
         "  case ${COMP_WORDS[1]} in\n";
  for (const CLI::App* verb : verbsOf(app))
    out << "    " << verb->get_name() << ") options=" << quoted(joined(allNamesOf(app, *verb), " "))
        << " ;;\n";
  out << "  esac\n"
         "  case $word in\n"
         "    -*) COMPREPLY=($(compgen -W \"$options\" -- \"$word\")) ;;\n"
         "  esac\n"
         "}\n"
         "complete -o default -F _vek0 vek0\n";
  return out.str();
}

std::string zshScript(const CLI::App& app) {
  std::ostringstream out;
  const auto described = [](const std::string& name, const std::string& text) {
    const std::string safe = replaced(replaced(text, "[", "("), "]", ")");
    return quoted(name + "[" + replaced(safe, ":", "\\:") + "]");
  };
  const auto list = [&](const CLI::App& part) {
    for (const CLI::Option* option : optionsOf(part))
      for (const std::string& name : namesOf(*option))
        out << " \\\n        " << described(name, option->get_description())
            << (takesValue(*option) ? quoted(":" + option->get_type_name() + ":_files") : "");
  };
  out << "#compdef vek0\n\n_vek0() {\n  local -a verbs=(";
  for (const CLI::App* verb : verbsOf(app))
    out << "\n    " << quoted(verb->get_name() + ":" + verb->get_description());
  out << "\n  )\n  if (( CURRENT == 2 )); then\n    _describe command verbs\n    return\n  fi\n"
         "  case $words[2] in\n";
  for (const CLI::App* verb : verbsOf(app)) {
    out << "    " << verb->get_name() << ") _arguments";
    list(*verb);
    list(app);
    out << " \\\n        '*:file:_files' ;;\n";
  }
  out << "  esac\n}\n\n_vek0 \"$@\"\n";
  return out.str();
}

std::string fishScript(const CLI::App& app) {
  std::ostringstream out;
  const auto list = [&](const CLI::App& part, const std::string& condition) {
    for (const CLI::Option* option : optionsOf(part)) {
      out << "complete -c vek0" << condition;
      for (const std::string& name : option->get_snames()) out << " -s " << name;
      for (const std::string& name : option->get_lnames()) out << " -l " << name;
      out << (takesValue(*option) ? " -r" : "") << " -d " << quoted(option->get_description())
          << "\n";
    }
  };
  for (const CLI::App* verb : verbsOf(app)) {
    out << "complete -c vek0 -n __fish_use_subcommand -a " << verb->get_name() << " -d "
        << quoted(verb->get_description()) << "\n";
    list(*verb, " -n '__fish_seen_subcommand_from " + verb->get_name() + "'");
  }
  list(app, "");
  return out.str();
}

}  // namespace

std::string tidyHelp(const std::string& help) {
  std::istringstream lines(replaced(help, "{false}", ""));
  std::string tidy;
  for (std::string line; std::getline(lines, line);)
    if (line.find("[Option Group: ") == std::string::npos) tidy += line + "\n";
  return tidy;
}

std::string manualPage(const CLI::App& app) {
  std::ostringstream out;
  out << ".TH VEK0 1 \"\" \"vek0 " VEK0_VERSION "\" \"User Commands\"\n"
      << ".ad l\n.SH NAME\nvek0 \\- read, describe, draw, edit, merge and write DXF drawings\n"
      << ".SH SYNOPSIS\n.B vek0\n\\fICOMMAND\\fR [\\fIOPTION\\fR...] [\\fIFILE\\fR...]\n"
      << ".SH OPTIONS OF ALL COMMANDS\n";
  writeOptions(out, app);
  out << ".SH COMMANDS\n";
  for (const CLI::App* verb : verbsOf(app)) {
    out << ".SS vek0 " << verb->get_name() << "\n" << manualText(verb->get_description()) << "\n";
    writeOptions(out, *verb);
    out << ".PP\n.nf\n" << manualText(verb->get_footer()) << "\n.fi\n";
  }
  out << ".SH EXIT STATUS\n" << manualText(app.get_footer()) << "\n";
  return out.str();
}

std::string completionScript(const CLI::App& app, const std::string& shell) {
  if (shell == "bash") return bashScript(app);
  return shell == "zsh" ? zshScript(app) : fishScript(app);
}

void addShellCommands(CLI::App& app) {
  CLI::App* man = app.add_subcommand("man", "Print the manual page, for man");
  man->footer("Examples:\n  vek0 man > vek0.1 && man ./vek0.1");
  man->callback([&app] { print(manualPage(app)); });
  CLI::App* completion =
      app.add_subcommand("completion", "Print a script that completes commands and options");
  completion->add_option("SHELL", "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
  completion->footer(
      "Examples:\n"
      "  vek0 completion bash > ~/.local/share/bash-completion/completions/vek0\n"
      "  vek0 completion fish > ~/.config/fish/completions/vek0.fish");
  completion->callback([&app, completion] {
    print(completionScript(app, completion->get_option("SHELL")->as<std::string>()));
  });
}

}  // namespace vek0::tool
