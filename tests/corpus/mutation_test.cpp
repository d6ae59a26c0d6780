// Damaged copies of valid files: truncated at every byte, or with random changes. Most effective in
// the sanitizer build.

#include "corpus/drawingchecks.h"
#include "support/test.h"

namespace {

std::vector<std::string> samples() {
  std::vector<std::string> texts;
  for (const auto& entry : std::filesystem::directory_iterator(vek0::test::samplePath()))
    if (entry.path().extension() == ".dxf") texts.push_back(readFile(entry.path().string()));
  return texts;
}

// One to eight changes like those made by defective writers and interrupted copies.
std::string mutate(std::string text, std::mt19937& random) {
  const auto below = [&random](std::size_t n) { return n ? random() % n : 0; };
  for (std::size_t edit = 1 + below(8); edit > 0 && !text.empty(); --edit) {
    const std::size_t at = below(text.size());
    const std::size_t length = std::min<std::size_t>(1 + below(60), text.size() - at);
    switch (below(5)) {
      case 0:
        text[at] = static_cast<char>(random());
        break;
      case 1:
        text.erase(at, length);
        break;
      case 2:
        text.insert(below(text.size()), text.substr(at, length));
        break;
      case 3:
        text[at] = "0123456789-.eE\n\r"[below(16)];
        break;
      default:
        text.insert(at, std::to_string(static_cast<int>(random())));
        break;
    }
  }
  return text;
}

void expectConsistent(const std::string& text) {
  LoadedFile loaded = load(text);
  ASSERT_EQ(inconsistency(*loaded.drawing), "");
  if (loaded.error.HasAnError()) return;
  LoadedFile again = load(save(*loaded.drawing, kSaveExchange));
  ASSERT_FALSE(again.error.HasAnError()) << again.error.GetFullMessage().toUtf8();
}

}  // namespace

// An interrupted copy is the most common kind of damaged file.
TEST(BrokenFiles, EveryTruncationGivesAnErrorOrADrawing) {
  const QuietAsserts asserts;
  for (const std::string& whole : samples()) {
    for (std::size_t n = 0; n <= whole.size(); n += n < 2000 ? 1 : 7) {
      SCOPED_TRACE(testing::Message() << "first " << n << " bytes");
      LoadedFile loaded = load(whole.substr(0, n));
      ASSERT_EQ(inconsistency(*loaded.drawing), "");
    }
  }
  EXPECT_EQ(asserts.failures(), std::vector<std::string>());
}

TEST(BrokenFiles, RandomChangesGiveAnErrorOrADrawing) {
  const QuietAsserts asserts;
  const auto texts = samples();
  ASSERT_FALSE(texts.empty());
  constexpr unsigned kSeed = 7;
  std::mt19937 random(kSeed);
  for ([[maybe_unused]] const int round : rounds(3000)) {
    expectConsistent(mutate(texts[random() % texts.size()], random));
    if (HasFatalFailure()) return;
  }
  EXPECT_EQ(asserts.failures(), std::vector<std::string>());
}
