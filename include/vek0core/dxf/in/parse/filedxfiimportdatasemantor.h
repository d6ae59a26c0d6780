#pragma once

#include <cstddef>
#include <unordered_map>

#include "vek0core/dxf/in/parse/filedxfidatasemantor.h"

/// Importing: adds the file's content to a drawing. The drawing's variables, layer "0", "STANDARD"
/// and definitions of equal names are kept; entities get new handles.
///
/// Anonymous blocks ("*D3": dimensions, hatches, arrays) are private to their file. Equal names are
/// accidental there, so each gets a free name in the drawing, and the file's inserts are updated.
class VEK0_API CFileDXFIImportDataSemantor : public IFileDXFIDataSemantor {
 public:
  using IFileDXFIDataSemantor::IFileDXFIDataSemantor;

  void transition() override;
  bool shouldReadHeaders() override { return false; }
  bool shouldRespectHandles() override { return false; }
  void createLayer0(CLtype*, short, long) override {}
  void createStyleStandard(const ICADFont*, double, double, double, double, long) override {}
  /// Keeps the drawing's block of that name; fills only a block that this import created for an
  /// insert.
  void createBlock(const zim::WString& name, const PNT_3D& base, long flags,
                   std::list<CEnt*>& entities) override;
  CBlock* createBlockHurried(const zim::WString& name, long flags) override;
  CBlock* findBlock(const zim::WString& name) override;

 private:
  struct Hash {
    std::size_t operator()(const zim::WString& name) const { return zim::hashIgnoreCase(name); }
  };
  struct Equal {
    bool operator()(const zim::WString& a, const zim::WString& b) const {
      return a.EqualsIgnoreCase(b);
    }
  };

  zim::WString freeName(const zim::WString& prefix);
  const zim::WString& ownName(const zim::WString& fileName);

  std::unordered_map<zim::WString, zim::WString, Hash, Equal> m_ownNames;  // file's -> ours
  std::unordered_map<zim::WString, long, Hash, Equal> m_lastNumbers;       // by prefix
};
