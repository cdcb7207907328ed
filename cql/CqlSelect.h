// CqlSelect: a CQL SELECT statement as subscriptions send it, e.g.
//
//   SELECT * FROM CIM_InstModification
//     WHERE SourceInstance ISA CIM_FCPort OR SourceInstance ISA QRX_Switch
//
// parse() reads the text with the generated scanner and parser (reentrant:
// any number of threads may parse at once) into the FROM class, the select
// list and the WHERE condition in disjunctive form: a list of terms joined
// by OR, each a list of search factors joined by AND. NOT is pushed down to
// the factors (De Morgan), so a factor carries whether it stands under NOT.
// Keywords are case-insensitive; identifiers keep their spelling.
#ifndef QRX_CQL_CQLSELECT_H_
#define QRX_CQL_CQLSELECT_H_

#include <string>
#include <vector>

namespace cql {

// One side of a comparison.
struct CqlOperand {
  enum Kind {
    kIdentifier,  // a name: a property, a class, or a chain of them
    kString,      // a string literal, text without quotes
    kNumber,      // a number literal, text as written
  };
  Kind kind = kIdentifier;
  // For kIdentifier: the parts of a chain as written, e.g.
  // "SourceInstance.CIM_FCPort::OperationalStatus" holds
  // {"SourceInstance", "CIM_FCPort::OperationalStatus"}.
  std::vector<std::string> parts;
  std::string text;  // the whole operand as written (literals unquoted)

  // A single plain name (no '.' or '::'): what a class name must be.
  bool isSimpleName() const;
};

enum class CqlOperator { kEqual, kNotEqual, kLess, kLessEqual, kGreater, kGreaterEqual, kIsa };

// "=", "<>", "<", "<=", ">", ">=", "ISA".
const char* cqlOperatorText(CqlOperator ipOperator);

// left op right, possibly under NOT.
struct CqlSearchFactor {
  bool negated = false;
  CqlOperand left;
  CqlOperator op = CqlOperator::kEqual;
  CqlOperand right;
};

// Search factors joined by AND.
typedef std::vector<CqlSearchFactor> CqlTerm;

class CqlSelect {
 public:
  // Parses `irQuery`. On success true; on failure false with a message in
  // *opError that names the column (1-based) where reading stopped. A failed
  // parse leaves the object empty.
  bool parse(const std::string& irQuery, std::string* opError);

  const std::string& fromClass() const { return ivFromClass; }
  // The select list as written: {"*"} for SELECT *.
  const std::vector<std::string>& selectList() const { return ivSelectList; }
  // False when the statement has no WHERE clause.
  bool hasCondition() const { return ivHasCondition; }
  // The condition in disjunctive form (empty without WHERE).
  const std::vector<CqlTerm>& terms() const { return ivTerms; }

 private:
  std::string ivFromClass;
  std::vector<std::string> ivSelectList;
  bool ivHasCondition = false;
  std::vector<CqlTerm> ivTerms;
};

}  // namespace cql

#endif  // QRX_CQL_CQLSELECT_H_
