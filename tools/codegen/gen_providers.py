"""Provider glue: per class with a generated provider, <C>_Provider.

scimproviders/<C>_Provider.h declares the provider type (its names,
brokers, model types and MI operations) and the exported factories;
scimproviders/<C>_Provider.cpp defines them. The generic work is done by the
templates of provider/ProviderGlue.h; what is generated here is what
differs per class: names, literal texts, and the method dispatch.
"""

from gen_backend import header_path as backend_header
from gen_classes import BANNER

UNIT = "generated/scimproviders"


def header_path(name):
    return "generated/scimproviders/%s_Provider.h" % name


def guard(name):
    return "QRX_GENERATED_SCIMPROVIDERS_%s_PROVIDER_H_" % name.upper()


def factories(cls):
    """(MI kind, CMPI MI type) of each factory the class exports."""
    kinds = [("Instance", "CMPIInstanceMI")]
    if cls.kind == "association":
        kinds.append(("Association", "CMPIAssociationMI"))
    if cls.methods:
        kinds.append(("Method", "CMPIMethodMI"))
    return kinds


def factory_signature(cls, kind, mi_type):
    return ("%s* %s_Provider_Create_%sMI(const CMPIBroker* broker, const CMPIContext* ctx,\n"
            "    CMPIStatus* rc)") % (mi_type, cls.name, kind)


INSTANCE_OPS = """\
  // Instance MI.
  static CMPIStatus cleanup(CMPIInstanceMI* mi, const CMPIContext* ctx, CMPIBoolean terminating);
  static CMPIStatus enumInstanceNames(CMPIInstanceMI* mi, const CMPIContext* ctx,
                                      const CMPIResult* rslt, const CMPIObjectPath* ref);
  static CMPIStatus enumInstances(CMPIInstanceMI* mi, const CMPIContext* ctx,
                                  const CMPIResult* rslt, const CMPIObjectPath* ref,
                                  const char** properties);
  static CMPIStatus getInstance(CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                                const CMPIObjectPath* op, const char** properties);
  static CMPIStatus createInstance(CMPIInstanceMI* mi, const CMPIContext* ctx,
                                   const CMPIResult* rslt, const CMPIObjectPath* cop,
                                   const CMPIInstance* ci);
  static CMPIStatus modifyInstance(CMPIInstanceMI* mi, const CMPIContext* ctx,
                                   const CMPIResult* rslt, const CMPIObjectPath* cop,
                                   const CMPIInstance* ci, const char** properties);
  static CMPIStatus deleteInstance(CMPIInstanceMI* mi, const CMPIContext* ctx,
                                   const CMPIResult* rslt, const CMPIObjectPath* cop);
  static CMPIStatus execQuery(CMPIInstanceMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                              const CMPIObjectPath* ref, const char* query, const char* lang);
"""

ASSOCIATION_OPS = """\

  // Association MI.
  static CMPIStatus assocCleanup(CMPIAssociationMI* mi, const CMPIContext* ctx,
                                 CMPIBoolean terminating);
  static CMPIStatus associators(CMPIAssociationMI* mi, const CMPIContext* ctx,
                                const CMPIResult* rslt, const CMPIObjectPath* cop,
                                const char* assocClass, const char* resultClass,
                                const char* role, const char* resultRole,
                                const char** properties);
  static CMPIStatus associatorNames(CMPIAssociationMI* mi, const CMPIContext* ctx,
                                    const CMPIResult* rslt, const CMPIObjectPath* cop,
                                    const char* assocClass, const char* resultClass,
                                    const char* role, const char* resultRole);
  static CMPIStatus references(CMPIAssociationMI* mi, const CMPIContext* ctx,
                               const CMPIResult* rslt, const CMPIObjectPath* cop,
                               const char* resultClass, const char* role,
                               const char** properties);
  static CMPIStatus referenceNames(CMPIAssociationMI* mi, const CMPIContext* ctx,
                                   const CMPIResult* rslt, const CMPIObjectPath* cop,
                                   const char* resultClass, const char* role);
"""

