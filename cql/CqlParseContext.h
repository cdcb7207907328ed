// What the generated CQL scanner and parser share with CqlSelect while one
// statement is read. Private to cql/: values on the parser's stack are
// indices into the vectors here, so that nothing is leaked when a parse
// stops half-way.
#ifndef QRX_CQL_CQLPARSECONTEXT_H_
#define QRX_CQL_CQLPARSECONTEXT_H_

#include <string>
#include <vector>

#include "cql/CqlSelect.h"

namespace cql {

// A node of the condition as written, before it is put in disjunctive form.
struct CqlNode {
  enum Kind { kOr, kAnd, kNot, kFactor };
  Kind kind = kFactor;
  int left = -1;   // kOr, kAnd, kNot: node index
  int right = -1;  // kOr, kAnd: node index
  CqlSearchFactor factor;  // kFactor
};

struct CqlParseContext {
  int column = 1;                     // the scanner's next column, 1-based
  std::vector<std::string> tokens;    // texts of names and literals
  std::vector<CqlOperand> operands;
  std::vector<CqlNode> nodes;
  std::string fromClass;
  std::vector<std::string> selectList;
  int condition = -1;                 // node index, -1 without WHERE
  std::string error;                  // set by the parser on failure

  int addToken(const char* ipText, std::size_t ipLength) {
    tokens.emplace_back(ipText, ipLength);
    return static_cast<int>(tokens.size() - 1);
  }
  int addOperand(CqlOperand irOperand) {
    operands.push_back(std::move(irOperand));
    return static_cast<int>(operands.size() - 1);
  }
  int addNode(CqlNode irNode) {
    nodes.push_back(std::move(irNode));
    return static_cast<int>(nodes.size() - 1);
  }
};

}  // namespace cql

#endif  // QRX_CQL_CQLPARSECONTEXT_H_
