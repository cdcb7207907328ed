// Test helpers over the serialisation interfaces, independent of CMPI:
//
//   modelText(object)   the object's properties as text, one line per
//                       property ("Name type value"), nested objects
//                       indented; two objects are equal when their texts are.
//   fillModel(object)   gives every property a value derived from its name
//                       and type, so that no two properties share a value
//                       and none is the default.
#ifndef QRX_TESTS_SUPPORT_MODELTEXT_H_
#define QRX_TESTS_SUPPORT_MODELTEXT_H_

#include <string>

#include "common/base/SCIMCommon.h"

std::string modelText(const SCIMSerdesable& object);
void fillModel(SCIMSerdesable& object);

#endif  // QRX_TESTS_SUPPORT_MODELTEXT_H_
