#include "vek0core/drawing/refcounter.h"

IRefCounter::~IRefCounter() = default;

void IRefCounter::decRef() {
  if (--m_count == 0) delete this;
}
