// libFuzzer target of the readers of client data: an instance, an object
// path or an argument list is built through the in-process broker from the
// fuzzer's bytes, as a client's request would bring it, and read into a
// model object the way the providers read them (CMPIDeserializer,
// CMPIObjPathDeserializer, and CMPIDataDeserializer through the method
// argument readers).
//
// Input: a 16-bit class index (into the model classes), a byte for the
// kind (instance, path, arguments), then values until the input ends: a
// byte for the name (one of the class's properties, or a name from the
// input) and a value of any CMPI type, null, an array, a reference or an
// embedded instance among them, built from the bytes that follow.
//
// An instance or path that reads without error must write back into a new
// one and read from that to the same object.
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "cmpimacs.h"
#include "common/base/trace.h"
#include "generated/scimclasses.h"
#include "generated/scimclasstree.h"
#include "provider/CMPIDeserializer.h"
#include "provider/CMPISerializer.h"
#include "provider/ProviderGlue.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/support/ModelText.h"
#include "tools/cimhost/broker/ClassHierarchy.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace {

using qrxfuzz::FuzzInput;

const char* const kNameSpace = "root/qrx";
constexpr int kMaxValues = 24;
constexpr int kMaxDepth = 2;
constexpr std::size_t kMaxElements = 16;

cimhost::ClassHierarchy* gClasses = nullptr;

// The top-level property names of a model object, from its text form.
std::vector<std::string> propertyNames(const SCIMSerdesable& irObject) {
  std::vector<std::string> names;
  std::istringstream lines(modelText(irObject));
  std::string line;
  while (std::getline(lines, line)) {
    if (line.empty() || line[0] == ' ') continue;
    names.push_back(line.substr(0, line.find(' ')));
  }
  return names;
}

const char* pickClass(FuzzInput& irInput) {
  return scimModelClassNames[irInput.u16() % scimModelClassCount];
}

// Builds values from the input.
class ValueMaker {
 public:
  explicit ValueMaker(cimhost::TestBroker& irBroker) : ivrBroker(irBroker) {}

  // A value and its type; null value pointer for a NULL value.
  struct Made {
    CMPIValue value;
    CMPIValue* pointer;
    CMPIType type;
  };

  Made make(FuzzInput& irInput, int ipDepth) {
    static const CMPIType kScalars[] = {
        CMPI_uint8,  CMPI_uint16, CMPI_uint32, CMPI_uint64,  CMPI_sint8,   CMPI_sint16,
        CMPI_sint32, CMPI_sint64, CMPI_real32, CMPI_real64,  CMPI_boolean, CMPI_char16,
        CMPI_string, CMPI_chars,  CMPI_dateTime, CMPI_ref,   CMPI_instance};
    constexpr std::size_t kScalarCount = sizeof kScalars / sizeof kScalars[0];
    Made made;
    made.pointer = &made.value;
    const std::size_t choice = irInput.pick(kScalarCount * 2 + 1);
    if (choice == kScalarCount * 2) {  // NULL, of any type
      made.type = kScalars[irInput.pick(kScalarCount)];
      made.pointer = nullptr;
      return made;
    }
    made.type = kScalars[choice % kScalarCount];
    if (choice >= kScalarCount) {  // an array of that type
      made.value.array = makeArray(irInput, made.type, ipDepth);
      made.type |= CMPI_ARRAY;
      return made;
    }
    made.value = scalar(irInput, made.type, ipDepth);
    return made;
  }

