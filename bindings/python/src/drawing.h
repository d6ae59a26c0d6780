#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "fault.h"
#include "vek0core/vek0core.h"
#include "vek0host/drawingfile.h"
#include "vek0host/editdrawing.h"
#include "vek0host/editing.h"

namespace vek0::python {

class Drawing;

/// What a Python object for an entity holds. It knows whether the entity is in the drawing, so that
/// it never reads what was deleted; undo makes it usable again.
class EntityRef : public std::enable_shared_from_this<EntityRef> {
 public:
  EntityRef(std::shared_ptr<Drawing> drawing, CEnt& ent);
  ~EntityRef();
  EntityRef(const EntityRef&) = delete;
  EntityRef& operator=(const EntityRef&) = delete;

  /// Throws `Fault` if the entity is not in the drawing, or the drawing is closed or in use.
  CEnt& get() const;
  Drawing& drawing() const { return *m_drawing; }
  const std::shared_ptr<Drawing>& shared() const { return m_drawing; }
  bool isAlive() const;
  Handle handle() const { return m_handle; }

 private:
  friend class Drawing;
  friend class EntityCursor;

  std::shared_ptr<Drawing> m_drawing;
  CEnt* m_ent;  // only valid while alive; the undo stack keeps it during an open step
  Handle m_handle;
  bool m_isAlive = true;
};

using Entity = std::shared_ptr<EntityRef>;

/// Steps over entities without an object for each. When the drawing is about to change, what is
/// left gets objects, which know whether their entities are still there.
class EntityCursor {
 public:
  EntityCursor(std::shared_ptr<Drawing> drawing, std::vector<CEnt*> ents);
  ~EntityCursor();
  EntityCursor(const EntityCursor&) = delete;
  EntityCursor& operator=(const EntityCursor&) = delete;

  /// The next entity, by its object or as `ent`; neither at the end. Throws `Fault` if the drawing
  /// is closed or in use.
  Entity next(CEnt*& ent);
  /// Makes an object that nobody else uses stand for another entity. False, and nothing done, if
  /// that is not possible, such as when the entity has an object.
  bool reuse(EntityRef& ref, CEnt& ent);
  /// Ends the reuse of an object.
  void keep(EntityRef& ref);
  Drawing& drawing() const { return *m_drawing; }

 private:
  friend class Drawing;
  void settle();
  void keepAll();

  std::shared_ptr<Drawing> m_drawing;
  std::vector<CEnt*> m_ents;
  std::vector<Entity> m_settled;
  std::size_t m_next = 0;
  // The objects that are used again and again: looking them up among those of the drawing, and
  // moving them there, would take as long as all the rest of a step.
  std::array<EntityRef*, 2> m_reused{};
};

/// A drawing with its source, its undo stack, and what Python holds of it.
class Drawing final : public std::enable_shared_from_this<Drawing>, private IUndoListener {
 public:
  struct Source {
    std::string path;   ///< names the drawing in messages; read unless `hasBytes`
    std::string bytes;  ///< the content of the file
    bool hasBytes = false;
  };

  /// A new, empty drawing.
  Drawing();
  /// Reads a drawing; throws `Fault` with kind, line and file.
  Drawing(Source source, bool isStrict, int codePage);
  ~Drawing() override;

  /// Throws `Fault` if the drawing is closed, or if another thread loads, saves or draws it.
  CData& data() const;
  CUndoStack& undo() const { return (data(), *m_undo); }
  bool isClosed() const { return !m_data; }
  void close();

  const std::string& path() const { return m_path; }
  const CFileReport& report() const { return m_report; }

  // --- Entities

  /// The Python object of the entity: the same one while it exists.
  Entity refer(CEnt& ent);
  std::vector<Entity> refer(const std::vector<CEnt*>& ents);
  /// Null if there is none.
  CEnt* find(Handle handle) const;
  /// Throws `std::invalid_argument` for an entity of another drawing.
  std::vector<CEnt*> entitiesOf(const std::vector<Entity>& refs) const;

  // --- Steps

  void begin(const std::string& name);
  void commit();
  void rollback();
  bool travel(bool forward);
  /// Takes a step of its own, or a part of the open one, with everything undone if it throws.
  void change(const std::string& name, const std::function<void()>& work);
  /// Takes a step of the tool on these entities; returns what is selected then, and its message.
  std::pair<std::vector<CEnt*>, std::string> take(const host::NamedStep& step,
                                                  std::vector<CEnt*> chosen);
  /// The commands' selection, and its last point, stay between commands.
  std::pair<std::vector<CEnt*>, std::string> run(const std::string& line);

  // --- Saving

  /// The drawing as a file of that version; `losses` receives what is lost. Call it without the
  /// interpreter's lock.
  std::string toBytes(const std::string& version, std::vector<std::string>& losses);

  /// While this lives, other threads cannot use the drawing.
  class Busy {
   public:
    explicit Busy(Drawing& drawing);
    ~Busy() { m_drawing.m_isBusy = false; }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
    CData& data() const { return *m_drawing.m_data; }

   private:
    Drawing& m_drawing;
  };

 private:
  friend class EntityRef;
  friend class EntityCursor;

  void settleCursors();
  void load(Source source, bool isStrict, int codePage);
  void touched(CEnt& ent) override;
  void touched(CBlock& block) override;
  void touched(CNamedItem&) override {}
  void touched(CLayout&) override {}
  void touchedVars() override {}
  void findAgain();

  std::string m_path;
  host::Drawing m_data;
  std::unique_ptr<CDXFSource> m_source;
  std::unique_ptr<CUndoStack> m_undo;
  CFileReport m_report;
  std::unordered_map<const CEnt*, EntityRef*> m_refs;
  std::vector<EntityCursor*> m_cursors;  // whose entities have no objects yet
  std::vector<Handle> m_selected;        // by the commands
  PNT_3D m_last{};
  // Objects of Python may be deleted while a thread without the interpreter's lock edits.
  std::recursive_mutex m_refsLock;
  std::atomic<bool> m_isBusy = false;
  std::thread::id m_busyThread;
  int m_depth = 0;          // of steps that Python has opened
  bool m_isBroken = false;  // a part of the open step has failed, which took it all back
};

}  // namespace vek0::python
