// Formatting of the broker's default messages (getMessage, getMessage2).
//
// The arguments arrive as the CMFmtArgsN() macros pass them: `count`
// pairs of a type code (int) and a value of the C type its CMFmtX() macro
// casts to: CMPI_sint32 long, CMPI_uint32 unsigned long, CMPI_sint64 long
// long, CMPI_uint64 unsigned long long, CMPI_real64 double, CMPI_boolean
// int, CMPI_chars char*, CMPI_string CMPIString*. In the message, "$n"
// (n a single digit) becomes the n-th argument (from 0) as text: numbers
// in decimal, booleans true/false, strings as they are (NULL as "NULL");
// "$n" without an n-th argument stays as written. Any other type code is
// CMPI_RC_ERR_INVALID_PARAMETER (the remaining arguments cannot be read).
#ifndef QRX_TOOLS_CIMHOST_BROKER_MESSAGEFORMAT_H_
#define QRX_TOOLS_CIMHOST_BROKER_MESSAGEFORMAT_H_

#include <cstdarg>
#include <string>

#include "cmpift.h"
#include "tools/cimhost/broker/Status.h"

namespace cimhost {

Status formatMessage(const char* ipDefault, CMPICount ipCount, va_list ipArgs, std::string* opText);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_MESSAGEFORMAT_H_
