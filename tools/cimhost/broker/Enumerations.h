// cimhost::EncEnumeration: CMPIEnumeration over a copy of an array's
// elements.
//
// getNext() returns the elements in order (pointing into the enumeration)
// and then CMPI_RC_ERR_NOT_FOUND; hasNext() tells whether one is left.
// toArray() returns a new array of all elements, whatever the position.
// clone() copies the position too.
#ifndef QRX_TOOLS_CIMHOST_BROKER_ENUMERATIONS_H_
#define QRX_TOOLS_CIMHOST_BROKER_ENUMERATIONS_H_

#include <memory>
#include <vector>

#include "tools/cimhost/broker/Arrays.h"
#include "tools/cimhost/broker/EncObject.h"
#include "tools/cimhost/broker/Values.h"

namespace cimhost {

class EncEnumeration : public Encapsulated<EncEnumeration, CMPIEnumeration, CMPIEnumerationFT> {
 public:
  static std::unique_ptr<EncEnumeration> make(Core* ipCore, const EncArray& irItems);

  CMPIType elementType() const { return ivElementType; }
  size_t size() const { return ivItems.size(); }
  bool hasNext() const { return ivNext < ivItems.size(); }
  // The next element; requires hasNext().
  const Value& next() const { return ivItems[ivNext++]; }

  // A new array of all elements, not registered.
  std::unique_ptr<EncArray> toArray(Core* ipCore) const;

  std::unique_ptr<EncEnumeration> copy(Core* ipCore) const;
  std::unique_ptr<EncObject> copyTo(Core* ipCore) const override { return copy(ipCore); }

  static const CMPIEnumerationFT* table(const Core* ipCore);
  static bool isOwnTable(const CMPIEnumerationFT* ipFt);

 private:
  EncEnumeration(Core* ipCore, CMPIType ipType, std::vector<Value> ipItems);

  const CMPIType ivElementType;
  std::vector<Value> ivItems;
  mutable size_t ivNext = 0;  // CMPI advances through a const handle
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_ENUMERATIONS_H_
