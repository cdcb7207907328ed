// Typed values from command-line words, for method arguments and the
// properties of a new instance:
//
//   NAME=VALUE          a string, taken as it is
//   NAME:TYPE=VALUE     TYPE as ScalarText.h names it; for ref, VALUE is an
//                       object path text (PathText.h)
//   NAME:TYPE[]=A,B,... an array; an element in double quotes may hold
//                       commas, and \" or \\ inside it; NAME:TYPE[]= is an
//                       empty array
//
// Examples: RequestedState:uint16=3  Force:boolean=TRUE
//           Members:string[]="a,b",c  Job:ref='QRX_Job.InstanceID="j1"'
#ifndef QRX_TOOLS_CIMHOST_ARGUMENTTEXT_H_
#define QRX_TOOLS_CIMHOST_ARGUMENTTEXT_H_

#include <string>
#include <vector>

#include "cmpift.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace cimhost {

// One named, typed value; its objects (strings, arrays, paths, date-times)
// are made by the broker and live as long as it does.
struct TypedValue {
  std::string name;
  CMPIType type = CMPI_null;  // CMPI_ARRAY is set for arrays
  CMPIValue value{};
};

// Reads one NAME[:TYPE]=VALUE word. Object paths of ref values are made in
// `irNameSpace` unless they name one. False with *opError set.
bool parseTypedValue(TestBroker& irBroker, const std::string& irText,
                     const std::string& irNameSpace, TypedValue* opValue, std::string* opError);

// Reads every word; a name given twice is an error. False with *opError set.
bool parseTypedValues(TestBroker& irBroker, const std::vector<std::string>& irTexts,
                      const std::string& irNameSpace, std::vector<TypedValue>* opValues,
                      std::string* opError);

// Splits an array text into its elements, as described above.
bool splitArrayText(const std::string& irText, std::vector<std::string>* opElements,
                    std::string* opError);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_ARGUMENTTEXT_H_
