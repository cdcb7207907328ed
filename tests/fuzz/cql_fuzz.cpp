// libFuzzer target of the CQL parser: any bytes must parse or fail with a
// message, never crash, leak or hang; a parsed statement has a FROM class
// and only operands of known kinds.
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string>

#include "cql/CqlSelect.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* ipData, std::size_t ipSize) {
  const std::string query(reinterpret_cast<const char*>(ipData), ipSize);
  cql::CqlSelect select;
  std::string error;
  if (!select.parse(query, &error)) {
    assert(!error.empty());
    assert(select.fromClass().empty() && select.terms().empty());
    return 0;
  }
  assert(!select.fromClass().empty());
  assert(!select.selectList().empty());
  assert(select.hasCondition() == !select.terms().empty());
  for (const cql::CqlTerm& term : select.terms()) {
    assert(!term.empty());
    for (const cql::CqlSearchFactor& factor : term) {
      assert(factor.left.kind != cql::CqlOperand::kIdentifier || !factor.left.parts.empty());
      assert(factor.right.kind != cql::CqlOperand::kIdentifier || !factor.right.parts.empty());
    }
  }
  return 0;
}
