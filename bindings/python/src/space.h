#pragma once

#include "drawing.h"
#include "values.h"

namespace vek0::python {

/// Model space, a layout or a block, by its name: valid while there is one of that name.
class Space {
 public:
  enum class Sort { Model, Layout, Block };

  Space(std::shared_ptr<Drawing> drawing, Sort sort, std::string name)
      : m_drawing(std::move(drawing)), m_sort(sort), m_name(std::move(name)) {}

  Drawing& drawing() const { return *m_drawing; }
  const std::shared_ptr<Drawing>& shared() const { return m_drawing; }
  const std::string& name() const { return m_name; }
  bool isModel() const { return m_sort == Sort::Model; }
  /// Null for model space. Throws `Fault` if there is none of that name any more.
  CBlock* block() const;
  std::size_t size() const;
  /// In drawing order.
  std::vector<CEnt*> entities() const;
  RECT_3D bounds() const;
  /// Adds what was made, which belongs to the caller until then.
  CEnt& add(std::unique_ptr<CEnt> ent) const;

  bool operator==(const Space& other) const {
    return m_drawing == other.m_drawing && m_sort == other.m_sort && m_name == other.m_name;
  }

 private:
  std::shared_ptr<Drawing> m_drawing;
  Sort m_sort;
  std::string m_name;
};

using SpaceClass = py::class_<Space>;

/// Properties of new entities: those of `doc` where none are given.
struct Looks {
  CLayer* layer;
  CLtype* ltype;
  short color;

  Looks(Drawing& drawing, const std::optional<std::string>& layer, std::optional<int> color);
};

void bindSpace(SpaceClass& type);
void bindAdding(SpaceClass& type);      ///< one entity at a time
void bindReading(SpaceClass& type);     ///< arrays of coordinates
void bindBulkAdding(SpaceClass& type);  ///< entities from arrays
/// Properties and iteration that are fast in loops; call it after everything else is bound.
void bindQuickReading(py::class_<EntityRef, Entity>& entity, SpaceClass& space);
/// Raises the error of Python for what the module throws.
void raiseAsPython(std::exception_ptr thrown);
void bindTables(py::module_& module);  ///< layers, linetypes, styles, blocks and layouts

}  // namespace vek0::python
