#pragma once
// Runs a stretch of a test as a production run would: contract assertions are
// off inside the scope, so their conditions are not even evaluated. Only for
// tests that check what the library does in production; every use says why.

#include "util/utility/Basic.h"

namespace mtkit_test {

class ProductionBehaviour {
public:
  ProductionBehaviour() : m_wasTesting(Orvo::_debug::isTesting()) { Orvo::_debug::setTesting(false); }
  ~ProductionBehaviour() { Orvo::_debug::setTesting(m_wasTesting); }
  ProductionBehaviour(ProductionBehaviour const&) = delete;
  ProductionBehaviour& operator=(ProductionBehaviour const&) = delete;

private:
  bool m_wasTesting;
};

}  // namespace mtkit_test
