#include "support/test.h"

namespace {

struct Item : CNamedItem {
  explicit Item(const zim::WString& name, long flags = 0) : CNamedItem(name, flags) { ++alive; }
  Item(const Item& src) : CNamedItem(src) { ++alive; }
  Item& operator=(const Item&) = default;
  ~Item() override { --alive; }

  static inline int alive = 0;
};

struct Table : CNamedItemTableImp {
  using CNamedItemTableImp::add;
  using CNamedItemTableImp::contains;
  using CNamedItemTableImp::get;
  using CNamedItemTableImp::remove;
  using CNamedItemTableImp::operator[];

  Item* make(const zim::WString& name) {
    auto* item = new Item(name);
    add(item);
    return item;
  }
};

// Reference results for the table, computed by scanning all items in order.
struct Scan {
  std::vector<CNamedItem*> items;

  CNamedItem* get(const zim::WString& name) const {
    const auto found = std::find_if(items.begin(), items.end(), [&](const CNamedItem* item) {
      return item->getName().EqualsIgnoreCase(name);
    });
    return found == items.end() ? nullptr : *found;
  }

  int getProgNum(const zim::WString& prefix) const {
    for (int n = 1;; ++n) {
      const zim::WString name = prefix + zim::WString::fromUtf8(std::to_string(n));
      const auto bears = [&](const CNamedItem* item) { return item->getName() == name; };
      if (std::none_of(items.begin(), items.end(), bears)) return n;
    }
  }
};

// Few names that often collide: by case, leading zeros, and numbers that are parts of others.
class Names {
 public:
  explicit Names(unsigned seed) : m_random(seed) {}

  std::size_t below(std::size_t limit) { return m_random() % limit; }
  zim::WString prefix() {
    static const zim::WString prefixes[] = {u"*PAT", u"*pat", u"", u"A", u"a1", u"\u00c4"};
    return prefixes[below(std::size(prefixes))];
  }
  zim::WString name() {
    static const zim::WString numbers[] = {u"",  u"1",  u"2",  u"3",          u"4", u"01",
                                           u"0", u"11", u"12", u"2147483647", u"x"};
    return prefix() + numbers[below(std::size(numbers))];
  }

 private:
  std::mt19937 m_random;
};

TEST(NamedItemTable, AnswersWhatAScanAnswers) {
  for (const unsigned seed : {1u, 2u, 3u}) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Names names(seed);
    Table table;
    Scan scan;
    for (int step = 0; step < 10000; ++step) {
      const bool grow = scan.items.size() < 60 && names.below(2) == 0;
      CNamedItem* item = scan.items.empty() ? nullptr : scan.items[names.below(scan.items.size())];
      if (grow || !item) {
        scan.items.push_back(table.make(names.name()));
      } else if (const std::size_t edit = names.below(4); edit == 0) {
        std::erase(scan.items, item);
        table.remove(item);
        delete item;
      } else if (edit == 1) {
        item->setName(names.name());
      } else if (edit == 2) {
        static_cast<Item&>(*item) = Item(names.name());
      } else {
        std::erase(scan.items, item);
        table.remove(item);
        table.add(item);
        scan.items.push_back(item);
      }
      ASSERT_EQ(table.size(), static_cast<int>(scan.items.size()));
      for (int look = static_cast<int>(names.below(3)); look > 0 && table.size() > 0; --look) {
        const std::size_t at = names.below(scan.items.size());
        ASSERT_EQ(table[static_cast<int>(at)], scan.items[at]) << "step " << step;
      }
      const zim::WString name = names.name(), prefix = names.prefix();
      ASSERT_EQ(table.get(name), scan.get(name)) << name.toUtf8();
      ASSERT_EQ(table.getProgNum(prefix), scan.getProgNum(prefix)) << prefix.toUtf8();
    }
  }
  EXPECT_EQ(Item::alive, 0);
}

TEST(NamedItemTable, NumbersAreTheSmallestThatNoNameTakes) {
  for (const Row& t : rows()) {
    Table before, after;
    EXPECT_EQ(before.getProgNum(u"*PAT"), 1);
    for (const std::string& name : t.list("taken")) {
      before.make(zim::WString::fromUtf8(name));
      after.make(zim::WString::fromUtf8(name));
    }
    EXPECT_EQ(before.getProgNum(u"*PAT"), t.whole("number")) << "asked before the names were there";
    EXPECT_EQ(after.getProgNum(u"*PAT"), t.whole("number")) << "asked for the first time";
    EXPECT_EQ(after.GetProgName(u"*PAT").toUtf8(), "*PAT" + t.text("number"));
  }
}

