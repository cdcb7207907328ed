// cimhost::EncObject and cimhost::Encapsulated: the C++ side of every
// encapsulated CMPI object the broker makes (CMPIString, CMPIInstance, ...).
//
// A provider holds a pointer to the C struct {hdl, ft}, a member of the
// C++ object. The object is found from `hdl` alone, so a copy of the
// struct works like the original (some provider code wraps or copies
// it): hdl is the object itself, except for a CMPIString, whose hdl must
// be its characters (CMGetCharPtr) and which keeps its object pointer just
// before them. Whether a C struct was made here at all is told by its
// function table: each type has one table per broker mode, and
// Encapsulated<>::of() accepts only those.
//
// Ownership: an object either belongs to the broker's registry (everything
// handed to a provider: it lives until released or until the broker ends)
// or to the container that holds it (a property value inside an instance,
// an element of an array, ...), which frees it with itself. Values read
// from a container point into the container and must not be released.
//
// Every object belongs to one broker Core, which makes the objects its
// functions return (a class name string, a clone, a status message).
#ifndef QRX_TOOLS_CIMHOST_BROKER_ENCOBJECT_H_
#define QRX_TOOLS_CIMHOST_BROKER_ENCOBJECT_H_

#include <cstdint>
#include <memory>

#include "cmpift.h"
#include "tools/cimhost/broker/Status.h"

namespace cimhost {

class Core;

class EncObject {
 public:
  virtual ~EncObject() = default;

  EncObject(const EncObject&) = delete;
  EncObject& operator=(const EncObject&) = delete;

  Core* core() const { return ivCore; }

  // The address of the C struct providers hold (the registry's key).
  virtual const void* handle() const = 0;

  // An independent deep copy belonging to `ipCore`, not registered; NULL
  // for a type that cannot be copied (a recording result).
  virtual std::unique_ptr<EncObject> copyTo(Core* ipCore) const = 0;

 protected:
  explicit EncObject(Core* ipCore) : ivCore(ipCore) {}

 private:
  friend class Registry;

  Core* ivCore;
  uint64_t ivRegistrySeq = 0;  // the registry's sequence number; 0 while not registered
};

// Base of the concrete object types. `Self` provides
//   static const FT* table(const Core*);     the table for the core's mode
//   static bool isOwnTable(const FT* ipFt);  whether `ipFt` is one of them
// and may hide fromHdl() when its hdl is not the object itself.
template <class Self, class C, class FT>
class Encapsulated : public EncObject {
 public:
  // The C struct. Mutable: CMPI hands out non-const pointers to objects
  // that the caller sees through const ones.
  C* cmpi() const { return &ivEnc; }

  const void* handle() const override { return &ivEnc; }

  // The object behind `ipC` if this library made it; NULL for NULL or for
  // an object of another implementation.
  static Self* of(const C* ipC) {
    if (!ipC || !ipC->hdl || !Self::isOwnTable(ipC->ft)) return nullptr;
    return Self::fromHdl(ipC->hdl);
  }

  // As of(), and sets *opRc (when not NULL) to CMPI_RC_ERR_INVALID_HANDLE
  // when there is no such object.
  static Self* of(const C* ipC, CMPIStatus* opRc) {
    Self* self = of(ipC);
    if (!self) setStatus(opRc, nullptr, Status(CMPI_RC_ERR_INVALID_HANDLE, ""));
    return self;
  }

  static Self* fromHdl(void* ipHdl) {
    return static_cast<Self*>(static_cast<EncObject*>(ipHdl));
  }

 protected:
  explicit Encapsulated(Core* ipCore) : EncObject(ipCore) {
    ivEnc.hdl = static_cast<EncObject*>(this);
    ivEnc.ft = const_cast<FT*>(Self::table(ipCore));
  }

  void setHdl(void* ipHdl) { ivEnc.hdl = ipHdl; }

 private:
  mutable C ivEnc;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_ENCOBJECT_H_
