// The objects that every file has, those of the layouts and those of clipped inserts.
#include "dxf/out/modern/filesections.h"
#include "dxf/out/modern/fixedpairs.h"
#include "dxf/out/modern/layoutobjects.h"

namespace vek0::detail {
namespace {

// Two lines, half a unit to either side.
constexpr FixedPair kStandardMline[] = {{100, "AcDbMlineStyle"},
                                        {2, "Standard"},
                                        {70, "0"},
                                        {3, ""},
                                        {62, "256"},
                                        {51, "90.0"},
                                        {52, "90.0"},
                                        {71, "2"},
                                        {49, "0.5"},
                                        {62, "256"},
                                        {6, "BYLAYER"},
                                        {49, "-0.5"},
                                        {62, "256"},
                                        {6, "BYLAYER"}};

struct Member {
  std::string name;
  Handle handle;
};

class ObjectsWriter {
 public:
  ObjectsWriter(const FilePlan& plan, CFileDXFOWriter& out) : m_plan(plan), m_out(out) {}

  void write() {
    writeRoot();
    writeDictionary(FixedObject::GroupDictionary, {});
    writeLayoutDictionary();
    const Member standard{"Standard", m_plan.of(FixedObject::StandardMlineStyle)};
    writeDictionary(FixedObject::MlineStyleDictionary, {standard});
    writeDictionary(FixedObject::PlotSettingsDictionary, {});
    writePlotStyles();
    begin("MLINESTYLE", m_plan.of(FixedObject::StandardMlineStyle),
          m_plan.of(FixedObject::MlineStyleDictionary));
    writePairs(m_out, kStandardMline);
    for (std::size_t i = 0; i < m_plan.spaces.size(); ++i) writeLayout(m_plan, m_out, i);
    for (const SavedClip& saved : m_plan.clips) writeClip(saved);
  }
  void writeClip(const SavedClip& saved);

 private:
  void begin(const char* kind, Handle handle, Handle owner) {
    m_out.writeEncoded(0, kind);
    m_out.writeHex(5, handle);
    m_out.writeHex(330, owner);
  }
  void writeMembers(const std::vector<Member>& members, long code) {
    for (const Member& member : members) {
      m_out.writeEncoded(3, member.name);
      m_out.writeHex(code, member.handle);
    }
  }
  void writeDictionary(Handle handle, Handle owner, const std::vector<Member>& members,
                       bool isOwner = false) {
    begin("DICTIONARY", handle, owner);
    m_out.writeEncoded(100, "AcDbDictionary");
    if (isOwner) m_out.write(280, 1L);  // members are deleted with it
    m_out.write(281, 1L);               // of equal names, the first is kept
    writeMembers(members, isOwner ? 360 : 350);
  }
  void writeDictionary(FixedObject object, const std::vector<Member>& members) {
    writeDictionary(m_plan.of(object), m_plan.of(FixedObject::RootDictionary), members);
  }

  void writeRoot();
  void writeLayoutDictionary();
  void writePlotStyles();
  void writeMatrix();

  const FilePlan& m_plan;
  CFileDXFOWriter& m_out;
};

void ObjectsWriter::writeRoot() {
  const auto at = [this](FixedObject object) { return m_plan.of(object); };
  writeDictionary(at(FixedObject::RootDictionary), 0,
                  {{"ACAD_GROUP", at(FixedObject::GroupDictionary)},
                   {"ACAD_LAYOUT", at(FixedObject::LayoutDictionary)},
                   {"ACAD_MLINESTYLE", at(FixedObject::MlineStyleDictionary)},
                   {"ACAD_PLOTSETTINGS", at(FixedObject::PlotSettingsDictionary)},
                   {"ACAD_PLOTSTYLENAME", at(FixedObject::PlotStyleDictionary)}});
}

void ObjectsWriter::writeLayoutDictionary() {
  std::vector<Member> members;
  for (const SavedSpace& space : m_plan.spaces)
    members.push_back({m_plan.encoded(space.name), space.object});
  writeDictionary(FixedObject::LayoutDictionary, members);
}

void ObjectsWriter::writePlotStyles() {
  const Handle dictionary = m_plan.of(FixedObject::PlotStyleDictionary);
  const Handle normal = m_plan.of(FixedObject::NormalPlotStyle);
  begin("ACDBDICTIONARYWDFLT", dictionary, m_plan.of(FixedObject::RootDictionary));
  m_out.writeEncoded(100, "AcDbDictionary");
  m_out.write(281, 1L);
  writeMembers({{"Normal", normal}}, 350);
  m_out.writeEncoded(100, "AcDbDictionaryWithDefault");
  m_out.writeHex(340, normal);
  begin("ACDBPLACEHOLDER", normal, dictionary);
}

// The boundary is in the coordinates of the block, as if the insert had been clipped while it lay
// on the block: then both matrices are the identity.
void ObjectsWriter::writeClip(const SavedClip& saved) {
  writeDictionary(saved.dictionary, saved.insert, {{"ACAD_FILTER", saved.filters}}, true);
  writeDictionary(saved.filters, saved.dictionary, {{"SPATIAL", saved.filter}}, true);
  begin("SPATIAL_FILTER", saved.filter, saved.filters);
  m_out.writeEncoded(100, "AcDbFilter");
  m_out.writeEncoded(100, "AcDbSpatialFilter");
  m_out.write(70, static_cast<long>(saved.clip->boundary.size()));
  for (const PNT_2D& p : saved.clip->boundary)
    writePoint(m_out, 10, p.x - saved.base.x, p.y - saved.base.y);
  writePoint(m_out, 210, 0, 0, 1);
  writePoint(m_out, 11, 0, 0, 0);
  m_out.write(71, 1L);  // it applies
  m_out.write(72, 0L);  // no front plane
  m_out.write(73, 0L);  // no back plane
  writeMatrix();
  writeMatrix();
}

void ObjectsWriter::writeMatrix() {
  constexpr int columns = 4, numbers = 12;
  for (int i = 0; i < numbers; ++i) m_out.write(40, i % columns == i / columns ? 1.0 : 0.0);
}

}  // namespace

void writeEntry(FilePlan& plan, CFileDXFOWriter& out, const SavedClip& clip) {
  ObjectsWriter(plan, out).writeClip(clip);
}

void writeObjectsSection(const FilePlan& plan, CFileDXFOWriter& out) {
  beginSection(out, "OBJECTS");
  ObjectsWriter(plan, out).write();
  endSection(out);
}

}  // namespace vek0::detail
