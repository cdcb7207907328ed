#include "common/backend/IndSubscriptions.h"

#include <time.h>

#include <cstdio>

#include "common/base/trace.h"
#include "generated/scimclasstree.h"

namespace {

const char* const kUnit = "common/backend/IndSubscriptions";

}  // namespace

bool IndSubscriptions::addQuery(IND_TYPE ipType, const std::string& irQuery) {
  fcbb::MutexLock lock(ivLock);
  QueryMap& queries = ivCqlSelectMap[ipType];
  if (queries.count(irQuery) != 0) {
    TRACE_ERROR(kUnit, "query=%s already exists\n", irQuery.c_str());
    return false;
  }
  std::unique_ptr<cql::CqlSelect> select(new cql::CqlSelect());
  std::string error;
  if (!select->parse(irQuery, &error)) {
    TRACE_ERROR(kUnit, "parse error query=%s\n", irQuery.c_str());
    TRACE_DEBUG("%s\n", error.c_str());
    return false;
  }
  if (!isIsaCondition(*select)) return false;
  queries.emplace(irQuery, std::move(select));
  TRACE_DEBUG("added query=%s\n", irQuery.c_str());
  return true;
}

bool IndSubscriptions::delQuery(IND_TYPE ipType, const std::string& irQuery) {
  fcbb::MutexLock lock(ivLock);
  QueryMap& queries = ivCqlSelectMap[ipType];
  const QueryMap::iterator found = queries.find(irQuery);
  if (found == queries.end()) return false;
  queries.erase(found);
  TRACE_DEBUG("deleted query=%s\n", irQuery.c_str());
  return true;
}

bool IndSubscriptions::isLifecycleIndEnabledFor(const std::string& irClassName,
                                                IND_TYPE ipType) const {
  fcbb::MutexLock lock(ivLock);
  for (const QueryMap::value_type& query : ivCqlSelectMap[ipType]) {
    const cql::CqlSelect& select = *query.second;
    if (!select.hasCondition()) return true;
    for (const cql::CqlTerm& term : select.terms()) {
      bool holds = true;
      for (const cql::CqlSearchFactor& factor : term) {
        if (!scimIsa(factor.right.text.c_str(), irClassName.c_str())) {
          holds = false;
          break;
        }
      }
      if (holds) return true;
    }
  }
  return false;
}

void IndSubscriptions::generateEventIdent(std::string& orIdent) {
  const time_t now = time(nullptr);
  char timeText[32] = "";
  ctime_r(&now, timeText);
  std::uint32_t number = 0;
  {
    fcbb::MutexLock lock(ivLock);
    number = ivEventIdentNr++;
  }
  char ident[50];
  std::snprintf(ident, sizeof ident, "%s_%08X", timeText, static_cast<unsigned>(number));
  orIdent = ident;
}

void IndSubscriptions::setFlag(bool& orFlag, bool ipOn) {
  fcbb::MutexLock lock(ivLock);
  orFlag = ipOn;
}

bool IndSubscriptions::getFlag(const bool& irFlag) const {
  fcbb::MutexLock lock(ivLock);
  return irFlag;
}

bool IndSubscriptions::isIsaCondition(const cql::CqlSelect& irSelect) {
  for (const cql::CqlTerm& term : irSelect.terms()) {
    for (const cql::CqlSearchFactor& factor : term) {
      if (factor.negated) {
        TRACE_ERROR(kUnit, "Unexpected operator NOT instead of property name\n");
        return false;
      }
      if (factor.left.kind != cql::CqlOperand::kIdentifier) {
        TRACE_ERROR(kUnit, "Unexpected expression instead of property name\n");
        return false;
      }
      if (factor.op != cql::CqlOperator::kIsa) {
        TRACE_ERROR(kUnit, "Unexpected operator %d instead of ISA\n", static_cast<int>(factor.op));
        return false;
      }
      if (!factor.right.isSimpleName()) {
        TRACE_ERROR(kUnit, "Unexpected expression instead of class name\n");
        return false;
      }
    }
  }
  return true;
}
