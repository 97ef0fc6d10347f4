#pragma once
// An owning list of the host's part models.

#include <cstddef>
#include <memory>
#include <vector>

#include "machine/machine/PartModel.h"

namespace machine {

class PartModelCollection {
public:
  PartModelCollection() = default;

  void add(std::unique_ptr<PartModel> model);
  std::size_t size() const noexcept { return m_models.size(); }
  /// Asserts the index is in range; past the end throws std::out_of_range.
  PartModel const& operator[](std::size_t index) const;

private:
  std::vector<std::unique_ptr<PartModel>> m_models;
};

}  // namespace machine