 private:
  CMPIValue scalar(FuzzInput& irInput, CMPIType ipType, int ipDepth) {
    CMPIValue value;
    value.uint64 = 0;
    switch (ipType) {
      case CMPI_uint8: value.uint8 = irInput.byte(); break;
      case CMPI_sint8: value.sint8 = static_cast<CMPISint8>(irInput.byte()); break;
      case CMPI_boolean: value.boolean = irInput.byte(); break;
      case CMPI_uint16: value.uint16 = irInput.u16(); break;
      case CMPI_sint16: value.sint16 = static_cast<CMPISint16>(irInput.u16()); break;
      case CMPI_char16: value.char16 = irInput.u16(); break;
      case CMPI_uint32: value.uint32 = irInput.u32(); break;
      case CMPI_sint32: value.sint32 = static_cast<CMPISint32>(irInput.u32()); break;
      case CMPI_uint64: value.uint64 = irInput.u64(); break;
      case CMPI_sint64: value.sint64 = static_cast<CMPISint64>(irInput.u64()); break;
      case CMPI_real32: {
        const std::uint32_t bits = irInput.u32();
        static_assert(sizeof value.real32 == sizeof bits, "IEEE single");
        std::memcpy(&value.real32, &bits, sizeof bits);
        break;
      }
      case CMPI_real64: {
        const std::uint64_t bits = irInput.u64();
        static_assert(sizeof value.real64 == sizeof bits, "IEEE double");
        std::memcpy(&value.real64, &bits, sizeof bits);
        break;
      }
      case CMPI_string: value.string = ivrBroker.newString(text(irInput).c_str()); break;
      case CMPI_chars:
        ivTexts.push_back(text(irInput));
        value.chars = const_cast<char*>(ivTexts.back().c_str());
        break;
      case CMPI_dateTime:
        if (irInput.byte() & 1) {
          value.dateTime = CMNewDateTimeFromChars(ivrBroker.broker(), text(irInput).c_str(), nullptr);
        } else {
          const CMPIUint64 usec = irInput.u64();
          value.dateTime = CMNewDateTimeFromBinary(ivrBroker.broker(), usec, irInput.byte() & 1, nullptr);
        }
        break;
      case CMPI_ref: value.ref = ipDepth < kMaxDepth ? path(irInput, ipDepth + 1) : nullptr; break;
      case CMPI_instance:
        value.inst = ipDepth < kMaxDepth ? instance(irInput, ipDepth + 1) : nullptr;
        break;
      default: break;
    }
    return value;
  }

  CMPIArray* makeArray(FuzzInput& irInput, CMPIType ipType, int ipDepth) {
    const std::size_t count = irInput.pick(kMaxElements + 1);
    CMPIArray* array = CMNewArray(ivrBroker.broker(), static_cast<CMPICount>(count), ipType, nullptr);
    if (array == nullptr) return nullptr;
    for (std::size_t i = 0; i < count && !irInput.done(); ++i) {
      if (irInput.byte() == 0) continue;  // left NULL
      CMPIValue element = scalar(irInput, ipType, ipDepth);
      CMSetArrayElementAt(array, static_cast<CMPICount>(i), &element, ipType);
    }
    return array;
  }

 public:
  // A name: one of `irNames`, or from the input.
  std::string name(FuzzInput& irInput, const std::vector<std::string>& irNames) {
    const std::uint8_t choice = irInput.byte();
    if (choice >= 0xF0 || irNames.empty()) return text(irInput);
    return irNames[choice % irNames.size()];
  }

  // A path of a class picked from the input, with up to three keys.
  CMPIObjectPath* path(FuzzInput& irInput, int ipDepth) {
    const std::string className = pickClass(irInput);
    return keyedPath(irInput, className, static_cast<int>(irInput.pick(4)), ipDepth);
  }
  // An instance of a class picked from the input, with up to three values.
  CMPIInstance* instance(FuzzInput& irInput, int ipDepth) {
    const std::string className = pickClass(irInput);
    return filledInstance(irInput, className, static_cast<int>(irInput.pick(4)), ipDepth);
  }

  // A path of `irClass` with up to `ipCount` keys.
  CMPIObjectPath* keyedPath(FuzzInput& irInput, const std::string& irClass, int ipCount, int ipDepth) {
    CMPIObjectPath* path = ivrBroker.newObjectPath(kNameSpace, irClass.c_str());
    addValues(irInput, irClass + "_Key", ipCount, ipDepth,
              [path](const char* ipName, const CMPIValue* ipValue, CMPIType ipType) {
                CMAddKey(path, ipName, ipValue, ipType);
              });
    return path;
  }
  // An instance of `irClass` with up to `ipCount` values.
  CMPIInstance* filledInstance(FuzzInput& irInput, const std::string& irClass, int ipCount,
                               int ipDepth) {
    CMPIInstance* instance = ivrBroker.newInstance(ivrBroker.newObjectPath(kNameSpace, irClass.c_str()));
    addValues(irInput, irClass, ipCount, ipDepth,
              [instance](const char* ipName, const CMPIValue* ipValue, CMPIType ipType) {
                CMSetProperty(instance, ipName, ipValue, ipType);
              });
    return instance;
  }
  // Up to `ipCount` values named after the properties of the model class
  // `irModel` (or from the input), each handed to `irAdd`.
  template <class Add>
  void addValues(FuzzInput& irInput, const std::string& irModel, int ipCount, int ipDepth,
                 const Add& irAdd) {
    std::unique_ptr<SCIMSerdesable> object(createCimObject(irModel));
    const std::vector<std::string> names = object ? propertyNames(*object) : std::vector<std::string>();
    for (int i = 0; i < ipCount && !irInput.done(); ++i) {
      const std::string valueName = name(irInput, names);
      Made made = make(irInput, ipDepth);
      irAdd(valueName.c_str(), made.pointer, made.type);
    }
  }

