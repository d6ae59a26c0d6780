#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "dxf/in/parse/layoutobject.h"
#include "dxf/in/parse/tablessection.h"
#include "dxf/in/records/viewportreader.h"

namespace vek0::detail {

/// Collects what a file has of layouts: the contents of sheets from the BLOCKS and ENTITIES
/// sections, and the LAYOUT objects. The layouts are created at the end of the file, when it is
/// known which of them belong together.
class Sheets {
 public:
  /// All are borrowed.
  Sheets(SectionInput& in, const CFileDXFIError& err, const DimStyles& names,
         const TablesSection& tables)
      : m_in(in), m_err(err), m_names(names), m_tables(tables) {}

  /// Takes an entity of the ENTITIES section that lies on the sheet of that layout; an empty name
  /// stands for the current sheet.
  void add(EntPtr ent, const zim::WString& layout);
  void add(ReadViewport viewport);
  /// Takes the content of the block of a sheet. `record` is the handle of its block record, or 0.
  void addBlock(const zim::WString& name, std::uint64_t record, std::list<CEnt*>& entities,
                std::vector<ReadViewport> viewports);
  /// Reads the LAYOUT object at whose group 0 the lexer is positioned.
  void readObject();
  /// Creates the layouts. `plot` is that of sheets without LAYOUT objects.
  void settle(const PLOT_SETTINGS& plot);

 private:
  // Owns its entities.
  struct Content {
    Content() = default;
    Content(const Content&) = delete;
    Content& operator=(const Content&) = delete;
    ~Content();

    zim::WString block;     // its name; empty if the content is not from a block
    std::u16string layout;  // its name, if the entities state it
    std::list<CEnt*> entities;
    std::vector<ReadViewport> viewports;
    bool isUsed = false;

    bool showsNothing() const;
    void append(Content& other);
  };

  using Handles = std::unordered_map<std::uint64_t, const CEnt*>;

  Content& contentOf(const zim::WString& layout);
  Content* blockOf(std::uint64_t record);
  const LayoutObject* findActive();
  void create(const LayoutObject& object, bool isCurrent);
  void createRest(const PLOT_SETTINGS& plot);
  void fill(const zim::WString& name, const PLOT_SETTINGS& plot, Content& content);
  std::vector<VIEWPORT> viewportsOf(Content& content);
  void settleView(ReadViewport& viewport, const Handles& entities);

  SectionInput& m_in;
  const CFileDXFIError& m_err;
  const DimStyles& m_names;
  const TablesSection& m_tables;
  std::map<std::u16string, Content> m_blocks;                   // by folded names
  std::unordered_map<std::uint64_t, std::u16string> m_records;  // their names, by block record
  std::map<std::u16string, Content> m_named;  // by folded names of layouts; "": the current one
  std::vector<LayoutObject> m_objects;
  std::size_t m_room = 1'000'000;  // points left for boundaries, of which viewports may share one
};

}  // namespace vek0::detail
