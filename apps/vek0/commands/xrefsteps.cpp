#include "xrefsteps.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "options.h"
#include "vek0core/geometry/angle.h"
#include "vek0host/layerchoice.h"
#include "vek0host/paths.h"
#include "vek0host/references.h"
#include "vek0host/saving.h"
#include "vek0host/summary.h"
#include "vek0host/textvalues.h"
#include "zim0lang/casefold.h"

namespace vek0::tool {
namespace {

// Options common to all of these verbs.
struct Options {
  std::string in, out;
  std::vector<std::string> names;  // patterns, or NAME=PATH changes for `repath`
  bool all = false;
  ReferenceOptions references;
  SaveOptions save;
};

struct RepathOptions : Options {
  std::string from, to;
};

struct AttachOptions : Options {
  std::string name, path, at = "0,0", base = "0,0", scale = "1", rotate = "0";
  bool overlay = false;
};

// An operation on the references of a loaded drawing; reports what it did, and returns whether to
// write the drawing.
class Work {
 public:
  Work(CData& data, const Options& options, Session& session)
      : m_data(data),
        m_undo(data, 0),  // nothing is undone
        m_reader(options.in, options.references, session),
        m_session(session) {}

  bool bind(const Options& options) {
    resolve("what is bound will lack or change");
    const auto chosen = choose(options);
    if (!chosen || (options.all && !isAllLoaded())) return false;
    for (const CBlockXRef* xref : *chosen) {
      if (xref->getStatus() != CBlockXRef::Status::loaded)
        return fail(toText(*xref) + " is " + nameOf(xref->getStatus()) + " and cannot be bound");
    }
    return edit(*chosen, "bound", bindXRefs);
  }

  // Resolved first, so that references shown only by these are removed with them.
  bool detach(const Options& options) {
    m_reader.resolve(m_data);
    const auto chosen = choose(options);
    return chosen && edit(*chosen, "detached", detachXRefs);
  }

  bool repath(const RepathOptions& options) {
    return options.names.empty() ? repathAll(options.from, options.to) : repathNamed(options.names);
  }

  bool attach(const AttachOptions& options) {
    const std::string stem = options.name.empty() ? stemOf(options.path) : options.name;
    const zim::WString name = zim::WString::fromUtf8(stem);
    CBlockXRef* xref = attachXRef(m_data, m_undo, name, zim::WString::fromUtf8(options.path),
                                  pointIn(options.base), options.overlay);
    if (xref == nullptr)
      return fail("'" + stem +
                  "' cannot be a reference's name here: it is taken, has a bar, "
                  "or begins with an asterisk");
    if (!insert(*xref, options)) return fail("there is not enough memory");
    if (m_reader.resolve(m_data, *xref)) say(toText(*xref) + ": attached");
    tellFailures();
    return true;
  }

 private:
  void say(const std::string& message, const std::string& details = "") const {
    m_session.warn(message, details);
  }
  bool fail(const std::string& message) {
    m_session.fail(kDrawingFailed, message);
    return false;
  }

  void tellFailures() const {
    if (m_reader.failures() > 0) say("not every reference is shown:", m_reader.failuresToText());
  }

  void resolve(const char* what) {
    m_reader.resolve(m_data);
    tellFailures();
    for (const auto& [name, report] : m_reader.readings()) {
      const std::string losses = lossesToText(report);
      if (!losses.empty()) say(name + ": " + what + ":", losses);
    }
  }

  bool isAllLoaded() {
    for (const CBlockXRef* xref : References(m_data).all) {
      if (xref->getStatus() != CBlockXRef::Status::loaded)
        return fail(toText(*xref) + " is " + nameOf(xref->getStatus()) +
                    "; name the references to bind, or mend its path first");
    }
    return true;
  }

  // The references of exactly that name; otherwise those that match it as a pattern.
  std::vector<CBlockXRef*> matching(const References& references, const std::string& name) const {
    const zim::WString wanted = zim::WString::fromUtf8(name);
    if (CBlockXRef* exact = m_data.getBlockXRefTable().get(wanted)) return {exact};
    std::vector<CBlockXRef*> found;
    for (CBlockXRef* xref : references.all)
      if (xref->getShows() == 0 && matchesPattern(xref->getName(), wanted)) found.push_back(xref);
    return found;
  }

  // Each once, and none of them nested: nested ones are added and removed with those that show
  // them.
  std::optional<std::vector<CBlockXRef*>> choose(const Options& options) {
    const References references(m_data);
    if (options.all) return matching(references, "*");
    std::vector<CBlockXRef*> chosen;
    std::unordered_set<const CBlockXRef*> seen;
    bool isGood = true;
    for (const std::string& name : options.names) {
      const std::vector<CBlockXRef*> found = matching(references, name);
      if (found.empty()) isGood = fail("there is no reference " + name);
      for (CBlockXRef* xref : found) {
        if (xref->getShows() > 0)
          isGood =
              fail(toText(*xref) + " is shown by another reference, and comes and goes with it");
        if (seen.insert(xref).second) chosen.push_back(xref);
      }
    }
    if (!isGood) return std::nullopt;
    return chosen;
  }