 private:
  static std::string text(FuzzInput& irInput) {
    std::string text = irInput.text();
    return text.substr(0, text.find('\0'));
  }

  cimhost::TestBroker& ivrBroker;
  std::deque<std::string> ivTexts;  // CMPI_chars point into these
};

// Writes `irObject` into a new instance (or path) and reads it back.
void checkRoundTrip(cimhost::TestBroker& irBroker, const SCIMSerdesable& irObject, bool ipPath) {
  std::unique_ptr<SCIMSerdesable> again(createCimObject(irObject.getClassName()));
  CMPIObjectPath* path = irBroker.newObjectPath(kNameSpace, irObject.getCIMClassName().c_str());
  if (ipPath) {
    CMPIObjPathSerializer writer(irBroker.broker(), path);
    irObject.serialize(writer);
    assert(!writer.hasError());
    CMPIObjPathDeserializer reader(path);
    again->deserialize(reader);
    assert(!reader.hasError());
  } else {
    CMPIInstance* instance = irBroker.newInstance(path);
    CMPISerializer writer(irBroker.broker(), instance);
    irObject.serialize(writer);
    assert(!writer.hasError());
    CMPIDeserializer reader(instance);
    again->deserialize(reader);
    assert(!reader.hasError());
  }
  assert(modelText(*again) == modelText(irObject));
}

// Reads every argument the way the generated method glue reads a
// parameter of some type.
void readArguments(FuzzInput& irInput, const CMPIArgs* ipArgs, const std::vector<std::string>& irNames) {
  for (const std::string& name : irNames) {
    CMPIStatus rc = {CMPI_RC_OK, nullptr};
    switch (irInput.pick(7)) {
      case 0: { cstring v; readMethodArg(ipArgs, name.c_str(), CMPI_string, v, &rc); break; }
      case 1: { cuint16 v = 0; readMethodArg(ipArgs, name.c_str(), CMPI_uint16, v, &rc); break; }
      case 2: { cuint32 v = 0; readMethodArg(ipArgs, name.c_str(), CMPI_uint32, v, &rc); break; }
      case 3: { cboolean v = 0; readMethodArg(ipArgs, name.c_str(), CMPI_boolean, v, &rc); break; }
      case 4: { cstring_A v; readMethodArg(ipArgs, name.c_str(), CMPI_stringA, v, &rc); break; }
      case 5: { cuint16_A v; readMethodArg(ipArgs, name.c_str(), CMPI_uint16A, v, &rc); break; }
      default: {
        std::unique_ptr<SCIMSerdesable> key(
            createCimObject(std::string(pickClass(irInput)) + "_Key"));
        if (key) readMethodRefArg(ipArgs, name.c_str(), *key, &rc);
        break;
      }
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  trace_open("/dev/null");
  gClasses = new cimhost::ClassHierarchy;
  std::string error;
  if (!gClasses->loadMofFile(QRX_HIERARCHY_MOF, &error)) {
    std::fprintf(stderr, "cmpi_fuzz: %s\n", error.c_str());
    std::abort();
  }
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* ipData, std::size_t ipSize) {
  FuzzInput input(ipData, ipSize);
  cimhost::TestBroker broker(gClasses);
  ValueMaker maker(broker);
  const std::string className = pickClass(input);
  switch (input.pick(3)) {
    case 0: {  // an instance from a client
      std::unique_ptr<SCIMSerdesable> object(createCimObject(className));
      CMPIDeserializer reader(maker.filledInstance(input, className, kMaxValues, 0));
      object->deserialize(reader);
      if (!reader.hasError()) checkRoundTrip(broker, *object, false);
      break;
    }
    case 1: {  // an object path from a client
      std::unique_ptr<SCIMSerdesable> key(createCimObject(className + "_Key"));
      if (!key) break;
      CMPIObjPathDeserializer reader(maker.keyedPath(input, className, kMaxValues, 0));
      key->deserialize(reader);
      if (!reader.hasError()) checkRoundTrip(broker, *key, true);
      break;
    }
    default: {  // method arguments from a client
      std::unique_ptr<SCIMSerdesable> object(createCimObject(className));
      CMPIArgs* args = broker.newArgs();
      std::vector<std::string> added;
      const std::vector<std::string> names = propertyNames(*object);
      for (int i = 0; i < kMaxValues / 2 && !input.done(); ++i) {
        added.push_back(maker.name(input, names));
        ValueMaker::Made made = maker.make(input, 0);
        CMAddArg(args, added.back().c_str(), made.pointer, made.type);
      }
      readArguments(input, args, added);
      break;
    }
  }
  return 0;
}
