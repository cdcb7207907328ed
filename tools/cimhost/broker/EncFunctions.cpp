// CMPIBrokerEncFT: factories of encapsulated objects, type queries, text
// forms, messages, logging and tracing.
#include <strings.h>

#include <cstdarg>
#include <cstring>

#include "tools/cimhost/broker/Args.h"
#include "tools/cimhost/broker/Arrays.h"
#include "tools/cimhost/broker/BrokerTables.h"
#include "tools/cimhost/broker/Core.h"
#include "tools/cimhost/broker/DateTimes.h"
#include "tools/cimhost/broker/Errors.h"
#include "tools/cimhost/broker/Instances.h"
#include "tools/cimhost/broker/MessageFormat.h"
#include "tools/cimhost/broker/ObjectPaths.h"
#include "tools/cimhost/broker/Strings.h"
#include "tools/cimhost/broker/Types.h"
#include "tools/cimhost/broker/ValueText.h"

namespace cimhost {

namespace {

const Status kNoBroker(CMPI_RC_ERR_INVALID_HANDLE, "");

// The handle getMessage2() ignores: message files are not read.
char gMessageFile;

// Runs `body(core)` for a broker made here; R is a pointer type.
template <class R, class F>
R withCore(const CMPIBroker* mb, CMPIStatus* rc, F&& body) {
  Core* core = Core::of(mb);
  if (!core) {
    setStatus(rc, nullptr, kNoBroker);
    return R();
  }
  return guard(core, rc, R(), [&] { return body(core); });
}

// Registers a freshly made object, or reports why it was not made.
template <class T>
auto adoptOrFail(Core* ipCore, const Status& irStatus, std::unique_ptr<T> ipObject, CMPIStatus* rc)
    -> decltype(ipObject->cmpi()) {
  if (!irStatus.ok()) {
    setStatus(rc, ipCore, irStatus);
    return nullptr;
  }
  auto* out = ipCore->adopt(std::move(ipObject));
  setOk(rc);
  return out;
}

CMPIInstance* mbNewInstance(const CMPIBroker* mb, const CMPIObjectPath* op, CMPIStatus* rc) {
  return withCore<CMPIInstance*>(mb, rc, [&](Core* core) -> CMPIInstance* {
    const EncObjectPath* path = EncObjectPath::of(op);
    if (!path) {
      setStatus(
          rc, core,
          Status(CMPI_RC_ERR_INVALID_PARAMETER, "object path is NULL or not from this broker"));
      return nullptr;
    }
    if (path->className().empty()) {
      setStatus(rc, core, Status(CMPI_RC_ERR_INVALID_PARAMETER, "object path has no class name"));
      return nullptr;
    }
    return adoptOrFail(core, Status::OK(), EncInstance::make(core, *path), rc);
  });
}

CMPIObjectPath* mbNewObjectPath(const CMPIBroker* mb, const char* ns, const char* cn,
                                CMPIStatus* rc) {
  return withCore<CMPIObjectPath*>(mb, rc, [&](Core* core) -> CMPIObjectPath* {
    if (!cn || !*cn) {
      setStatus(rc, core, Status(CMPI_RC_ERR_INVALID_PARAMETER, "class name is NULL or empty"));
      return nullptr;
    }
    return adoptOrFail(core, Status::OK(), EncObjectPath::make(core, ns ? ns : "", cn), rc);
  });
}

CMPIArgs* mbNewArgs(const CMPIBroker* mb, CMPIStatus* rc) {
  return withCore<CMPIArgs*>(
      mb, rc, [&](Core* core) { return adoptOrFail(core, Status::OK(), EncArgs::make(core), rc); });
}

CMPIString* mbNewString(const CMPIBroker* mb, const char* data, CMPIStatus* rc) {
  return withCore<CMPIString*>(mb, rc, [&](Core* core) -> CMPIString* {
    if (!data) {
      setStatus(rc, core, Status(CMPI_RC_ERR_INVALID_PARAMETER, "string data is NULL"));
      return nullptr;
    }
    return adoptOrFail(core, Status::OK(), EncString::make(core, data, std::strlen(data)), rc);
  });
}

CMPIArray* mbNewArray(const CMPIBroker* mb, CMPICount max, CMPIType type, CMPIStatus* rc) {
  return withCore<CMPIArray*>(mb, rc, [&](Core* core) {
    std::unique_ptr<EncArray> array;
    Status status = EncArray::make(core, max, type, &array);
    return adoptOrFail(core, status, std::move(array), rc);
  });
}

CMPIDateTime* mbNewDateTime(const CMPIBroker* mb, CMPIStatus* rc) {
  return withCore<CMPIDateTime*>(mb, rc, [&](Core* core) {
    return adoptOrFail(core, Status::OK(), EncDateTime::now(core), rc);
  });
}

CMPIDateTime* mbNewDateTimeFromBinary(const CMPIBroker* mb, CMPIUint64 binTime,
                                      CMPIBoolean interval, CMPIStatus* rc) {
  return withCore<CMPIDateTime*>(mb, rc, [&](Core* core) {
    std::unique_ptr<EncDateTime> dt;
    Status status = EncDateTime::fromBinary(core, binTime, interval != 0, &dt);
    return adoptOrFail(core, status, std::move(dt), rc);
  });
}

CMPIDateTime* mbNewDateTimeFromChars(const CMPIBroker* mb, const char* datetime, CMPIStatus* rc) {
  return withCore<CMPIDateTime*>(mb, rc, [&](Core* core) -> CMPIDateTime* {
    if (!datetime) {
      setStatus(rc, core, Status(CMPI_RC_ERR_INVALID_PARAMETER, "date-time text is NULL"));
      return nullptr;
    }
    std::unique_ptr<EncDateTime> dt;
    Status status = EncDateTime::fromText(core, datetime, &dt);
    return adoptOrFail(core, status, std::move(dt), rc);
  });
}

CMPISelectExp* mbNewSelectExp(const CMPIBroker* mb, const char*, const char*,
                              CMPIArray** projection, CMPIStatus* rc) {
  if (projection) *projection = nullptr;
  setStatus(rc, Core::of(mb),
            Status(CMPI_RC_ERR_NOT_SUPPORTED, "this broker does not evaluate queries"));
  return nullptr;
}

CMPIBoolean mbClassPathIsA(const CMPIBroker* mb, const CMPIObjectPath* op, const char* type,
                           CMPIStatus* rc) {
  Core* core = Core::of(mb);
  if (!core) {
    setStatus(rc, nullptr, kNoBroker);
    return 0;
  }
  return guard(core, rc, CMPIBoolean(0), [&]() -> CMPIBoolean {
    const EncObjectPath* path = EncObjectPath::of(op);
    if (!path || !type) {
      setStatus(rc, core,
                Status(CMPI_RC_ERR_INVALID_PARAMETER,
                       path ? "type is NULL" : "object path is NULL or not from this broker"));
      return 0;
    }
    setOk(rc);
    const ClassHierarchy* classes = core->hierarchy();
    return classes && classes->isA(path->className(), type) ? 1 : 0;
  });
}

// The text of an object made here; false for a type without one.
bool objectText(const void* ipObject, const char* ipTypeName, std::string* opText) {
  const std::string type = ipTypeName;
  if (type == "CMPIObjectPath") {
    *opText = EncObjectPath::of(static_cast<const CMPIObjectPath*>(ipObject))->toText();
  } else if (type == "CMPIInstance") {
    *opText = EncInstance::of(static_cast<const CMPIInstance*>(ipObject))->toText();
  } else if (type == "CMPIString") {
    *opText = EncString::of(static_cast<const CMPIString*>(ipObject))->text();
  } else if (type == "CMPIArgs") {
    *opText = EncArgs::of(static_cast<const CMPIArgs*>(ipObject))->toText();
  } else if (type == "CMPIDateTime") {
    *opText = EncDateTime::of(static_cast<const CMPIDateTime*>(ipObject))->text();
  } else if (type == "CMPIArray") {
    const EncArray* array = EncArray::of(static_cast<const CMPIArray*>(ipObject));
    CMPIData data;
    data.type = static_cast<CMPIType>(array->elementType() | CMPI_ARRAY);
    data.state = CMPI_goodValue;
    data.value.array = array->cmpi();
    *opText = literalText(data);
  } else {
    return false;
  }
  return true;
}

CMPIString* mbToString(const CMPIBroker* mb, const void* object, CMPIStatus* rc) {
  return withCore<CMPIString*>(mb, rc, [&](Core* core) -> CMPIString* {
    const char* typeName = encTypeName(object);
    if (!typeName) {
      setStatus(rc, core,
                Status(CMPI_RC_ERR_INVALID_PARAMETER, "object is NULL or not from this broker"));
      return nullptr;
    }
    std::string text;
    if (!objectText(object, typeName, &text)) {
      setStatus(rc, core,
                Status(CMPI_RC_ERR_NOT_SUPPORTED, std::string("no text form for ") + typeName));
      return nullptr;
    }
    setOk(rc);
    return core->newString(text);
  });
}

CMPIBoolean mbIsOfType(const CMPIBroker* mb, const void* object, const char* type,
                       CMPIStatus* rc) {
  Core* core = Core::of(mb);
  if (!core) {
    setStatus(rc, nullptr, kNoBroker);
    return 0;
  }
  return guard(core, rc, CMPIBoolean(0), [&]() -> CMPIBoolean {
    if (!object || !type) {
      setStatus(rc, core, Status(CMPI_RC_ERR_INVALID_PARAMETER, "object or type is NULL"));
      return 0;
    }
    setOk(rc);
    const char* typeName = encTypeName(object);
    return typeName && std::strcmp(typeName, type) == 0 ? 1 : 0;
  });
}

CMPIString* mbGetType(const CMPIBroker* mb, const void* object, CMPIStatus* rc) {
  return withCore<CMPIString*>(mb, rc, [&](Core* core) -> CMPIString* {
    const char* typeName = encTypeName(object);
    if (!typeName) {
      setStatus(rc, core,
                Status(CMPI_RC_ERR_INVALID_PARAMETER, "object is NULL or not from this broker"));
      return nullptr;
    }
    setOk(rc);
    return core->newString(typeName);
  });
}

// getMessage() and getMessage2(): the default message, formatted.
CMPIString* formattedMessage(const CMPIBroker* mb, const char* defMsg, CMPIStatus* rc,
                             CMPICount count, va_list args) {
  return withCore<CMPIString*>(mb, rc, [&](Core* core) -> CMPIString* {
    std::string text;
    Status status = formatMessage(defMsg, count, args, &text);
    if (!status.ok()) {
      setStatus(rc, core, status);
      return nullptr;
    }
    setOk(rc);
    return core->newString(text);
  });
}

CMPIString* mbGetMessage(const CMPIBroker* mb, const char*, const char* defMsg, CMPIStatus* rc,
                         CMPICount count, ...) {
  va_list args;
  va_start(args, count);
  CMPIString* out = formattedMessage(mb, defMsg, rc, count, args);
  va_end(args);
  return out;
}

CMPIString* mbGetMessage2(const CMPIBroker* mb, const char*, const CMPIMsgFileHandle,
                          const char* defMsg, CMPIStatus* rc, CMPICount count, ...) {
  va_list args;
  va_start(args, count);
  CMPIString* out = formattedMessage(mb, defMsg, rc, count, args);
  va_end(args);
  return out;
}

// logMessage() and trace(): one log entry each.
CMPIStatus record(const CMPIBroker* mb, LogEntry::Kind ipKind, int ipLevel, const char* ipSource,
                  const char* ipText, const CMPIString* ipString) {
  Core* core = Core::of(mb);
  if (!core) return toCmpiStatus(nullptr, kNoBroker);
  return guardStatus(core, [&] {
    const char* text = ipText;
    if (!text && ipString) {
      const EncString* string = EncString::of(ipString);
      if (!string) {
        return Status(CMPI_RC_ERR_INVALID_PARAMETER, "message string not from this broker");
      }
      text = string->chars();
    }
    if (!text) return Status(CMPI_RC_ERR_INVALID_PARAMETER, "neither text nor string given");
    core->addLogEntry(LogEntry{ipKind, ipLevel, ipSource ? ipSource : "", text});
    return Status::OK();
  });
}

CMPIStatus mbLogMessage(const CMPIBroker* mb, int severity, const char* id, const char* text,
                        const CMPIString* string) {
  return record(mb, LogEntry::Kind::Message, severity, id, text, string);
}

CMPIStatus mbTrace(const CMPIBroker* mb, int level, const char* component, const char* text,
                   const CMPIString* string) {
  return record(mb, LogEntry::Kind::Trace, level, component, text, string);
}

CMPIError* mbNewCMPIError(const CMPIBroker* mb, const char* owner, const char* msgID,
                          const char* msg, const CMPIErrorSeverity sev,
                          const CMPIErrorProbableCause pc, const CMPIrc cimStatusCode,
                          CMPIStatus* rc) {
  return withCore<CMPIError*>(mb, rc, [&](Core* core) {
    std::unique_ptr<EncError> error = EncError::make(core);
    EncError::Fields& fields = error->fields();
    if (owner) fields.owningEntity = owner;
    if (msgID) fields.messageId = msgID;
    if (msg) fields.message = msg;
    fields.perceivedSeverity = sev;
    fields.probableCause = pc;
    fields.cimStatusCode = cimStatusCode;
    return adoptOrFail(core, Status::OK(), std::move(error), rc);
  });
}

CMPIStatus mbOpenMessageFile(const CMPIBroker* mb, const char* msgFile,
                             CMPIMsgFileHandle* msgFileHandle) {
  Core* core = Core::of(mb);
  if (!core) return toCmpiStatus(nullptr, kNoBroker);
  if (!msgFile || !msgFileHandle) {
    return toCmpiStatus(core, Status(CMPI_RC_ERR_INVALID_PARAMETER,
                                     "message file name or handle pointer is NULL"));
  }
  *msgFileHandle = &gMessageFile;
  return okStatus();
}

CMPIStatus mbCloseMessageFile(const CMPIBroker* mb, const CMPIMsgFileHandle msgFileHandle) {
  Core* core = Core::of(mb);
  if (!core) return toCmpiStatus(nullptr, kNoBroker);
  if (msgFileHandle != &gMessageFile) {
    return toCmpiStatus(core, Status(CMPI_RC_ERR_INVALID_PARAMETER,
                                     "not a handle from openMessageFile()"));
  }
  return okStatus();
}

constexpr CMPIBrokerEncFT makeTable(int ipVersion, bool ipCmpi200) {
  return CMPIBrokerEncFT{ipVersion,
                         mbNewInstance,
                         mbNewObjectPath,
                         mbNewArgs,
                         mbNewString,
                         mbNewArray,
                         mbNewDateTime,
                         mbNewDateTimeFromBinary,
                         mbNewDateTimeFromChars,
                         mbNewSelectExp,
                         mbClassPathIsA,
                         mbToString,
                         mbIsOfType,
                         mbGetType,
                         mbGetMessage,
                         mbLogMessage,
                         mbTrace,
                         ipCmpi200 ? mbNewCMPIError : nullptr,
                         ipCmpi200 ? mbOpenMessageFile : nullptr,
                         ipCmpi200 ? mbCloseMessageFile : nullptr,
                         ipCmpi200 ? mbGetMessage2 : nullptr};
}

const CMPIBrokerEncFT kTable200 = makeTable(CMPIVersion200, true);
const CMPIBrokerEncFT kTable100 = makeTable(CMPIVersion100, false);

}  // namespace

const CMPIBrokerEncFT* encFunctions(BrokerMode ipMode) {
  return ipMode == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

}  // namespace cimhost
