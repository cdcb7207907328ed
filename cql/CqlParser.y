/* The CQL parser: SELECT statements into a CqlParseContext. Reentrant
   (pure), symbol prefix smis_. Values on the stack are indices into the
   context's vectors. */
%require "3.2"
%define api.pure full
%define api.prefix {smis_}
%define api.value.type {int}
%define parse.error verbose
%locations
%param {yyscan_t scanner}
%parse-param {cql::CqlParseContext* ctx}

%code requires {
#include "cql/CqlParseContext.h"
typedef void* yyscan_t;
}

%code {
#include <string>
int smis_lex(SMIS_STYPE* yylval, SMIS_LTYPE* yylloc, yyscan_t scanner);

namespace {

void smis_error(SMIS_LTYPE* ipLocation, yyscan_t, cql::CqlParseContext* ipContext,
                const char* ipMessage) {
  ipContext->error = "column " + std::to_string(ipLocation->first_column) + ": " + ipMessage;
}

int makeFactor(cql::CqlParseContext* ipContext, int ipLeft, cql::CqlOperator ipOperator,
               int ipRight) {
  cql::CqlNode node;
  node.kind = cql::CqlNode::kFactor;
  node.factor.left = ipContext->operands[ipLeft];
  node.factor.op = ipOperator;
  node.factor.right = ipContext->operands[ipRight];
  return ipContext->addNode(node);
}

int makeNode(cql::CqlParseContext* ipContext, cql::CqlNode::Kind ipKind, int ipLeft,
             int ipRight) {
  cql::CqlNode node;
  node.kind = ipKind;
  node.left = ipLeft;
  node.right = ipRight;
  return ipContext->addNode(node);
}

int makeLiteral(cql::CqlParseContext* ipContext, cql::CqlOperand::Kind ipKind,
                const std::string& irText) {
  cql::CqlOperand operand;
  operand.kind = ipKind;
  operand.text = irText;
  return ipContext->addOperand(operand);
}

}  // namespace
}

%token SELECT "SELECT" FROM "FROM" WHERE "WHERE" AND "AND" OR "OR" NOT "NOT"
%token ISA "ISA" AS "AS" SCOPE "::" NE "<>" LE "<=" GE ">="
%token IDENT "name" NUMBER "number" STRING "string"
%token UNTERMINATED "unterminated string" UNEXPECTED "unexpected character"

%left OR
%left AND
%precedence NOT

%%

query
  : SELECT select_list FROM IDENT alias where opt_semicolon
      { ctx->fromClass = ctx->tokens[$4]; }
  ;

select_list
  : '*'                       { ctx->selectList.push_back("*"); }
  | select_items
  ;

select_items
  : select_item
  | select_items ',' select_item
  ;

select_item
  : chain                     { ctx->selectList.push_back(ctx->operands[$1].text); }
  | chain '.' '*'             { ctx->selectList.push_back(ctx->operands[$1].text + ".*"); }
  ;

alias
  : %empty
  | IDENT
  | AS IDENT
  ;

where
  : %empty
  | WHERE condition           { ctx->condition = $2; }
  ;

opt_semicolon
  : %empty
  | ';'
  ;

condition
  : condition OR condition    { $$ = makeNode(ctx, cql::CqlNode::kOr, $1, $3); }
  | condition AND condition   { $$ = makeNode(ctx, cql::CqlNode::kAnd, $1, $3); }
  | NOT condition             { $$ = makeNode(ctx, cql::CqlNode::kNot, $2, -1); }
  | '(' condition ')'         { $$ = $2; }
  | operand '=' operand       { $$ = makeFactor(ctx, $1, cql::CqlOperator::kEqual, $3); }
  | operand NE operand        { $$ = makeFactor(ctx, $1, cql::CqlOperator::kNotEqual, $3); }
  | operand '<' operand       { $$ = makeFactor(ctx, $1, cql::CqlOperator::kLess, $3); }
  | operand LE operand        { $$ = makeFactor(ctx, $1, cql::CqlOperator::kLessEqual, $3); }
  | operand '>' operand       { $$ = makeFactor(ctx, $1, cql::CqlOperator::kGreater, $3); }
  | operand GE operand        { $$ = makeFactor(ctx, $1, cql::CqlOperator::kGreaterEqual, $3); }
  | operand ISA operand       { $$ = makeFactor(ctx, $1, cql::CqlOperator::kIsa, $3); }
  ;

operand
  : chain
  | STRING                    { $$ = makeLiteral(ctx, cql::CqlOperand::kString, ctx->tokens[$1]); }
  | NUMBER                    { $$ = makeLiteral(ctx, cql::CqlOperand::kNumber, ctx->tokens[$1]); }
  | '-' NUMBER                { $$ = makeLiteral(ctx, cql::CqlOperand::kNumber, "-" + ctx->tokens[$2]); }
  | '+' NUMBER                { $$ = makeLiteral(ctx, cql::CqlOperand::kNumber, ctx->tokens[$2]); }
  ;

chain
  : IDENT
      {
        cql::CqlOperand operand;
        operand.parts.push_back(ctx->tokens[$1]);
        operand.text = ctx->tokens[$1];
        $$ = ctx->addOperand(operand);
      }
  | chain '.' IDENT
      {
        cql::CqlOperand& operand = ctx->operands[$1];
        operand.parts.push_back(ctx->tokens[$3]);
        operand.text += "." + ctx->tokens[$3];
        $$ = $1;
      }
  | chain SCOPE IDENT
      {
        cql::CqlOperand& operand = ctx->operands[$1];
        operand.parts.back() += "::" + ctx->tokens[$3];
        operand.text += "::" + ctx->tokens[$3];
        $$ = $1;
      }
  ;

%%
