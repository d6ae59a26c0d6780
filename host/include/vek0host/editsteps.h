#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vek0host/editing.h"

namespace vek0::host {

/// One kind of step on the command line. `read` creates the step from the option's value and
/// returns an empty text, or an error message.
struct StepKind {
  const char* option;
  const char* value;  ///< name of the value in the help; null for a step without a value
  const char* help;
  std::string (*read)(const std::string& text, EditStep& step);
};

/// All kinds, in help order.
const std::vector<StepKind>& stepKinds();

// --- The readers of the kinds, see `StepKind::read`

/// "all", or "layer=A,B*,kind=line,arc,window=x1,y1,x2,y2" with any of the three. A value without a
/// keyword continues the previous list; quotes allow commas and equals signs in a name.
std::string readSelect(const std::string& text, EditStep& step);

std::string readMove(const std::string& text, EditStep& step);  ///< "dx,dy" or "dx,dy,dz"
/// As `readMove`; the copies are selected then.
std::string readCopy(const std::string& text, EditStep& step);
std::string readRotate(const std::string& text, EditStep& step);  ///< "degrees@x,y"
std::string readMirror(const std::string& text, EditStep& step);  ///< "x1,y1,x2,y2"
std::string readScale(const std::string& text, EditStep& step);   ///< "factor@x,y"
std::string readDelete(const std::string& text, EditStep& step);  ///< without a value

std::string readExplode(const std::string& text, EditStep& step);  ///< without a value
std::string readJoin(const std::string& text, EditStep& step);     ///< a tolerance, or "auto"
/// A tolerance, optionally followed by ",across" and ",hidden".
std::string readHeal(const std::string& text, EditStep& step);
/// A distance, optionally followed by ",round", ",mitre" or ",bevel" for the corners.
std::string readOffset(const std::string& text, EditStep& step);

std::string readSetLayer(const std::string& text, EditStep& step);  ///< a name
/// A number from 0 to 256 or a color's name, BYLAYER and BYBLOCK among them.
std::string readSetColor(const std::string& text, EditStep& step);
std::string readSetLtype(const std::string& text, EditStep& step);  ///< a name

std::string readSetText(const std::string& text, EditStep& step);  ///< the text
/// "s/old/new/flags" with an ECMAScript expression; the flags are g and i.
std::string readReplace(const std::string& text, EditStep& step);

std::string readRemapLayer(const std::string& text, EditStep& step);  ///< "OLD=NEW"
std::string readRemapLtype(const std::string& text, EditStep& step);  ///< "OLD=NEW"
std::string readRemapStyle(const std::string& text, EditStep& step);  ///< "OLD=NEW"

std::string readPurge(const std::string& text, EditStep& step);  ///< without a value

// --- The same steps from values; they apply to what is selected

EditStep moveStep(const PNT_3D& delta);
EditStep copyStep(const PNT_3D& delta);  ///< the copies are selected then
EditStep rotateStep(const PNT_3D& center, double degrees);
EditStep mirrorStep(const PNT_3D& from, const PNT_3D& to);  ///< fails for equal points
EditStep scaleStep(const PNT_3D& center, double factor);    ///< fails for a factor of 0
/// Moves the grips at a point, see `moveGrip`; fails if there are none.
EditStep stretchStep(const PNT_3D& from, const PNT_3D& to);

// --- Shared helpers

/// Adds a new entity to model space and to what is selected next. False when out of memory, which
/// null stands for.
bool addEnt(Editing& editing, std::unique_ptr<CEnt> made, std::vector<CEnt*>& chosen);

/// Wraps the step `work` so that it fails if nothing is selected.
EditStep onChosen(EditStep work);

/// Removes from `ents` the entities that cannot be transformed: those of unsupported kinds, and, if
/// `withContents`, inserts of blocks that hold some. Sets `left` to what to add to the outcome. If
/// these may not be left, returns why, with what cannot be `done`.
std::string leaveUnsupported(const Editing& editing, bool withContents, const char* done,
                             std::vector<CEnt*>& ents, std::string& left);

/// The layer of that name, created if necessary, like `model`, or with color 7 if that is null.
/// Null when out of memory, for a pattern, and for a nonexistent layer of an external reference:
/// only the reference could define it.
CLayer* needLayer(Editing& editing, const zim::WString& name, const CLayer* model);

}  // namespace vek0::host
