#include "vek0host/editsteps.h"

#include "vek0host/layerchoice.h"

namespace vek0::host {

const std::vector<StepKind>& stepKinds() {
  static const std::vector<StepKind> kinds = {
      {"--select", "WHAT",
       "What the next steps work on: layer=NAMES,kind=KINDS,window=X1,Y1,X2,Y2, or all",
       readSelect},
      {"--move", "DX,DY[,DZ]", "Move", readMove},
      {"--rotate", "DEG@X,Y", "Turn counter-clockwise about a point", readRotate},
      {"--scale", "F@X,Y", "Scale about a point", readScale},
      {"--explode", nullptr, "Take polylines, inserts and hatches apart, by one level",
       readExplode},
      {"--join", "TOL[,across]",
       "Join lines, arcs and polylines of a layer whose ends are at most TOL apart; or auto. "
       "With across those of all layers that are shown",
       readJoin},
      {"--offset", "D[,CORNERS]",
       "Add parallels: right of open curves, outside of closed ones; D < 0 the other side. "
       "CORNERS: round, mitre or bevel",
       readOffset},
      {"--set-layer", "NAME", "Put on a layer, made if there is none", readSetLayer},
      {"--set-color", "COLOR", "Give a color: 1 to 255, red and so on, bylayer, byblock",
       readSetColor},
      {"--set-linetype", "NAME", "Give a linetype of the drawing, bylayer or byblock",
       readSetLtype},
      {"--delete", nullptr, "Delete", readDelete},
      {"--remap-layer", "OLD=NEW",
       "In the whole drawing, blocks too, put NEW (made if there is none) in the place of OLD",
       readRemapLayer},
      {"--remap-linetype", "OLD=NEW", "The same for linetypes", readRemapLtype},
      {"--remap-style", "OLD=NEW", "The same for text styles", readRemapStyle},
      {"--purge", nullptr, "Remove the blocks, layers, linetypes and text styles that nothing uses",
       readPurge},
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

CLayer* needLayer(Editing& editing, const zim::WString& name, const CLayer* model) {
  CData& data = editing.data;
  if (CLayer* layer = getLayer(data, name)) return layer;
  zim::WString xref, item;
  if (scomposeName(name, xref, item) || isPattern(name)) return nullptr;
  CLtype* ltype = model != nullptr ? model->getLtype() : &data.getLtypeContinuous();
  CLayer* layer = data.getLayerFactory().create(name, ltype, model ? model->getColor() : short{7},
                                                model ? model->getFlags() : 0);
  if (layer == nullptr) return nullptr;
  if (model != nullptr) layer->setLineWidth(model->getLineWidth());
  if (editing.undo.add(layer)) return layer;
  delete layer;
  return nullptr;
}

}  // namespace vek0::host
