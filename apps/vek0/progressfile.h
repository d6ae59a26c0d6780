#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "vek0core/files/file.h"

namespace vek0::tool {

/// Passes everything through to another file and draws a bar on the error stream once reading has
/// taken more than a second. The bar is removed when the file is closed.
class ProgressFile : public IFile {
 public:
  /// Reads through `inner`; `totalBytes` corresponds to 100 %; `label` names the file in the bar.
  ProgressFile(std::unique_ptr<IFile> inner, long long totalBytes, std::string label);
  ~ProgressFile() override;

  bool open() override;
  void close() override;
  bool isOpened() override { return m_inner->isOpened(); }
  long read(zim::Char* buf, long n) override { return m_inner->read(buf, n); }
  long write(const zim::Char* buf, long n) override { return m_inner->write(buf, n); }
  bool readLn(zim::Char* buf, long n) override { return m_inner->readLn(buf, n); }
  bool writeLn(const zim::Char* text) override { return m_inner->writeLn(text); }
  bool fail() override { return m_inner->fail(); }
  long readBytes(char* buf, long n) override;
  bool writeBytes(const char* text, long n) override { return m_inner->writeBytes(text, n); }

 private:
  using Clock = std::chrono::steady_clock;
  void draw();
  void wipe();

  std::unique_ptr<IFile> m_inner;
  long long m_total;
  std::string m_label;
  long long m_done = 0;
  int m_drawnPercent = -1;
  Clock::time_point m_start;
};

}  // namespace vek0::tool
