#include "support/test.h"

namespace {

class Shared : public IRefCounter {
 public:
  explicit Shared(int& deleted) : m_deleted(deleted) {}
  Shared(const Shared&) = default;
  ~Shared() override { ++m_deleted; }
  using IRefCounter::addRef;
  using IRefCounter::decRef;

 private:
  int& m_deleted;
};

TEST(RefCounter, TheLastOneToGiveItBackDeletesIt) {
  int deleted = 0;
  auto* shared = new Shared(deleted);
  shared->addRef();
  shared->addRef();
  shared->decRef();
  shared->decRef();
  EXPECT_EQ(deleted, 0);
  shared->decRef();
  EXPECT_EQ(deleted, 1);
}

TEST(RefCounter, ACopyStartsWithTheCountOfItsSource) {
  int deleted = 0;
  auto* source = new Shared(deleted);
  source->addRef();
  source->addRef();
  auto* copy = new Shared(*source);
  for (int i = 0; i < 2; ++i) copy->decRef();
  EXPECT_EQ(deleted, 0);
  copy->decRef();
  EXPECT_EQ(deleted, 1);
  for (int i = 0; i < 3; ++i) source->decRef();
  EXPECT_EQ(deleted, 2);
}

}  // namespace