METHOD_OPS = """\

  // Method MI.
  static CMPIStatus methodCleanup(CMPIMethodMI* mi, const CMPIContext* ctx,
                                  CMPIBoolean terminating);
  static CMPIStatus invokeMethod(CMPIMethodMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                                 const CMPIObjectPath* op, const char* methodName,
                                 const CMPIArgs* in, CMPIArgs* out);
"""


def header(cls):
    n = cls.name
    out = BANNER % ("schema/" + cls.source)
    out += "#ifndef %s\n#define %s\n\n#include <atomic>\n\n" % (guard(n), guard(n))
    out += "#include \"cmpift.h\"\n#include \"%s\"\n" % backend_header(n)
    if cls.kind == "association":
        for end in cls.ends:
            out += "#include \"%s\"\n" % header_path(end.type.ref_class)
    out += "#include \"provider/ProviderGlue.h\"\n\n"
    out += "// The CMPI provider of %s: static members only, never instantiated.\n" % n
    out += "struct %s_Provider : ProviderBase<%s, %s_Key> {\n" % (n, n, n)
    out += ("  using classT = {0};\n  using keyT = {0}_Key;\n  using classArrayT = {0}_Array;\n"
            "  using keyArrayT = {0}_KeyArray;\n  using backendT = {0}_Best;\n\n").format(n)
    out += "  static constexpr const char* className = \"%s\";\n" % n
    out += "  static constexpr const char* providerName = \"%s_Provider\";\n" % n
    out += ("  // Stored by the factories; read by every operation.\n"
            "  static inline std::atomic<const CMPIBroker*> broker{nullptr};\n")
    if cls.methods:
        out += "  static inline std::atomic<const CMPIBroker*> methodBroker{nullptr};\n"
    if cls.kind == "association":
        left, right = cls.ends
        out += "  static inline std::atomic<const CMPIBroker*> assocBroker{nullptr};\n\n"
        out += "  static constexpr const char* refLeft = \"%s\";\n" % left.name
        out += "  static constexpr const char* refRight = \"%s\";\n" % right.name
        out += "  using leftProviderT = %s_Provider;\n" % left.type.ref_class
        out += "  using rightProviderT = %s_Provider;\n" % right.type.ref_class
    out += ("\n  // A new path of this class in the namespace of `ref`, keyed by `key`.\n"
            "  static CMPIObjectPath* makeObjPath(const CMPIBroker* b, const CMPIObjectPath* ref,\n"
            "                                    const keyT& key) {\n"
            "    return makeKeyedObjPath(b, ref, className, key);\n  }\n\n")
    out += INSTANCE_OPS
    if cls.kind == "association":
        out += ASSOCIATION_OPS
    if cls.methods:
        out += METHOD_OPS
    out += "};\n\nextern \"C\" {\n"
    for kind, mi_type in factories(cls):
        out += factory_signature(cls, kind, mi_type) + ";\n"
    out += "}\n\n#endif  // %s\n" % guard(n)
    return out


