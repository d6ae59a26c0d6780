// Steps that change what texts and attributes say.
#include <regex>
#include <utility>

#include "vek0host/editsteps.h"
#include "vek0host/entitylist.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

// The new text for an old one; nothing leaves it.
using Rewording = std::function<std::optional<std::string>(const std::string& text)>;

bool isText(const CEnt& ent) {
  return ent.getType() == CEntText::kType || ent.getType() == CEntAttrib::kType;
}

bool reword(CEntText& ent, const Rewording& change) {
  TEXT_3D text = ent.getText();
  CTextContext context = text.getContext();
  const std::string old = context.getString().toUtf8();
  const std::optional<std::string> changed = change(old);
  if (!changed || *changed == old) return false;
  context.setString(zim::WString::fromUtf8(*changed));
  text.setContext(context);
  ent.setText(text);
  return true;
}

// The texts of an entity: itself, or the attributes of an insert.
std::vector<CEntText*> textsOf(CEnt& ent) {
  if (isText(ent)) return {static_cast<CEntText*>(&ent)};
  std::vector<CEntText*> texts;
  CEntInsertBase* insert = ent.getEntInsert();
  const bool isRecord = insert && insert->getBlock() && insert->getBlock()->isOfRecord();
  for (unsigned i = 0; insert && !isRecord && i < insert->GetNoAttribs(); ++i)
    texts.push_back(insert->GetAttrib(i));
  return texts;
}

EditStep rewordStep(Rewording change) {
  return onChosen([change = std::move(change)](Editing& editing) {
    std::size_t changed = 0, records = 0;
    for (CEnt* ent : editing.chosen) {
      const std::vector<CEntText*> texts = textsOf(*ent);
      records += texts.empty() && textOf(*ent) ? 1 : 0;
      if (texts.empty()) continue;
      if (!editing.undo.keep(*ent)) return StepOutcome::noMemory();
      for (CEntText* text : texts) changed += reword(*text, change) ? 1 : 0;
    }
    if (records > 0 && !editing.leaveUnsupported)
      return StepOutcome::failed(
          "formatted texts cannot be reworded yet: " + countedEntities(records) +
          "; --leave-unsupported leaves them as they are");
    editing.data.getEntTable().invalidateBdry();
    return StepOutcome::done(counted(changed, "text", "texts") + " changed");
  });
}

// "s/old/new/flags" in parts; nothing for another form. Any character may take the place of "/";
// after a backslash it stands for itself.
std::optional<std::vector<std::string>> partsOf(const std::string& text) {
  if (text.size() < 4 || text[0] != 's') return std::nullopt;
  const char mark = text[1];
  std::vector<std::string> parts(1);
  for (std::size_t i = 2; i < text.size(); ++i) {
    const bool isEscaped = text[i] == '\\' && i + 1 < text.size();
    if (isEscaped && text[i + 1] == mark)
      parts.back() += text[++i];
    else if (text[i] == mark)
      parts.emplace_back();
    else
      parts.back() += text[i];
  }
  if (parts.size() != 3) return std::nullopt;
  return parts;
}

}  // namespace

std::string readSetText(const std::string& text, EditStep& step) {
  step = rewordStep([text](const std::string&) { return text; });
  return {};
}

std::string readReplace(const std::string& text, EditStep& step) {
  const auto parts = partsOf(text);
  if (!parts || (*parts)[0].empty()) return "'" + text + "' is not a replacement like s/old/new/";
  auto flags = std::regex::ECMAScript;
  auto matches = std::regex_constants::format_first_only;
  for (const char flag : (*parts)[2]) {
    if (flag != 'g' && flag != 'i')
      return "'" + text + "' has a flag other than g, all matches, and i, ignoring case";
    if (flag == 'i') flags |= std::regex::icase;
    if (flag == 'g') matches = std::regex_constants::format_default;
  }
  try {
    const std::regex expression((*parts)[0], flags);
    step = rewordStep([expression, matches,
                       with = (*parts)[1]](const std::string& old) -> std::optional<std::string> {
      // Matching takes stack in proportion to the text.
      constexpr std::size_t longest = 4096;
      if (old.size() > longest) return std::nullopt;
      return std::regex_replace(old, expression, with, matches);
    });
  } catch (const std::regex_error& problem) {
    return "'" + (*parts)[0] + "' is not a regular expression: " + problem.what();
  }
  return {};
}

}  // namespace vek0::host