  using Edit = bool (*)(CData& data, CUndoStack& undo, const std::vector<CBlockXRef*>& xrefs);

  bool edit(const std::vector<CBlockXRef*>& chosen, const char* done, Edit work) {
    std::vector<std::string> names;
    for (const CBlockXRef* xref : chosen) names.push_back(toText(*xref));
    if (!work(m_data, m_undo, chosen)) return fail("there is not enough memory");
    for (const std::string& name : names) say(name + ": " + done);
    if (names.empty()) say("there is no reference");
    return true;
  }

  bool setPath(CBlockXRef& xref, const std::string& path) {
    const std::string before = toText(xref);
    if (!setXRefPath(m_undo, xref, zim::WString::fromUtf8(path)))
      return fail("there is not enough memory");
    say(before + ": now " + path);
    return true;
  }

  bool repathNamed(const std::vector<std::string>& changes) {
    for (const std::string& change : changes) {
      const auto sides = splitUnquoted(change, '=');
      const std::string name = unquoted((*sides)[0]);
      CBlockXRef* xref = m_data.getBlockXRefTable().get(zim::WString::fromUtf8(name));
      if (xref == nullptr) return fail("there is no reference " + name);
      if (!setPath(*xref, unquoted((*sides)[1]))) return false;
    }
    return true;
  }

  bool repathAll(const std::string& from, const std::string& to) {
    bool found = false;
    for (CBlockXRef* xref : References(m_data).all) {
      const std::u16string_view path = xref->getPath();
      const std::size_t length = zim::WString::fromUtf8(from).Length();
      if (!beginsWith(path, zim::WString::fromUtf8(from))) continue;
      found = true;
      if (!setPath(*xref, to + zim::WString(path.substr(length)).toUtf8())) return false;
    }
    return found || fail("no path begins with '" + from + "'");
  }

  // Compares paths like users do: either slash, ignoring case.
  static bool beginsWith(std::u16string_view path, std::u16string_view prefix) {
    const auto unit = [](zim::Char c) { return c == u'\\' ? u'/' : zim::foldCase(c); };
    return path.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), path.begin(),
                      [&](zim::Char a, zim::Char b) { return unit(a) == unit(b); });
  }

  static std::string stemOf(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    const std::u8string stem = toPath(path).stem().u8string();
    return std::string(stem.begin(), stem.end());
  }

  static PNT_3D pointIn(const std::string& text) {
    const std::vector<double> numbers = *numbersIn(text);
    return PNT_3D(numbers[0], numbers[1], numbers.size() > 2 ? numbers[2] : 0);
  }

  bool insert(CBlockXRef& xref, const AttachOptions& options) {
    const std::vector<double> scale = *numbersIn(options.scale);
    const double all = scale[0], sy = scale.size() > 1 ? scale[1] : all,
                 sz = scale.size() > 2 ? scale[2] : all;
    const double rotation = numbersIn(options.rotate)->front() * kRadiansPerDegree;
    std::unique_ptr<CEntInsertXRef> made(
        createEntInsertXRef(m_data, getCurLayer(m_data), getCurLtype(m_data), getCurColor(m_data),
                            xref, pointIn(options.at), all, sy, sz, rotation, 1, 1, 0, 0, 0));
    if (!made || !m_undo.add(made.get())) return false;
    made.release();
    return true;
  }

  CData& m_data;
  CUndoStack m_undo;
  ReferenceReader m_reader;
  Session& m_session;
};

// Creates a verb that reads IN, applies the operation and writes OUT. `misuse` returns an error in
// the combination of options, or nothing.
template <class Kind>
CLI::App* addStep(CLI::App& group, const char* name, const char* help,
                  const std::shared_ptr<Kind>& options, bool (Work::*work)(const Kind&),
                  std::string (*misuse)(const Kind&), Session& session) {
  CLI::App* verb = group.add_subcommand(name, help);
  verb->add_option("FILE", options->in, "DXF file; - is the standard input")->required();
  verb->add_option("-o,--output", options->out, "File to write; - is the standard output")
      ->required();
  addReferenceOptions(*verb, options->references);
  addSaveOptions(*verb, options->save);
  verb->callback([options, work, misuse, &session] {
    if (const std::string problem = misuse(*options); !problem.empty()) {
      session.complain(problem);
      return session.failed(kWrongUsage);
    }
    rewrite(options->in, options->out, options->save, session, [&](CData& data, const ReadResult&) {
      return (Work(data, *options, session).*work)(*options);
    });
  });
  return verb;
}