INSTANCE_SOURCE = """\
CMPIStatus {P}::cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {{
  return okStatus();
}}

CMPIStatus {P}::enumInstanceNames(CMPIInstanceMI*, const CMPIContext*,
                                  const CMPIResult* rslt, const CMPIObjectPath* ref) {{
  static const std::string sampleTag = std::string(providerName) + ".enumInstanceNames";
  AutoTimeStat sample(sampleTag);
  CMPIStatus rc = okStatus();
  TRACE_DEBUG_AT(providerName, "enumInstanceNames", "class={C} ref=%s\\n", objPathText(ref));
  backendEnumInstanceNames<{P}>(rslt, ref, &rc);
  if (rc.rc == CMPI_RC_OK) {{
    CMReturnDone(rslt);
  }} else {{
    TRACE_ERROR_AT(kUnit, providerName, "enumInstanceNames", "{C}.backendEnumInstanceNames failed rc=%d\\n", rc.rc);
  }}
  return rc;
}}

CMPIStatus {P}::enumInstances(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* rslt,
                              const CMPIObjectPath* ref, const char** properties) {{
  static const std::string sampleTag = std::string(providerName) + ".enumInstances";
  AutoTimeStat sample(sampleTag);
  CMPIStatus rc = okStatus();
  TRACE_DEBUG_AT(providerName, "enumInstances", "class={C} ref=%s\\n", objPathText(ref));
  backendEnumInstances<{P}>(rslt, ref, properties, &rc);
  if (rc.rc == CMPI_RC_OK) {{
    CMReturnDone(rslt);
  }} else {{
    TRACE_ERROR_AT(kUnit, providerName, "enumInstances", "{C}.backendEnumInstances() failed rc=%d\\n", rc.rc);
  }}
  return rc;
}}

CMPIStatus {P}::getInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* rslt,
                            const CMPIObjectPath* op, const char** properties) {{
  CMPIStatus rc = okStatus();
  TRACE_DEBUG_AT(providerName, "getInstance", "class={C} op=%s\\n", objPathText(op));
  backendGetInstance<{P}>(rslt, op, properties, &rc);
  if (rc.rc == CMPI_RC_OK) {{
    CMReturnDone(rslt);
  }} else {{
    TRACE_ERROR_AT(kUnit, providerName, "getInstance", "{C}.backendGetInstance() failed rc=%d op=%s\\n", rc.rc, objPathText(op));
  }}
  return rc;
}}

CMPIStatus {P}::createInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* rslt,
                               const CMPIObjectPath* cop, const CMPIInstance* ci) {{
  CMPIStatus rc = okStatus();
  TRACE_DEBUG_AT(providerName, "createInstance", "class={C} cop=%s\\n", objPathText(cop));
  classT object;
  fillModelObject(ci, object, &rc);
  if (rc.rc != CMPI_RC_OK) {{
    // The client's instance does not fit the class: nothing is created.
    TRACE_ERROR_AT(kUnit, providerName, "createInstance", "{C}.createInstance() unreadable instance rc=%d cop=%s\\n", rc.rc,
                objPathText(cop));
    return rc;
  }}
  keyT newKey;
  if (!backendT::singleton.createInstance(object, newKey)) {{
    setStatus(&rc, broker, CMPI_RC_ERR_FAILED, "backendCreateInstance() failed");
    return rc;
  }}
  // Written on success too; log readers know the line.
  TRACE_ERROR_AT(kUnit, providerName, "createInstance", "{C}.createInstance() failed rc=%d cop=%s\\n", rc.rc, objPathText(cop));
  CMReturnObjectPath(rslt, makeObjPath(broker, cop, newKey));
  CMReturnDone(rslt);
  return rc;
}}

CMPIStatus {P}::modifyInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                               const CMPIObjectPath*, const CMPIInstance*, const char**) {{
  CMPIStatus rc = {{CMPI_RC_ERR_NOT_SUPPORTED, nullptr}};
  return rc;
}}

CMPIStatus {P}::deleteInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                               const CMPIObjectPath* cop) {{
  CMPIStatus rc = okStatus();
  TRACE_DEBUG_AT(providerName, "deleteInstance", "class={C} cop=%s\\n", objPathText(cop));
  keyT key;
  getKeyFromObjPath(cop, key, &rc);
  if (rc.rc != CMPI_RC_OK) {{
    TRACE_ERROR_AT(kUnit, providerName, "deleteInstance", "{C}.deleteInstance() unreadable key rc=%d cop=%s\\n", rc.rc,
                objPathText(cop));
    return rc;
  }}
  if (!backendT::singleton.deleteInstance(key)) {{
    setStatus(&rc, broker, CMPI_RC_ERR_FAILED, "{C}.backendDeleteInstance() failed");
  }}
  return rc;
}}

CMPIStatus {P}::execQuery(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*, const char*, const char*) {{
  CMPIStatus rc = {{CMPI_RC_ERR_NOT_SUPPORTED, nullptr}};
  return rc;
}}
"""

