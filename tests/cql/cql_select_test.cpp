// The CQL parser over a table of accepted and rejected statements.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "cql/CqlSelect.h"

namespace {

// A CqlSelect's condition as text: terms joined by " | ", factors by " & ",
// a negated factor prefixed with "!"; operands in brackets with their kind
// (i: name parts joined by "/", s: string, n: number).
std::string operandText(const cql::CqlOperand& irOperand) {
  switch (irOperand.kind) {
    case cql::CqlOperand::kString: return "s'" + irOperand.text + "'";
    case cql::CqlOperand::kNumber: return "n" + irOperand.text;
    case cql::CqlOperand::kIdentifier: break;
  }
  std::string text;
  for (const std::string& part : irOperand.parts) text += (text.empty() ? "" : "/") + part;
  return text;
}

std::string conditionText(const cql::CqlSelect& irSelect) {
  std::string text;
  for (const cql::CqlTerm& term : irSelect.terms()) {
    if (!text.empty()) text += " | ";
    std::string factors;
    for (const cql::CqlSearchFactor& factor : term) {
      if (!factors.empty()) factors += " & ";
      factors += std::string(factor.negated ? "!" : "") + operandText(factor.left) + " " +
                 cql::cqlOperatorText(factor.op) + " " + operandText(factor.right);
    }
    text += factors;
  }
  return text;
}

struct Accepted {
  const char* query;
  const char* from;
  const char* select;     // select list joined by ","
  const char* condition;  // conditionText, "" without WHERE
};

TEST(CqlSelectTest, AcceptedStatementsGiveTheirModel) {
  const Accepted cases[] = {
      {"SELECT * FROM CIM_InstCreation", "CIM_InstCreation", "*", ""},
      {"select * from CIM_InstCreation;", "CIM_InstCreation", "*", ""},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA QRX_SwitchFCPort",
       "CIM_InstModification", "*", "SourceInstance ISA QRX_SwitchFCPort"},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_FCPort OR "
       "SourceInstance ISA CIM_ComputerSystem",
       "CIM_InstModification", "*",
       "SourceInstance ISA CIM_FCPort | SourceInstance ISA CIM_ComputerSystem"},
      // AND binds tighter than OR.
      {"SELECT * FROM CIM_InstCreation WHERE a ISA X OR b ISA Y AND c ISA Z", "CIM_InstCreation",
       "*", "a ISA X | b ISA Y & c ISA Z"},
      // Parentheses, multiplied out.
      {"SELECT * FROM CIM_InstCreation WHERE (a ISA X OR b ISA Y) AND c ISA Z",
       "CIM_InstCreation", "*", "a ISA X & c ISA Z | b ISA Y & c ISA Z"},
      // NOT is pushed down to the factors.
      {"SELECT * FROM CIM_InstDeletion WHERE NOT (a ISA X OR b ISA Y)", "CIM_InstDeletion", "*",
       "!a ISA X & !b ISA Y"},
      {"SELECT * FROM CIM_InstDeletion WHERE NOT (a ISA X AND NOT b ISA Y)", "CIM_InstDeletion",
       "*", "!a ISA X | b ISA Y"},
      {"SELECT * FROM CIM_InstModification WHERE "
       "SourceInstance.CIM_FCPort::OperationalStatus <> PreviousInstance.CIM_FCPort::"
       "OperationalStatus",
       "CIM_InstModification", "*",
       "SourceInstance/CIM_FCPort::OperationalStatus <> "
       "PreviousInstance/CIM_FCPort::OperationalStatus"},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance.Speed >= 4.25e9 AND "
       "SourceInstance.PortNumber < -1 AND SourceInstance.ElementName = 'it''s' AND "
       "SourceInstance.Name > \"x\" AND SourceInstance.PortType <= +7",
       "CIM_InstModification", "*",
       "SourceInstance/Speed >= n4.25e9 & SourceInstance/PortNumber < n-1 & "
       "SourceInstance/ElementName = s'it''s' & SourceInstance/Name > s'x' & "
       "SourceInstance/PortType <= n7"},
      {"SELECT IndicationIdentifier, SourceInstance.* FROM CIM_InstCreation AS c WHERE "
       "c.SourceInstance isa QRX_Switch",
       "CIM_InstCreation", "IndicationIdentifier,SourceInstance.*",
       "c/SourceInstance ISA QRX_Switch"},
      // A literal on the left and a chain on the right are read; whether
      // they make sense is for the caller to judge.
      {"SELECT * FROM CIM_InstCreation WHERE 'x' ISA a.b", "CIM_InstCreation", "*",
       "s'x' ISA a/b"},
  };
  for (const Accepted& c : cases) {
    SCOPED_TRACE(c.query);
    cql::CqlSelect select;
    std::string error;
    ASSERT_TRUE(select.parse(c.query, &error)) << error;
    EXPECT_EQ(c.from, select.fromClass());
    std::string list;
    for (const std::string& item : select.selectList()) list += (list.empty() ? "" : ",") + item;
    EXPECT_EQ(c.select, list);
    EXPECT_EQ(c.condition[0] != '\0', select.hasCondition());
    EXPECT_EQ(c.condition, conditionText(select));
  }
}

