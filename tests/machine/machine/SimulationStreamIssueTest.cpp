#include "machine/machine/SimulationStreamIssue.h"

#include <gtest/gtest.h>

#include "machine/machine/SimulationError.h"

using machine::SimulationError;
using machine::SimulationStream;
using machine::SimulationStreamIssue;

TEST(SimulationStreamIssue, TextsReadAsAPostProcessingWarning) {
  SimulationStreamIssue const issue(SimulationStream::IssueCode::SOLVE_FAILED, "axes \xC3\xA4 stuck");
  EXPECT_EQ(issue.getDisplayText(), L"Post processing: axes \u00e4 stuck");
  EXPECT_EQ(issue.getShortDisplayText(), L"Post-processing warning");
  EXPECT_EQ(issue.getIconPath(), "Icons/Warning");
  EXPECT_EQ(issue.source(), 3);
  EXPECT_TRUE(issue.severity().isError());
  EXPECT_TRUE(SimulationStreamIssue(SimulationStream::IssueCode::POST_WARNING, "x").severity().isWarning());
}

TEST(SimulationStreamIssue, EquivalentWhenTheDisplayTextsAreEqual) {
  SimulationStreamIssue const a(SimulationStream::IssueCode::SOLVE_FAILED, "same");
  SimulationStreamIssue const b(SimulationStream::IssueCode::POST_WARNING, "same");
  SimulationStreamIssue const c(SimulationStream::IssueCode::SOLVE_FAILED, "other");
  EXPECT_TRUE(a.isEquivalent(b));
  EXPECT_FALSE(a.isEquivalent(c));
  auto const copy = a.clone();
  EXPECT_TRUE(copy->isEquivalent(a));
  EXPECT_EQ(copy->getDisplayText(), a.getDisplayText());
}

TEST(SimulationError, KeepsCodeAndMessage) {
  SimulationError const e(static_cast<SimulationStream::IssueCode>(42), "text");
  EXPECT_EQ(static_cast<int>(e.errorCode()), 42);
  EXPECT_EQ(e.errorString(), "text");
}
