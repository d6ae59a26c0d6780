#pragma once

#include <string>
#include <vector>

#include "editing.h"

namespace vek0::tool {

/// One kind of step as it stands on the command line. `read` makes the step out of the text
/// behind the option and answers an empty text, or what is wrong with it.
struct StepKind {
  const char* option;
  const char* value;  ///< how the help names what follows; null for a step without a value
  const char* help;
  std::string (*read)(const std::string& text, EditStep& step);
};

/// All kinds, in the order of the help.
const std::vector<StepKind>& stepKinds();

// --- The readers of the kinds, see `StepKind::read`

/// "all", or "layer=A,B*,kind=line,arc,window=x1,y1,x2,y2" with any of the three. A value
/// without a word before it goes on with the list before; quotes take commas and signs of
/// equality into a name.
std::string readSelect(const std::string& text, EditStep& step);

std::string readMove(const std::string& text, EditStep& step);    ///< "dx,dy" or "dx,dy,dz"
std::string readRotate(const std::string& text, EditStep& step);  ///< "degrees@x,y"
std::string readScale(const std::string& text, EditStep& step);   ///< "factor@x,y"
std::string readDelete(const std::string& text, EditStep& step);  ///< without a value

std::string readExplode(const std::string& text, EditStep& step);  ///< without a value
std::string readJoin(const std::string& text, EditStep& step);     ///< a tolerance, or "auto"
/// A distance, with ",round", ",mitre" or ",bevel" behind it for the corners.
std::string readOffset(const std::string& text, EditStep& step);

std::string readSetLayer(const std::string& text, EditStep& step);  ///< a name
/// A number from 0 to 256 or a color's name, BYLAYER and BYBLOCK among them.
std::string readSetColor(const std::string& text, EditStep& step);
std::string readSetLtype(const std::string& text, EditStep& step);  ///< a name

std::string readRemapLayer(const std::string& text, EditStep& step);  ///< "OLD=NEW"
std::string readRemapLtype(const std::string& text, EditStep& step);  ///< likewise
std::string readRemapStyle(const std::string& text, EditStep& step);  ///< likewise

std::string readPurge(const std::string& text, EditStep& step);  ///< without a value

// --- What several of them need

/// The step `work`, but failing when nothing is chosen.
EditStep onChosen(EditStep work);

/// The layer of that name; a new one like `model`, or of color 7 when that is null, when
/// there is none. Null without memory, for a pattern, and for a layer of an external
/// reference that does not exist: only the reference could make it.
CLayer* needLayer(Editing& editing, const zim::WString& name, const CLayer* model);

}  // namespace vek0::tool