TEST(NamedItemTable, FirstOfEqualNamesIsFoundAndItsRemovalExposesTheNext) {
  Table table;
  Item* first = table.make(u"Dash");
  Item* second = table.make(u"DASH");
  EXPECT_EQ(table.get(u"dash"), first);
  table.remove(first);
  EXPECT_EQ(table.get(u"dash"), second);
  table.add(first);
  EXPECT_EQ(table.get(u"dash"), second) << "added again means added last";
  second->setName(u"Other");
  EXPECT_EQ(table.get(u"dash"), first);
  second->setName(u"dAsH");
  EXPECT_EQ(table.get(u"dash"), second) << "a rename does not change the order of addition";
}

TEST(NamedItemTable, OddPointersDoNoHarm) {
  Table table, other;
  Item* item = table.make(u"A");
  auto* foreign = new Item(u"B");
  table.add(nullptr);
  table.add(item);
  other.add(item);
  table.remove(nullptr);
  table.remove(foreign);
  other.remove(item);
  EXPECT_EQ(table.size(), 1);
  EXPECT_EQ(other.size(), 0);
  EXPECT_EQ(table.get(u"b"), nullptr);
  EXPECT_TRUE(table.contains(item));
  delete foreign;
}

TEST(NamedItemTable, OwnsWhatIsInItAndForgetsWhatDies) {
  {
    Table table;
    Item* removed = table.make(u"A");
    table.make(u"B");
    Item* deleted = table.make(u"C");
    table.remove(removed);
    delete deleted;
    EXPECT_EQ(table.size(), 1);
    EXPECT_EQ(table.get(u"c"), nullptr);
    delete removed;
    EXPECT_EQ(Item::alive, 1);
    table.clearAll();
    EXPECT_EQ(Item::alive, 0);
    EXPECT_EQ(table.size(), 0);
    EXPECT_EQ(table.get(u"B"), nullptr);
    table.make(u"B1");
    EXPECT_EQ(table.getProgNum(u"B"), 2);
  }
  EXPECT_EQ(Item::alive, 0);
}

TEST(NamedItemTable, CopyIsAViewThatOwnsNothing) {
  Table source;
  source.make(u"A");
  Item* gone = source.make(u"B");
  Item* last = source.make(u"C1");
  source.remove(gone);
  {
    Table view(source);
    EXPECT_EQ(view.size(), 2);
    EXPECT_EQ(view[1], last);
    EXPECT_EQ(view.get(u"c1"), last);
    EXPECT_EQ(view.getProgNum(u"C"), 2);
    view.add(gone);
    view.remove(last);
    EXPECT_EQ(view.size(), 2);
    view.clearAll();
    EXPECT_EQ(view.size(), 0);
  }
  EXPECT_EQ(source.size(), 2);
  EXPECT_EQ(source.get(u"C1"), last);
  delete gone;
}

TEST(NamedItem, FlagsByMaskTouchTheirBitsOnly) {
  Item item(u"A", 0x81);
  item.setFlags(0x04, true);
  EXPECT_EQ(item.getFlags(), 0x85);
  item.setFlags(0x81, false);
  EXPECT_EQ(item.getFlags(), 0x04);
}

TEST(NamedItem, CountsGoBelowZeroAndAreNotCopied) {
  Item item(u"A");
  item.decEntity();
  EXPECT_EQ(item.getEntities(), -1);
  EXPECT_EQ(Item(item).getEntities(), 0);
  Item other(u"B");
  other.addEntity();
  other = item;
  EXPECT_EQ(other.getEntities(), 1);
  EXPECT_TRUE(other == item);
}

TEST(NamedItem, EqualityIgnoresLetterCaseButNotFlags) {
  EXPECT_TRUE(Item(u"Wall", 1) == Item(u"WALL", 1));
  EXPECT_TRUE(Item(u"Wall", 1) != Item(u"Wall", 2));
  EXPECT_TRUE(Item(u"Wall") != Item(u"Walls"));
}

}  // namespace
