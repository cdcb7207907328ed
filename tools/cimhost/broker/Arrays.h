// cimhost::EncArray: CMPIArray, a fixed-size array of values of one
// element type.
//
// The element type is the CMPIType given at creation with any CMPI_ARRAY
// bit dropped and CMPI_chars stored as CMPI_string. Elements start null
// (state CMPI_nullValue). setElementAt() copies the value as Values.h
// describes; the type passed must be the element type (CMPI_chars for a
// string array) or CMPI_null, which makes the element null. An index past
// the end is CMPI_RC_ERR_NO_SUCH_PROPERTY, a wrong type
// CMPI_RC_ERR_TYPE_MISMATCH.
#ifndef QRX_TOOLS_CIMHOST_BROKER_ARRAYS_H_
#define QRX_TOOLS_CIMHOST_BROKER_ARRAYS_H_

#include <memory>
#include <vector>

#include "tools/cimhost/broker/EncObject.h"
#include "tools/cimhost/broker/Values.h"

namespace cimhost {

class EncArray : public Encapsulated<EncArray, CMPIArray, CMPIArrayFT> {
 public:
  // `ipSize` null elements of `ipType`; CMPI_RC_ERR_INVALID_DATA_TYPE for a
  // type that cannot be an element.
  static Status make(Core* ipCore, CMPICount ipSize, CMPIType ipType,
                     std::unique_ptr<EncArray>* opOut);

  // An array holding `ipElements`, which must all be of `ipType` (stored form).
  static std::unique_ptr<EncArray> make(Core* ipCore, CMPIType ipType,
                                        std::vector<Value> ipElements);

  CMPIType elementType() const { return ivElementType; }
  size_t size() const { return ivElements.size(); }
  const Value& at(size_t ipIndex) const { return ivElements[ipIndex]; }

  Status set(CMPICount ipIndex, const CMPIValue* ipValue, CMPIType ipType);

  std::unique_ptr<EncArray> copy(Core* ipCore) const;
  std::unique_ptr<EncObject> copyTo(Core* ipCore) const override { return copy(ipCore); }

  static const CMPIArrayFT* table(const Core* ipCore);
  static bool isOwnTable(const CMPIArrayFT* ipFt);

 private:
  EncArray(Core* ipCore, CMPIType ipType, std::vector<Value> ipElements);

  const CMPIType ivElementType;
  std::vector<Value> ivElements;
};

// Whether arrays may hold elements of `ipType` (a non-array type).
bool isArrayElementType(CMPIType ipType);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_ARRAYS_H_
