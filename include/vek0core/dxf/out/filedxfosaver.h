#pragma once

#include <cstddef>
#include <memory>

#include "vek0core/dxf/out/filedxfovisitor.h"
#include "vek0core/dxf/out/filedxfowriter.h"
#include "vek0core/dxf/out/nameacadconverter.h"
#include "vek0core/export.h"
#include "vek0core/files/reportcode.h"
#include "vek0core/tables/handle.h"

class CBlockXRef;
class CLayer;
class CLayout;
class CLtype;
class CStyle;
class PNT_2D;

/// Writes one drawing to one file, section by section; `SaveDXF` is the convenience function.
class VEK0_API CFileDXFOSaver {
 public:
  /// Borrows the drawing and the file. `flags` are those of `SaveDXF`; losses are added to `report`
  /// unless it is null. The constructor converts the names of the drawing, so the tables must not
  /// change before `save`. Throws `std::bad_alloc`.
  CFileDXFOSaver(const CData& data, IFile& file, unsigned flags, CFileReport* report = nullptr);
  CFileDXFOSaver(const CFileDXFOSaver&) = delete;
  CFileDXFOSaver& operator=(const CFileDXFOSaver&) = delete;
  virtual ~CFileDXFOSaver();

  /// The threads that `save` may use, as for `SaveDXF`; initially 1.
  void setThreads(int threads);

  /// Opens the file, writes the sections and closes it. False if the file cannot be opened, a write
  /// failed, memory ran out, or the blocks form a cycle. Call once.
  bool save();

 protected:
  /// Writes the sections and the end marker; flushes after each and stops on failure.
  bool dosave();

  void writeHeaders();
  void reportVariables();
  void writeTables();
  /// False if the block graph has a cycle.
  bool writeBlocks();
  void writeEntities();

  void write(long code, bool value) { m_writer.write(code, value); }
  void write(long code, long value) { m_writer.write(code, value); }
  void write(long code, double value) { m_writer.write(code, value); }
  void write(long code, const zim::Char* text) { m_writer.write(code, text); }
  void writeHex(long code, vek0::Handle value) { m_writer.writeHex(code, value); }

 private:
  bool isExchange() const;
  bool sectionDone();
  void collectHandles();
  void beginSection(const zim::Char* name);
  void beginTable(const zim::Char* name, std::size_t entries);
  void writeCurrentItems();
  void writeVariable(const zim::Char* name, long code, double value, double fallback);
  void writeInsertionBase();
  void writeLimit(const zim::Char* name, const PNT_2D& limit, const PNT_2D& fallback);
  void writeSheetVariables(const CLayout& layout);
  void writeLtypes();
  void writeLtype(const CLtype& ltype);
  void writeLayers();
  void writeLayer(const CLayer& layer);
  short colorOf(const CLayer& layer);
  void reportTraits(const CLayer& layer);
  void writeStyles();
  void writeStyle(const CStyle& style, long flags);
  void writeXRef(const CBlockXRef& xref);
  void visitEntities(IEntVisitor& visitor);
  double degrees(double angleRad) const;
  double finite(double value, double fallback, const zim::WString& where);
  long dependentFlags(long flags, const zim::WString& name);
  void report(ReportCode code, const zim::WString& sample);

  const CData& m_data;
  IFile& m_file;
  CFileDXFOWriter m_writer;
  CFileDXFOVisitor m_visitor;
  CNameAcadConverter m_converter;
  unsigned m_flags;
  CFileReport* m_report;
  std::unique_ptr<vek0::detail::SaveHandles> m_handles;
};