ASSOCIATION_SOURCE = """
CMPIStatus {P}::assocCleanup(CMPIAssociationMI*, const CMPIContext*, CMPIBoolean) {{
  return okStatus();
}}

CMPIStatus {P}::associators(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                            const CMPIObjectPath* cop, const char* assocClass,
                            const char* resultClass, const char* role, const char* resultRole,
                            const char** properties) {{
  TRACE_DEBUG_AT(providerName, "associators", "class={C} cop=%s assocClass=%s\\n", objPathText(cop), assocClass ? assocClass : "");
  return associatorsHelper<{P}>(rslt, cop, assocClass, resultClass, role, resultRole, properties,
                                true);
}}

CMPIStatus {P}::associatorNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                                const CMPIObjectPath* cop, const char* assocClass,
                                const char* resultClass, const char* role,
                                const char* resultRole) {{
  TRACE_DEBUG_AT(providerName, "associatorNames", "class={C} cop=%s assocClass=%s\\n", objPathText(cop), assocClass ? assocClass : "");
  return associatorsHelper<{P}>(rslt, cop, assocClass, resultClass, role, resultRole, nullptr,
                                false);
}}

CMPIStatus {P}::references(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                           const CMPIObjectPath* cop, const char* resultClass, const char* role,
                           const char** properties) {{
  TRACE_DEBUG_AT(providerName, "references", "class={C} cop=%s assocClass=%s\\n", objPathText(cop), resultClass ? resultClass : "");
  return referencesHelper<{P}>(rslt, cop, resultClass, role, properties, true);
}}

CMPIStatus {P}::referenceNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                               const CMPIObjectPath* cop, const char* resultClass,
                               const char* role) {{
  TRACE_DEBUG_AT(providerName, "referenceNames", "class={C} cop=%s assocClass=%s\\n", objPathText(cop), resultClass ? resultClass : "");
  return referencesHelper<{P}>(rslt, cop, resultClass, role, nullptr, false);
}}
"""

METHOD_HEAD = """
CMPIStatus {P}::methodCleanup(CMPIMethodMI*, const CMPIContext*, CMPIBoolean) {{
  return okStatus();
}}

CMPIStatus {P}::invokeMethod(CMPIMethodMI*, const CMPIContext*, const CMPIResult* rslt,
                             const CMPIObjectPath* op, const char* methodName,
                             const CMPIArgs* in, CMPIArgs* out) {{
  static const std::string sampleTag = std::string(providerName) + ".invokeMethod";
  AutoTimeStat sample(sampleTag);
  (void)in;
  (void)out;
  CMPIStatus rc = okStatus();
  keyT key;
  getKeyFromObjPath(op, key, &rc);
  if (rc.rc != CMPI_RC_OK) {{
    TRACE_ERROR_AT(kUnit, providerName, "invokeMethod", "No object key found\\n");
    return rc;
  }}
  const char* method = methodName != nullptr ? methodName : "";
  CMPIUint32 returnValue = 1;
  bool known = true;
  TRACE_DEBUG_AT(providerName, "invokeMethod", "Enter Function for method name: %s.%s\\n", className, method);
"""

METHOD_TAIL = """  }} else {{
    known = false;  // an unknown name answers 1 and calls nothing
  }}
  CMReturnData(rslt, &returnValue, CMPI_uint32);
  CMReturnDone(rslt);
  if (known) sample.setTag(sampleTag + "." + method);
  return okStatus();
}}
"""


def read_input(param):
    name = param.name
    local = "ip" + name
    if param.type.ref_class:
        return ("    %s %s;\n"
                "    if (!readMethodRefArg(in, \"%s\", %s, &rc)) {\n"
                "      TRACE_ERROR_AT(kUnit, providerName, \"invokeMethod\", \"Failed to read input var %s from objpath\\n\");\n"
                "      return rc;\n    }\n") % (param.type.cpp, local, name, local, param.type.ref_class)
    return ("    %s %s{};\n"
            "    if (!readMethodArg(in, \"%s\", %s, %s, &rc)) {\n"
            "      TRACE_ERROR_AT(kUnit, providerName, \"invokeMethod\", \"Failed to read input var %s\\n\");\n"
            "      return rc;\n    }\n") % (param.type.cpp, local, name, param.type.cmpi, local, name)


def add_output(param):
    name = param.name
    local = "op" + name
    if param.type.ref_class:
        call = "addMethodRefArg(methodBroker, op, out, \"%s\", \"%s\", %s, &rc)" % (
            name, param.type.ref_class, local)
    elif param.type.name == "string[]":
        call = "addMethodStringArrayArg(methodBroker, out, \"%s\", %s, &rc)" % (name, local)
    else:
        raise ValueError("output %s: only references and string arrays are returned" % name)
    return ("    if (!%s) {\n"
            "      TRACE_ERROR_AT(kUnit, providerName, \"invokeMethod\", \"Failed to add output var %s\\n\");\n"
            "      return rc;\n    }\n") % (call, name)


