#pragma once
// A stream issue shown to the user as a message of post processing.

#include <memory>
#include <string>

#include "machine/machine/SimulationStream.h"
#include "nc/NCMessageCategory.h"

namespace machine {

class SimulationStreamIssue : public Orvo::NCMessageCategory {
public:
  /// `message` is UTF-8.
  SimulationStreamIssue(SimulationStream::IssueCode code, std::string message);
  ~SimulationStreamIssue() override;

  std::unique_ptr<Orvo::NCMessageCategory> clone() const override;
  /// Another stream issue that reads the same.
  bool isEquivalent(Orvo::NCMessageCategory const& other) const override;
  /// SOURCE_POST_PROCESSING, 3.
  int source() const override;
  /// "Post processing: " and the message, localised.
  std::wstring getDisplayText() const override;
  /// "Post-processing warning", localised, whatever the severity.
  std::wstring getShortDisplayText() const override;
  /// "Icons/Warning", whatever the severity.
  std::string getIconPath() const override;
  Orvo::NCMessageSeverity severity() const override;

  SimulationStream::IssueCode code() const noexcept { return m_code; }
  std::string const& message() const noexcept { return m_message; }

private:
  SimulationStream::IssueCode m_code;
  std::string m_message;
};

}  // namespace machine
