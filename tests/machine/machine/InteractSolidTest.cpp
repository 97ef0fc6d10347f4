#include "machine/machine/InteractSolid.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "machine/machine/InteractSolidType.h"
#include "util/utility/LocaleRegistry.h"

using machine::InteractSolid;
using machine::InteractSolidType;

TEST(InteractSolidType, ValuesAreFixed) {
  EXPECT_EQ(static_cast<int>(InteractSolidType::TOOL), 0);
  EXPECT_EQ(static_cast<int>(InteractSolidType::TOOL_CUTTER), 1);
  EXPECT_EQ(static_cast<int>(InteractSolidType::TOOL_NONCUTTER), 2);
  EXPECT_EQ(static_cast<int>(InteractSolidType::STOCK), 3);
  EXPECT_EQ(static_cast<int>(InteractSolidType::FIXTURE), 4);
  EXPECT_EQ(static_cast<int>(InteractSolidType::MODEL), 5);
  EXPECT_EQ(static_cast<int>(InteractSolidType::MACHINE_PART), 6);
  EXPECT_EQ(static_cast<int>(InteractSolidType::TURRET_ACTIVE_TOOL), 7);
  EXPECT_EQ(static_cast<int>(InteractSolidType::TURRET_INACTIVE_TOOL), 8);
}

TEST(InteractSolidType, WordsBothWays) {
  struct Entry {
    InteractSolidType type;
    char const* word;
  };
  Entry const table[] = {
      {InteractSolidType::TOOL, "tool"},
      {InteractSolidType::TOOL_CUTTER, "tool_cutter"},
      {InteractSolidType::TOOL_NONCUTTER, "tool_noncutter"},
      {InteractSolidType::STOCK, "stock"},
      {InteractSolidType::FIXTURE, "fixture"},
      {InteractSolidType::MODEL, "model"},
      {InteractSolidType::MACHINE_PART, "machine_part"},
      {InteractSolidType::TURRET_ACTIVE_TOOL, "turret_active_tool"},
      {InteractSolidType::TURRET_INACTIVE_TOOL, "turret_inactive_tool"},
  };
  for (auto const& entry : table) {
    EXPECT_EQ(machine::interactSolidTypeWord(entry.type), entry.word);
    EXPECT_EQ(machine::interactSolidTypeFromWord(entry.word), entry.type);
  }
  EXPECT_EQ(Orvo::EnumTraits<InteractSolidType>::keyMap().size(), 9u);
}

TEST(InteractSolidType, UnknownWordThrowsIsNoSupported) {
  try {
    machine::interactSolidTypeFromWord("Tool");
    FAIL() << "no exception";
  } catch (std::runtime_error const& e) {
    EXPECT_STREQ(e.what(), "Tool is no supported");
  }
}

TEST(InteractSolid, HoldsTypeAndPart) {
  InteractSolid const s(InteractSolidType::STOCK, "table");
  EXPECT_EQ(s.type(), InteractSolidType::STOCK);
  EXPECT_EQ(s.partDefinitionID(), Orvo::MachinePartId("table"));
}

TEST(InteractSolid, EqualWhenTypeAndIdAre) {
  InteractSolid const a(InteractSolidType::STOCK, "table");
  EXPECT_TRUE(a == InteractSolid(InteractSolidType::STOCK, "table"));
  EXPECT_FALSE(a == InteractSolid(InteractSolidType::FIXTURE, "table"));
  EXPECT_FALSE(a == InteractSolid(InteractSolidType::STOCK, "table2"));
  EXPECT_TRUE(a != InteractSolid(InteractSolidType::FIXTURE, "table"));
}

TEST(InteractSolid, DescriptionOfEachType) {
  auto const text = [](InteractSolidType type) { return InteractSolid(type, "p\xc3\xa4rt").description(); };
  EXPECT_EQ(text(InteractSolidType::TOOL), L"Tool");
  EXPECT_EQ(text(InteractSolidType::TOOL_CUTTER), L"Flute");
  EXPECT_EQ(text(InteractSolidType::TOOL_NONCUTTER), L"Holder");
  EXPECT_EQ(text(InteractSolidType::STOCK), L"Stock");
  EXPECT_EQ(text(InteractSolidType::FIXTURE), L"Fixture");
  EXPECT_EQ(text(InteractSolidType::MODEL), L"Model");
  // A machine part is named by its id, decoded from UTF-8.
  EXPECT_EQ(text(InteractSolidType::MACHINE_PART), L"p\u00e4rt");
  EXPECT_EQ(text(InteractSolidType::TURRET_ACTIVE_TOOL), L"Active Tool");
  EXPECT_EQ(text(InteractSolidType::TURRET_INACTIVE_TOOL), L"Inactive Tool");
}

TEST(InteractSolid, DescriptionIsLocalised) {
  auto& registry = Orvo::LocaleRegistry::get();
  InteractSolid const s(InteractSolidType::TOOL_CUTTER, "head");
  EXPECT_EQ(s.description(), L"Flute");
  registry.addTranslation("de", L"Flute", L"Schneide");
  registry.setLocale("de");
  EXPECT_EQ(s.description(), L"Schneide");
  registry.clearTranslations();
  EXPECT_EQ(s.description(), L"Flute");
}

TEST(InteractSolid, DebugDescriptionNamesTypeAndPart) {
  EXPECT_EQ(InteractSolid(InteractSolidType::TURRET_ACTIVE_TOOL, "t1").debugDescription(), "turret_active_tool:t1");
}
