#pragma once

namespace machine {

/// The host's geometry for a part. The library only holds and hands it on.
class PartModel {
public:
  virtual ~PartModel();
};

}  // namespace machine
