#include "machine/machine/PartModelCollection.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\PartModelCollection";
}

namespace machine {

void PartModelCollection::add(std::unique_ptr<PartModel> model) {
  ORVO_ASSERT(model != nullptr);
  m_models.push_back(std::move(model));
}

// The index is unsigned, so the lower bound is trivially true; it is kept
// because the check is the whole bounds condition.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wtype-limits"
PartModel const& PartModelCollection::operator[](std::size_t index) const {
  ORVO_ASSERT(0 <= index && index < size());
  // Past the end throws std::out_of_range rather than reading stray memory.
  return *m_models.at(index);
}
#pragma GCC diagnostic pop

}  // namespace machine