TEST(CqlSelectTest, RejectedStatementsSayWhere) {
  struct Rejected {
    const char* query;
    const char* error;  // the start of the message
  };
  const Rejected cases[] = {
      {"", "column 1: syntax error, unexpected end of file, expecting SELECT"},
      {"DELETE FROM X", "column 1: syntax error"},
      {"SELECT FROM X", "column 8: syntax error, unexpected FROM"},
      {"SELECT * FROM", "column 14: syntax error, unexpected end of file, expecting name"},
      {"SELECT * FROM X WHERE", "column 22: syntax error, unexpected end of file"},
      {"SELECT * FROM X WHERE a ISA", "column 28: syntax error, unexpected end of file"},
      {"SELECT * FROM X WHERE (a ISA b", "column 31: syntax error, unexpected end of file"},
      {"SELECT * FROM X WHERE a ISA b)", "column 30: syntax error, unexpected ')'"},
      {"SELECT * FROM X WHERE a = 'open", "column 27: syntax error, unexpected unterminated"},
      {"SELECT * FROM X WHERE a # b", "column 25: syntax error, unexpected unexpected character"},
      {"SELECT * FROM X WHERE a ISA b c", "column 31: syntax error, unexpected name"},
      {"SELECT * FROM X WHERE NOT", "column 26: syntax error"},
      {"SELECT * FROM X Y Z", "column 19: syntax error"},
  };
  for (const Rejected& c : cases) {
    SCOPED_TRACE(c.query);
    cql::CqlSelect select;
    std::string error;
    EXPECT_FALSE(select.parse(c.query, &error));
    EXPECT_EQ(0u, error.rfind(c.error, 0)) << error;
    EXPECT_TRUE(select.fromClass().empty());
    EXPECT_TRUE(select.terms().empty());
  }
}

TEST(CqlSelectTest, OversizedDisjunctiveFormAndReuse) {
  // (a1 OR b1) AND ... AND (a9 OR b9) multiplies out to 512 terms.
  std::string query = "SELECT * FROM X WHERE ";
  for (int i = 1; i <= 9; ++i) {
    query += std::string(i > 1 ? " AND " : "") + "(a" + std::to_string(i) + " ISA A OR b" +
             std::to_string(i) + " ISA B)";
  }
  cql::CqlSelect select;
  std::string error;
  ASSERT_TRUE(select.parse("SELECT * FROM Y WHERE p ISA Q", &error));
  EXPECT_FALSE(select.parse(query, &error));
  EXPECT_EQ("condition too complex: more than 256 terms", error);
  EXPECT_TRUE(select.fromClass().empty());
  // Eight pairs (256 terms) still fit.
  query = query.substr(0, query.rfind(" AND "));
  ASSERT_TRUE(select.parse(query, &error)) << error;
  EXPECT_EQ(256u, select.terms().size());
  EXPECT_EQ(8u, select.terms().back().size());
}

TEST(CqlSelectTest, ThreadsParseAtOnce) {
  std::vector<std::thread> threads;
  std::vector<int> good(4, 0);
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t, &good] {
      const std::string cls = "C" + std::to_string(t);
      for (int i = 0; i < 500; ++i) {
        cql::CqlSelect select;
        std::string error;
        const bool ok = select.parse("SELECT * FROM " + cls + " WHERE s ISA " + cls, &error);
        if (ok && select.fromClass() == cls && select.terms()[0][0].right.text == cls) ++good[t];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int t = 0; t < 4; ++t) EXPECT_EQ(500, good[t]);
}

}  // namespace
