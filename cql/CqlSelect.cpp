#include "cql/CqlSelect.h"

#include "cql/CqlParseContext.h"
#include "generated/cql/CqlLexer.h"
#include "generated/cql/CqlParser.h"

namespace cql {

namespace {

// A condition whose disjunctive form would have more terms is refused: the
// form can grow exponentially with the text.
constexpr std::size_t kMaxTerms = 256;

// The disjunctive form of node `ipNode`, negated when `ipNegate`. False
// when it grows beyond kMaxTerms.
bool toTerms(const CqlParseContext& irContext, int ipNode, bool ipNegate,
             std::vector<CqlTerm>* opTerms) {
  const CqlNode& node = irContext.nodes[static_cast<std::size_t>(ipNode)];
  switch (node.kind) {
    case CqlNode::kFactor: {
      CqlSearchFactor factor = node.factor;
      factor.negated = ipNegate;
      opTerms->assign(1, CqlTerm(1, factor));
      return true;
    }
    case CqlNode::kNot:
      return toTerms(irContext, node.left, !ipNegate, opTerms);
    case CqlNode::kOr:
    case CqlNode::kAnd:
      break;
  }
  std::vector<CqlTerm> left;
  std::vector<CqlTerm> right;
  if (!toTerms(irContext, node.left, ipNegate, &left) ||
      !toTerms(irContext, node.right, ipNegate, &right)) {
    return false;
  }
  // OR, and AND under NOT (De Morgan), joins the two lists of terms; AND,
  // and OR under NOT, multiplies them out.
  const bool joins = (node.kind == CqlNode::kOr) != ipNegate;
  opTerms->clear();
  if (joins) {
    if (left.size() + right.size() > kMaxTerms) return false;
    *opTerms = std::move(left);
    opTerms->insert(opTerms->end(), right.begin(), right.end());
    return true;
  }
  if (left.size() * right.size() > kMaxTerms) return false;
  for (const CqlTerm& leftTerm : left) {
    for (const CqlTerm& rightTerm : right) {
      CqlTerm term = leftTerm;
      term.insert(term.end(), rightTerm.begin(), rightTerm.end());
      opTerms->push_back(std::move(term));
    }
  }
  return true;
}

}  // namespace

bool CqlOperand::isSimpleName() const {
  return kind == kIdentifier && parts.size() == 1 && parts[0].find("::") == std::string::npos;
}

const char* cqlOperatorText(CqlOperator ipOperator) {
  switch (ipOperator) {
    case CqlOperator::kEqual: return "=";
    case CqlOperator::kNotEqual: return "<>";
    case CqlOperator::kLess: return "<";
    case CqlOperator::kLessEqual: return "<=";
    case CqlOperator::kGreater: return ">";
    case CqlOperator::kGreaterEqual: return ">=";
    case CqlOperator::kIsa: return "ISA";
  }
  return "?";
}

bool CqlSelect::parse(const std::string& irQuery, std::string* opError) {
  *this = CqlSelect();
  CqlParseContext context;
  yyscan_t scanner = nullptr;
  if (smis_lex_init_extra(&context, &scanner) != 0) {
    *opError = "cannot start the scanner";
    return false;
  }
  YY_BUFFER_STATE buffer =
      smis__scan_bytes(irQuery.data(), static_cast<int>(irQuery.size()), scanner);
  const int parsed = smis_parse(scanner, &context);
  smis__delete_buffer(buffer, scanner);
  smis_lex_destroy(scanner);
  if (parsed != 0) {
    *opError = context.error.empty() ? "parse error" : context.error;
    return false;
  }
  std::vector<CqlTerm> terms;
  if (context.condition >= 0 && !toTerms(context, context.condition, false, &terms)) {
    *opError = "condition too complex: more than " + std::to_string(kMaxTerms) + " terms";
    return false;
  }
  ivFromClass = context.fromClass;
  ivSelectList = context.selectList;
  ivHasCondition = context.condition >= 0;
  ivTerms = std::move(terms);
  return true;
}

}  // namespace cql