def method_branch(method, first):
    out = "  %sif (strcmp(method, \"%s\") == 0) {\n" % ("" if first else "} else ", method.name)
    inputs = [p for p in method.params if p.direction == "in"]
    outputs = [p for p in method.params if p.direction == "out"]
    out += "".join(read_input(p) for p in inputs)
    out += "".join("    %s op%s;\n" % (p.type.cpp, p.name) for p in outputs)
    args = ", ".join(["key"] + [("ip" if p.direction == "in" else "op") + p.name
                                for p in method.params])
    out += "    CMPIUint32 result = backendT::singleton.%s(%s);\n" % (method.name, args)
    out += ("    if (!methodSucceeded(methodBroker, result, \"%s failed\", &rc)) return rc;\n"
            "    returnValue = 0;\n") % method.name
    out += "".join(add_output(p) for p in outputs)
    return out


def factory_source(cls, kind, mi_type):
    n = cls.name
    table = {"Instance": "instMIFT", "Association": "assocMIFT", "Method": "methMIFT"}[kind]
    slots = {
        "Instance": ["cleanup", "enumInstanceNames", "enumInstances", "getInstance",
                     "createInstance", "modifyInstance", "deleteInstance", "execQuery"],
        "Association": ["assocCleanup", "associators", "associatorNames", "references",
                        "referenceNames"],
        "Method": ["methodCleanup", "invokeMethod"],
    }[kind]
    stored = {"Instance": "broker", "Association": "assocBroker", "Method": "methodBroker"}[kind]
    loaded = {"Instance": "Instance", "Association": "Association",
              "Method": "MethodInvocation"}[kind]
    out = "\n" + factory_signature(cls, kind, mi_type) + " {\n"
    out += "  (void)ctx;\n"
    out += "  static %sFT %s = {\n      200, 200, nullptr,\n" % (mi_type, table)
    out += "".join("      %s_Provider::%s,\n" % (n, s) for s in slots)
    out += "  };\n"
    out += "  static %s mi = {nullptr, &%s};\n" % (mi_type, table)
    out += "  static std::once_flag named;\n"
    out += "  std::call_once(named, [] { %s.miName = %s_Provider::providerName; });\n" % (table, n)
    out += "  %s_Provider::%s = broker;\n" % (n, stored)
    if kind != "Instance":
        out += ("  // Messages of this kind's operations may use the instance broker, which\n"
                "  // an object manager that never loaded the instance MI has not given.\n"
                "  const CMPIBroker* none = nullptr;\n"
                "  %s_Provider::broker.compare_exchange_strong(none, broker);\n" % n)
    out += "  trace_log(false, \"Info: loaded %s %s\\n\");\n" % (loaded, n)
    out += "  if (rc != nullptr) *rc = okStatus();\n"
    out += "  return &mi;\n}\n"
    return out


def source(cls):
    n = cls.name
    p = n + "_Provider"
    out = BANNER % ("schema/" + cls.source)
    out += "#include \"%s\"\n\n#include <cstring>\n#include <mutex>\n#include <string>\n\n" % header_path(n)
    out += "namespace {\n\nconst char kUnit[] = \"%s\";\n\n}  // namespace\n\n" % UNIT
    out += INSTANCE_SOURCE.format(P=p, C=n)
    if cls.kind == "association":
        out += ASSOCIATION_SOURCE.format(P=p, C=n)
    if cls.methods:
        out += METHOD_HEAD.format(P=p)
        for i, method in enumerate(cls.methods):
            out += method_branch(method, i == 0)
        out += METHOD_TAIL.format()
    out += "\nextern \"C\" {\n"
    for kind, mi_type in factories(cls):
        out += factory_source(cls, kind, mi_type)
    out += "}\n"
    return out


def generate(schema):
    files = {}
    for name, cls in schema.classes.items():
        if cls.generated_provider:
            files["scimproviders/%s_Provider.h" % name] = header(cls)
            files["scimproviders/%s_Provider.cpp" % name] = source(cls)
    return files
