#include "vek0host/editsteps.h"

#include "vek0host/layerchoice.h"
#include "vek0host/textvalues.h"

namespace vek0::host {

const std::vector<StepKind>& stepKinds() {
  static const std::vector<StepKind> kinds = {
      {"--select", "WHAT",
       "Select what the next steps apply to: 'kind=LINE,ARC layer=WALL* color=1..7 !handle=1F', "
       "also "
       "text, block, linetype, window=X1,Y1,X2,Y2 and crossing; or all",
       readSelect},
      {"--move", "DX,DY[,DZ]", "Move", readMove},
      {"--copy", "DX,DY[,DZ]", "Copy to there, and select the copies", readCopy},
      {"--rotate", "DEG@X,Y", "Rotate counter-clockwise about a point", readRotate},
      {"--mirror", "X1,Y1,X2,Y2",
       "Mirror at the line through two points; texts stay readable. --copy 0,0 before it keeps "
       "the originals",
       readMirror},
      {"--scale", "F@X,Y", "Scale about a point", readScale},
      {"--explode", nullptr, "Explode polylines, inserts and hatches by one level", readExplode},
      {"--join", "TOL[,across]",
       "Join lines, arcs and polylines of the same layer whose ends are at most TOL apart; auto "
       "chooses TOL. With across, also those of different visible layers",
       readJoin},
      {"--heal", "TOL[,across][,hidden]",
       "Remove duplicates and overlaps of lines, arcs, circles and polylines, close gaps of at "
       "most "
       "TOL, and join what meets, layer by layer; with across, all layers together; with hidden, "
       "also on layers that are off or frozen",
       readHeal},
      {"--offset", "D[,CORNERS]",
       "Add parallels: to the right of open curves, outside closed ones; D < 0: on the other side. "
       "CORNERS: round, mitre or bevel",
       readOffset},
      {"--set-layer", "NAME", "Set the layer, which is created if it does not exist", readSetLayer},
      {"--set-color", "COLOR", "Set the color: 1 to 255, a name such as red, bylayer or byblock",
       readSetColor},
      {"--set-linetype", "NAME", "Set the linetype: one of the drawing's, bylayer or byblock",
       readSetLtype},
      {"--set-text", "TEXT", "Set the string of texts and attributes", readSetText},
      {"--replace", "s/OLD/NEW/FLAGS",
       "Replace matches of a regular expression (ECMAScript) in texts and attributes; the flag g "
       "replaces all of them, i ignores case",
       readReplace},
      {"--delete", nullptr, "Delete", readDelete},
      {"--remap-layer", "OLD=NEW",
       "Replace layer OLD by NEW in the whole drawing, including blocks; NEW is created if it does "
       "not exist",
       readRemapLayer},
      {"--remap-linetype", "OLD=NEW", "The same for linetypes", readRemapLtype},
      {"--remap-style", "OLD=NEW", "The same for text styles", readRemapStyle},
      {"--purge", nullptr, "Remove unused blocks, layers, linetypes and text styles", readPurge},
  };
  return kinds;
}

std::string counted(std::size_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

EditStep onChosen(EditStep work) {
  return [work = std::move(work)](Editing& editing) {
    return editing.chosen.empty() ? StepOutcome::failed("nothing is selected") : work(editing);
  };
}

bool addEnt(Editing& editing, std::unique_ptr<CEnt> made, std::vector<CEnt*>& chosen) {
  CEnt* ent = made.get();
  if (!ent || !editing.undo.add(ent)) return false;
  static_cast<void>(made.release());
  chosen.push_back(ent);
  return true;
}

namespace {

// The entity itself, or the first in the block that it shows; null if there is none.
const CEnt* findUnsupported(const CEnt& ent, bool withContents) {
  if (ent.getRecord() == EntRecord::Opaque) return &ent;
  const CEntInsertBase* insert = withContents ? ent.getEntInsert() : nullptr;
  const CBlock* block = insert ? insert->getBlock() : nullptr;
  for (unsigned i = 0; block && i < block->size(); ++i)
    if ((*block)[i]->getRecord() == EntRecord::Opaque) return (*block)[i];
  return nullptr;
}

}  // namespace

std::string leaveUnsupported(const Editing& editing, bool withContents, const char* done,
                             std::vector<CEnt*>& ents, std::string& left) {
  const CEnt* first = nullptr;
  const std::size_t count = std::erase_if(ents, [&](const CEnt* ent) {
    const CEnt* found = findUnsupported(*ent, withContents);
    if (!first) first = found;
    return found != nullptr;
  });
  if (count == 0) return {};
  if (!editing.leaveUnsupported)
    return opaqueKindOf(*first).toUtf8() + " " + hexText(first->GetHandle()) + " cannot be " +
           done + "; --leave-unsupported leaves it as it is";
  left = ", " + countedEntities(count) + " of unsupported kinds left";
  return {};
}

CLayer* needLayer(Editing& editing, const zim::WString& name, const CLayer* model) {
  CData& data = editing.data;
  if (CLayer* layer = getLayer(data, name)) return layer;
  zim::WString xref, item;
  if (scomposeName(name, xref, item) || isPattern(name)) return nullptr;
  CLtype* ltype = model != nullptr ? model->getLtype() : &data.getLtypeContinuous();
  CLayer* layer = data.getLayerFactory().create(name, ltype, model ? model->getColor() : short{7},
                                                model ? model->getFlags() : 0);
  if (layer == nullptr) return nullptr;
  if (model != nullptr) layer->copyExtras(*model);
  if (editing.undo.add(layer)) return layer;
  delete layer;
  return nullptr;
}

}  // namespace vek0::host