std::string namesOrAll(const Options& options) {
  if (options.names.empty() == options.all) return "";
  return options.all ? "--all leaves nothing to name" : "name the references, or say --all";
}

void addNames(CLI::App& verb, Options& options) {
  verb.add_option("NAME", options.names, "References; * stands for any text, ? for a character");
  verb.add_flag("--all", options.all, "All references");
}

void addBind(CLI::App& group, Session& session) {
  auto options = std::make_shared<Options>();
  CLI::App* verb = addStep<Options>(group, "bind", "Make what references show the drawing's own",
                                    options, &Work::bind, namesOrAll, session);
  addNames(*verb, *options);
  verb->footer(
      "Examples:\n"
      "  vek0 xrefs bind site.dxf --all -o whole.dxf\n"
      "  vek0 xrefs bind site.dxf HOUSE 'TREE*' --search /library -o out.dxf\n\n"
      "Each becomes a block of its name, its layers become NAME$0$LAYER, and so on. What it "
      "refers\n"
      "to itself is bound with it. Nothing is written when one cannot be bound.");
}

void addDetach(CLI::App& group, Session& session) {
  auto options = std::make_shared<Options>();
  CLI::App* verb =
      addStep<Options>(group, "detach", "Remove references, with their inserts and layers", options,
                       &Work::detach, namesOrAll, session);
  addNames(*verb, *options);
  verb->footer(
      "Examples:\n"
      "  vek0 xrefs detach site.dxf TREES -o bare.dxf\n\n"
      "What only they show goes with them, as far as their files are found.");
}

std::string pathsOrPrefix(const RepathOptions& options) {
  const bool byPrefix = !options.from.empty();
  if (options.names.empty() != byPrefix) return "give NAME=PATH, or --from and --to";
  for (const std::string& change : options.names) {
    const auto sides = splitUnquoted(change, '=');
    if (!sides || sides->size() != 2 || unquoted((*sides)[0]).empty())
      return "'" + change + "' is not NAME=PATH";
  }
  return "";
}

void addRepath(CLI::App& group, Session& session) {
  auto options = std::make_shared<RepathOptions>();
  CLI::App* verb = addStep<RepathOptions>(group, "repath", "Change where references lead", options,
                                          &Work::repath, pathsOrPrefix, session);
  verb->add_option("NAME=PATH", options->names, "New path of a reference");
  CLI::Option* from =
      verb->add_option("--from", options->from, "What paths begin with")->type_name("PREFIX");
  CLI::Option* to =
      verb->add_option("--to", options->to, "What they are to begin with")->type_name("PREFIX");
  from->needs(to);
  to->needs(from);
  verb->footer(
      "Examples:\n"
      "  vek0 xrefs repath site.dxf HOUSE=plans/house.dxf -o out.dxf\n"
      "  vek0 xrefs repath site.dxf --from 'C:\\Jobs\\' --to ../ -o out.dxf\n\n"
      "Beginnings are compared with either slash and in any letter case. The new paths are not\n"
      "looked at; vek0 xrefs check does that. A sign of equality in a name or path stands in "
      "quotes:\n'HOUSE=\"a=b.dxf\"'.");
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
                                          &Work::attach, attachMisuse, session);
  verb->add_option("--path", options->path, "Drawing to refer to, as seen from FILE")->required();
  verb->add_option("--name", options->name, "Name of the reference; the file's if not given");
  verb->add_option("--at", options->at, "Insertion point")
      ->type_name("X,Y[,Z]")
      ->check(areNumbers(2, 3, "a point like 100,50"));
  verb->add_option("--base", options->base,
                   "Point of the other drawing that comes to lie there; at 0,0 the one that it "
                   "states itself")
      ->type_name("X,Y[,Z]")
      ->check(areNumbers(2, 3, "a point like 100,50"));
  verb->add_option("--scale", options->scale, "Scale, for all axes or each")
      ->type_name("F|X,Y,Z")
      ->check(areNumbers(1, 3, "a scale like 2"));
  verb->add_option("--rotate", options->rotate, "Degrees, counter-clockwise")
      ->type_name("DEG")
      ->check(areNumbers(1, 1, "an angle like 30"));
  verb->add_flag("--overlay", options->overlay, "Not shown by drawings that refer to this one");
  verb->footer(
      "Examples:\n"
      "  vek0 xrefs attach site.dxf --path trees.dxf --name PARK --at 30,12 --rotate 15 -o "
      "out.dxf\n\n"
      "It is attached even when its file is not found; that is told.");
}

}  // namespace

void addXrefSteps(CLI::App& group, Session& session) {
  addAttach(group, session);
  addBind(group, session);
  addDetach(group, session);
  addRepath(group, session);
}

}  // namespace vek0::tool
