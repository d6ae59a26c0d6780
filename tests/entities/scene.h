#pragma once

#include "support/test.h"

namespace vek0::test {

/// Handle manager that records its calls; `manages` is its answer to whether it manages handles.
class RecordingGestor : public CHandleGestorFoo {
 public:
  explicit RecordingGestor(bool manages = false) : m_manages(manages) {}
  void reserve(const IHandleEnt* ent) override { reserved.push_back(ent->GetHandle()); }
  void release(vek0::Handle handle) override { released.push_back(handle); }
  bool handling() const override { return m_manages; }

  std::vector<vek0::Handle> reserved;
  std::vector<vek0::Handle> released;

 private:
  bool m_manages;
};

/// A new drawing with shortcuts for tests of entities.
struct Scene {
  Scene() : data(CDataFactory().createData()) {}
  ~Scene() { deleteData(data); }
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  CLayer* layer() { return &data->getLayer0(); }
  CLtype* ltype() { return &data->getLtypeContinuous(); }

  CEntLine* line(double x1, double y1, double x2, double y2, vek0::Handle handle = 0) {
    return factory.createEntLine(gestor, layer(), ltype(), 7, LINE_3D(x1, y1, 0, x2, y2, 0),
                                 handle);
  }

  CData* data;
  RecordingGestor gestor;
  CEntFactory factory;
};

/// Parses points written as "x,y x,y ..." or "x,y,z ...".
inline std::vector<PNT_3D> pts(const std::string& text) {
  std::vector<PNT_3D> points;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    std::istringstream numbers(word);
    double xyz[3] = {0, 0, 0};
    char comma;
    for (double& number : xyz) {
      if (!(numbers >> number)) break;
      numbers >> comma;
    }
    points.emplace_back(xyz[0], xyz[1], xyz[2]);
  }
  return points;
}

}  // namespace vek0::test

/// Output of values in failed expectations, found by argument-dependent lookup.
inline std::ostream& operator<<(std::ostream& out, const PNT_3D& p) {
  return out << '(' << p.x << ", " << p.y << ", " << p.z << ')';
}
inline std::ostream& operator<<(std::ostream& out, const RECT_3D& r) {
  return out << '[' << r.min << ", " << r.max << ']';
}
