#pragma once
// The kind of a message shown to the user: where it comes from, how it
// reads, which icon it wears and how grave it is. Each source of messages
// derives its own category.

#include <memory>
#include <string>

#include "nc/NCMessageSeverity.h"

namespace Orvo {

class NCMessageCategory {
public:
  /// Sources of messages, as source() numbers them.
  enum Source : int {
    SOURCE_UNKNOWN = 0,
    SOURCE_TOOLPATH = 1,
    SOURCE_SIMULATION = 2,
    SOURCE_POST_PROCESSING = 3,
  };

  virtual ~NCMessageCategory();

  /// A help topic for the message; none unless a category has one.
  virtual std::string getHelpTopic() const;

  virtual std::unique_ptr<NCMessageCategory> clone() const = 0;
  /// Whether `other` would show the user the same thing.
  virtual bool isEquivalent(NCMessageCategory const& other) const = 0;
  /// One of Source.
  virtual int source() const = 0;
  virtual std::wstring getDisplayText() const = 0;
  virtual std::wstring getShortDisplayText() const = 0;
  virtual std::string getIconPath() const = 0;
  virtual NCMessageSeverity severity() const = 0;

protected:
  NCMessageCategory() = default;
  NCMessageCategory(NCMessageCategory const&) = default;
  NCMessageCategory& operator=(NCMessageCategory const&) = default;
};

}  // namespace Orvo
