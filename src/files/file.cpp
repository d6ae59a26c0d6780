#include "vek0core/files/file.h"

#include <cstddef>
#include <string>

#include "vek0core/files/textcodec.h"

IFile::~IFile() = default;

long IFile::readBytes(char*, long) { return -1; }

bool IFile::writeBytes(const char* text, long n) {
  if (n <= 0) return n == 0;
  std::u16string wide;
  CTextDecoder(kCodePage1252).decode({text, static_cast<std::size_t>(n)}, wide);
  return writeLn(wide.c_str());
}
