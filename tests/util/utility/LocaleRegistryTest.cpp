#include "util/utility/LocaleRegistry.h"

#include <gtest/gtest.h>

#include <cstring>

#include "util/utility/IOTransfer.h"
#include "util/utility/LocalizedMessage.h"
#include "util/utility/VariableSet.h"

using Orvo::LocaleRegistry;

TEST(LocaleRegistry, EnglishTextIsKeyAndDefaultUntilHostTranslates) {
  auto& registry = LocaleRegistry::get();
  Orvo::LocalizedMessage const m = registry.registerMessage(L"Hello %1, you have %2 parts.", L"Hello %1, you have %2 parts.");
  EXPECT_TRUE(registry.isRegistered(L"Hello %1, you have %2 parts."));
  EXPECT_EQ(m.text(), L"Hello %1, you have %2 parts.");
  EXPECT_EQ(m.text(Orvo::VariableSet{L"Ann", 3}), L"Hello Ann, you have 3 parts.");

  registry.addTranslation("fr", m.key(), L"Bonjour %1, vous avez %2 pi\u00e8ces.");
  EXPECT_EQ(m.text(), L"Hello %1, you have %2 parts.");  // another locale is selected
  registry.setLocale("fr");
  EXPECT_EQ(registry.locale(), "fr");
  EXPECT_EQ(m.text(Orvo::VariableSet{L"Ann", 3}), L"Bonjour Ann, vous avez 3 pi\u00e8ces.");
  EXPECT_EQ(m.utf8(), "Bonjour %1, vous avez %2 pi\xc3\xa8" "ces.");
  EXPECT_EQ(registry.lookup(L"untranslated", L"fallback"), L"fallback");
  registry.clearTranslations();
  EXPECT_EQ(registry.locale(), "en");
  EXPECT_EQ(m.text(), L"Hello %1, you have %2 parts.");
}

TEST(VariableSet, ArgumentsKeepTheirOrder) {
  Orvo::VariableSet set;
  set.add(1.5).add(L"x");
  ASSERT_EQ(set.size(), 2u);
  EXPECT_EQ(set[0].asDouble(), 1.5);
  EXPECT_EQ(set[1].asString(), L"x");
  EXPECT_TRUE(Orvo::VariableSet().empty());
}

namespace {
/// Hands out its text a few bytes at a time.
class TrickleInput : public Orvo::InputStream {
public:
  explicit TrickleInput(std::string text) : m_text(std::move(text)) {}
  std::size_t read(char* buffer, std::size_t size) override {
    std::size_t const n = std::min<std::size_t>({size, 3, m_text.size() - m_pos});
    std::memcpy(buffer, m_text.data() + m_pos, n);
    m_pos += n;
    return n;
  }

private:
  std::string m_text;
  std::size_t m_pos = 0;
};
}  // namespace

TEST(IOTransfer, CopiesEveryByteOfAPiecewiseInput) {
  std::string text(200000, 'a');
  text[1] = '\0';
  text.back() = 'z';
  TrickleInput in(text);
  Orvo::MemoryOutputStream out;
  EXPECT_EQ(Orvo::IOTransfer::transfer(in, out), text.size());
  EXPECT_EQ(out.str(), text);
  EXPECT_EQ(out.size(), text.size());
  TrickleInput empty("");
  Orvo::MemoryOutputStream none;
  EXPECT_EQ(Orvo::IOTransfer::transfer(empty, none), 0u);
}
