/*
 * A provider library for the qrx-cim end-to-end tests. Its providers echo
 * what they receive, so that the tests see what the host passed:
 *
 *   QRX_CimHostTest (instance, method): names and instances with one
 *     property of each kind; getInstance copies the request's keys into the
 *     instance and lists their types in KeyTypes; createInstance returns a
 *     path whose keys are the new instance's properties. A key Id of
 *     "missing", "silent", "nodone" or "twice" makes the provider fail with
 *     a message, fail without one, forget returnDone, or call it twice.
 *     Method Sum returns the sum of its uint16 arguments and echoes the path
 *     and each argument's type.
 *   QRX_CimHostTestLink, QRX_CimHostTestAlso, QRX_UnrelatedLink
 *     (association): each answers with one object that names its class in
 *     By and echoes the filters (Filter1..4, in the order the function
 *     takes them) and the property list; Id "linkfail" fails the Link
 *     class, "assocfail" both Link and Also.
 *   QRX_CimHostTestBroken: its instance factory fails.
 *   QRX_CimHostTestAlert: an indication provider that does nothing.
 *
 * When QRX_ECHO_PROVIDER_LOG names a file, each factory and cleanup call
 * appends a line to it ("create instance QRX_CimHostTest", "cleanup ...").
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "cmpimacs.h"

/* Provider functions ignore most of their parameters, as providers do. */
#pragma GCC diagnostic ignored "-Wunused-parameter"

static const CMPIBroker *_broker;

static void logCall(const char *what, const char *kind, const char *cls) {
  const char *file = getenv("QRX_ECHO_PROVIDER_LOG");
  FILE *out = file ? fopen(file, "a") : NULL;
  if (!out) return;
  fprintf(out, "%s %s %s\n", what, kind, cls);
  fclose(out);
}

/* Appends "Name:type" (type as "uint16", "string[]", ...) to `out`. */
static void appendTyped(char *out, size_t size, const char *name, CMPIType type) {
  static const struct { CMPIType type; const char *name; } names[] = {
      {CMPI_boolean, "boolean"}, {CMPI_uint8, "uint8"},     {CMPI_uint16, "uint16"},
      {CMPI_uint32, "uint32"},   {CMPI_uint64, "uint64"},   {CMPI_sint8, "sint8"},
      {CMPI_sint16, "sint16"},   {CMPI_sint32, "sint32"},   {CMPI_sint64, "sint64"},
      {CMPI_real32, "real32"},   {CMPI_real64, "real64"},   {CMPI_char16, "char16"},
      {CMPI_string, "string"},   {CMPI_dateTime, "datetime"}, {CMPI_ref, "ref"},
  };
  const char *typeText = "other";
  size_t i;
  for (i = 0; i < sizeof(names) / sizeof(names[0]); i++) {
    if (names[i].type == (type & ~CMPI_ARRAY)) typeText = names[i].name;
  }
  snprintf(out + strlen(out), size - strlen(out), "%s%s:%s%s", *out ? "," : "", name, typeText,
           type & CMPI_ARRAY ? "[]" : "");
}

/* The string key or property `name`, "" when absent. */
static const char *keyText(const CMPIObjectPath *op, const char *name) {
  CMPIStatus rc = {CMPI_RC_OK, NULL};
  CMPIData d = CMGetKey(op, name, &rc);
  if (rc.rc != CMPI_RC_OK || d.type != CMPI_string || (d.state & CMPI_nullValue)) return "";
  return CMGetCharPtr(d.value.string);
}

static const char *nameSpaceOf(const CMPIObjectPath *op) {
  return CMGetCharPtr(CMGetNameSpace(op, NULL));
}

/* The property list as a string array property; null when there is none. */
static void setPropertyList(CMPIInstance *inst, const char **props) {
  CMPICount n = 0, i;
  CMPIArray *list;
  if (!props) {
    CMSetProperty(inst, "PropertyList", NULL, CMPI_stringA);
    return;
  }
  while (props[n]) n++;
  list = CMNewArray(_broker, n, CMPI_string, NULL);
  for (i = 0; i < n; i++) CMSetArrayElementAt(list, i, props[i], CMPI_chars);
  CMSetProperty(inst, "PropertyList", &list, CMPI_stringA);
}

static CMPIObjectPath *testPath(const char *ns, const char *id, CMPIUint16 num) {
  CMPIObjectPath *op = CMNewObjectPath(_broker, ns, "QRX_CimHostTest", NULL);
  CMAddKey(op, "Id", id, CMPI_chars);
  CMAddKey(op, "Num", &num, CMPI_uint16);
  return op;
}

/* Fails as key Id asks; returns 1 when it did. */
static int failsOnRequest(const CMPIObjectPath *op, CMPIStatus *st) {
  const char *id = keyText(op, "Id");
  if (strcmp(id, "missing") == 0) {
    st->rc = CMPI_RC_ERR_NOT_FOUND;
    st->msg = CMNewString(_broker, "no instance missing", NULL);
    return 1;
  }
  if (strcmp(id, "silent") == 0) {
    st->rc = CMPI_RC_ERR_FAILED;
    st->msg = NULL;
    return 1;
  }
  return 0;
}

/* Ends a successful call the way key Id asks. */
static CMPIStatus done(const CMPIResult *rslt, const CMPIObjectPath *op) {
  CMPIStatus ok = {CMPI_RC_OK, NULL};
  const char *id = keyText(op, "Id");
  if (strcmp(id, "nodone") != 0) CMReturnDone(rslt);
  if (strcmp(id, "twice") == 0) CMReturnDone(rslt);
  return ok;
}

/* ---- QRX_CimHostTest: instances ---------------------------------------- */

static CMPIStatus TestCleanup(CMPIInstanceMI *mi, const CMPIContext *ctx, CMPIBoolean term) {
  logCall(term ? "cleanup-terminating" : "cleanup", "instance", "QRX_CimHostTest");
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus TestEnumInstanceNames(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                        const CMPIResult *rslt, const CMPIObjectPath *ref) {
  CMLogMessage(_broker, 1, "QRX_CimHostTest", "enumerating names", NULL);
  CMReturnObjectPath(rslt, testPath(nameSpaceOf(ref), "a", 1));
  CMReturnObjectPath(rslt, testPath(nameSpaceOf(ref), "b \"q\"", 2));
  return done(rslt, ref);
}

static CMPIStatus TestEnumInstances(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                    const CMPIResult *rslt, const CMPIObjectPath *ref,
                                    const char **props) {
  CMPIObjectPath *op = testPath(nameSpaceOf(ref), "a", 1);
  CMPIInstance *inst = CMNewInstance(_broker, op, NULL);
  CMPIInstance *inner = CMNewInstance(_broker, testPath(nameSpaceOf(ref), "inner", 9), NULL);
  CMPIArray *names = CMNewArray(_broker, 2, CMPI_string, NULL);
  CMPIUint64 big = 18446744073709551615ULL;
  CMPISint32 neg = -5;
  CMPIReal32 ratio = 0.1f;
  CMPIBoolean flag = 1;
  CMPIUint16 num = 1;
  CMPIDateTime *when = CMNewDateTimeFromChars(_broker, "20240131120000.000000+060", NULL);

  CMSetProperty(inst, "Id", "a", CMPI_chars);
  CMSetProperty(inst, "Num", &num, CMPI_uint16);
  CMSetProperty(inst, "Flag", &flag, CMPI_boolean);
  CMSetProperty(inst, "Big", &big, CMPI_uint64);
  CMSetProperty(inst, "Neg", &neg, CMPI_sint32);
  CMSetProperty(inst, "Ratio", &ratio, CMPI_real32);
  CMSetArrayElementAt(names, 0, "x", CMPI_chars);
  CMSetArrayElementAt(names, 1, "y,z", CMPI_chars);
  CMSetProperty(inst, "Names", &names, CMPI_stringA);
  CMSetProperty(inst, "When", &when, CMPI_dateTime);
  CMSetProperty(inst, "Self", &op, CMPI_ref);
  CMSetProperty(inst, "Nothing", NULL, CMPI_string);
  CMSetProperty(inner, "Note", "nested", CMPI_chars);
  CMSetProperty(inst, "Inner", &inner, CMPI_instance);
  setPropertyList(inst, props);
  CMReturnInstance(rslt, inst);

  inst = CMNewInstance(_broker, testPath(nameSpaceOf(ref), "b", 2), NULL);
  CMSetProperty(inst, "Id", "b", CMPI_chars);
  CMReturnInstance(rslt, inst);
  return done(rslt, ref);
}

static CMPIStatus TestGetInstance(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                  const CMPIResult *rslt, const CMPIObjectPath *ref,
                                  const char **props) {
  CMPIStatus st = {CMPI_RC_OK, NULL};
  CMPIInstance *inst;
  CMPICount i, n = CMGetKeyCount(ref, NULL);
  char types[512] = "";
  CMPIData ctxNs = CMGetContextEntry(ctx, CMPIInitNameSpace, NULL);
  if (failsOnRequest(ref, &st)) return st;
  inst = CMNewInstance(_broker, ref, NULL);
  for (i = 0; i < n; i++) {
    CMPIString *name = NULL;
    CMPIData key = CMGetKeyAt(ref, i, &name, NULL);
    CMSetProperty(inst, CMGetCharPtr(name), &key.value, key.type);
    appendTyped(types, sizeof(types), CMGetCharPtr(name), key.type);
  }
  CMSetProperty(inst, "KeyTypes", types, CMPI_chars);
  CMSetProperty(inst, "ContextNameSpace", &ctxNs.value, ctxNs.type);
  setPropertyList(inst, props);
  CMReturnInstance(rslt, inst);
  return done(rslt, ref);
}

static CMPIStatus TestCreateInstance(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                     const CMPIResult *rslt, const CMPIObjectPath *ref,
                                     const CMPIInstance *inst) {
  CMPIObjectPath *op = CMNewObjectPath(_broker, nameSpaceOf(ref), "QRX_CimHostTest", NULL);
  CMPICount i, n = CMGetPropertyCount(inst, NULL);
  char pathKeys[16];
  for (i = 0; i < n; i++) {
    CMPIString *name = NULL;
    CMPIData prop = CMGetPropertyAt(inst, i, &name, NULL);
    CMAddKey(op, CMGetCharPtr(name), &prop.value, prop.type);
  }
  /* How many keys the host put into the request's path. */
  snprintf(pathKeys, sizeof(pathKeys), "%u", (unsigned)CMGetKeyCount(ref, NULL));
  CMAddKey(op, "PathKeys", pathKeys, CMPI_chars);
  CMReturnObjectPath(rslt, op);
  CMReturnDone(rslt);
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus TestModifyInstance(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                     const CMPIResult *rslt, const CMPIObjectPath *ref,
                                     const CMPIInstance *inst, const char **props) {
  CMReturn(CMPI_RC_ERR_NOT_SUPPORTED);
}

static CMPIStatus TestDeleteInstance(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                     const CMPIResult *rslt, const CMPIObjectPath *ref) {
  CMPIStatus st = {CMPI_RC_OK, NULL};
  if (failsOnRequest(ref, &st)) return st;
  return done(rslt, ref);
}

static CMPIStatus TestExecQuery(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                const CMPIResult *rslt, const CMPIObjectPath *ref,
                                const char *query, const char *lang) {
  CMReturn(CMPI_RC_ERR_NOT_SUPPORTED);
}

static CMPIInstanceMIFT testInstanceFT = {
    CMPICurrentVersion, CMPICurrentVersion, "instanceQRX_CimHostTest",
    TestCleanup,        TestEnumInstanceNames, TestEnumInstances,
    TestGetInstance,    TestCreateInstance,    TestModifyInstance,
    TestDeleteInstance, TestExecQuery,
};

CMPIInstanceMI *QRX_CimHostTest_Provider_Create_InstanceMI(const CMPIBroker *brkr,
                                                          const CMPIContext *ctx,
                                                          CMPIStatus *rc) {
  static CMPIInstanceMI mi = {NULL, &testInstanceFT};
  _broker = brkr;
  logCall("create", "instance", "QRX_CimHostTest");
  return &mi;
}

/* ---- QRX_CimHostTest: methods ------------------------------------------ */

static CMPIStatus TestMethodCleanup(CMPIMethodMI *mi, const CMPIContext *ctx, CMPIBoolean term) {
  logCall(term ? "cleanup-terminating" : "cleanup", "method", "QRX_CimHostTest");
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus TestInvokeMethod(CMPIMethodMI *mi, const CMPIContext *ctx,
                                   const CMPIResult *rslt, const CMPIObjectPath *ref,
                                   const char *method, const CMPIArgs *in, CMPIArgs *out) {
  CMPICount i, n = CMGetArgCount(in, NULL);
  CMPIUint32 sum = 0;
  CMPIArray *types = CMNewArray(_broker, n, CMPI_string, NULL);
  if (strcmp(method, "Sum") != 0) {
    CMReturnWithChars(_broker, CMPI_RC_ERR_METHOD_NOT_FOUND, method);
  }
  for (i = 0; i < n; i++) {
    CMPIString *name = NULL;
    CMPIData arg = CMGetArgAt(in, i, &name, NULL);
    char text[128] = "";
    if (arg.type == CMPI_uint16) sum += arg.value.uint16;
    appendTyped(text, sizeof(text), CMGetCharPtr(name), arg.type);
    CMSetArrayElementAt(types, i, text, CMPI_chars);
  }
  CMAddArg(out, "Echo", &ref, CMPI_ref);
  CMAddArg(out, "Types", &types, CMPI_stringA);
  CMReturnData(rslt, &sum, CMPI_uint32);
  CMReturnDone(rslt);
  CMReturn(CMPI_RC_OK);
}

static CMPIMethodMIFT testMethodFT = {
    CMPICurrentVersion, CMPICurrentVersion, "methodQRX_CimHostTest",
    TestMethodCleanup,  TestInvokeMethod,
};

CMPIMethodMI *QRX_CimHostTest_Provider_Create_MethodMI(const CMPIBroker *brkr,
                                                      const CMPIContext *ctx, CMPIStatus *rc) {
  static CMPIMethodMI mi = {NULL, &testMethodFT};
  _broker = brkr;
  logCall("create", "method", "QRX_CimHostTest");
  return &mi;
}

/* ---- Associations: one implementation, the class name in hdl ------------ */

static const char *assocClass(const CMPIAssociationMI *mi) { return (const char *)mi->hdl; }

/* Fails as key Id asks for this association class. */
static int assocFails(const CMPIAssociationMI *mi, const CMPIObjectPath *op, CMPIStatus *st) {
  const char *id = keyText(op, "Id");
  const char *cls = assocClass(mi);
  if (strcmp(id, "assocfail") == 0 && strcmp(cls, "QRX_CimHostTestAlso") == 0) {
    st->rc = CMPI_RC_ERR_NOT_SUPPORTED;
    st->msg = CMNewString(_broker, "also unsupported", NULL);
    return 1;
  }
  if ((strcmp(id, "assocfail") == 0 || strcmp(id, "linkfail") == 0) &&
      strcmp(cls, "QRX_CimHostTestLink") == 0) {
    st->rc = CMPI_RC_ERR_FAILED;
    st->msg = CMNewString(_broker, "link broken", NULL);
    return 1;
  }
  return 0;
}

/* An object of `cls` that echoes the association call: its Source and
   Peer refer to the source object, By names the association class. */
static CMPIInstance *echoInstance(const CMPIAssociationMI *mi, const CMPIObjectPath *op,
                                  const char *cls, const char *filter1, const char *filter2,
                                  const char *filter3, const char *filter4, const char **props) {
  CMPIObjectPath *path = CMNewObjectPath(_broker, nameSpaceOf(op), cls, NULL);
  CMPIInstance *inst;
  CMAddKey(path, "Source", &op, CMPI_ref);
  CMAddKey(path, "By", assocClass(mi), CMPI_chars);
  inst = CMNewInstance(_broker, path, NULL);
  CMSetProperty(inst, "Source", &op, CMPI_ref);
  CMSetProperty(inst, "Peer", &op, CMPI_ref);
  CMSetProperty(inst, "By", assocClass(mi), CMPI_chars);
  CMSetProperty(inst, "Filter1", filter1, CMPI_chars);
  CMSetProperty(inst, "Filter2", filter2, CMPI_chars);
  CMSetProperty(inst, "Filter3", filter3, CMPI_chars);
  CMSetProperty(inst, "Filter4", filter4, CMPI_chars);
  setPropertyList(inst, props);
  return inst;
}

static CMPIStatus AssocCleanup(CMPIAssociationMI *mi, const CMPIContext *ctx, CMPIBoolean term) {
  logCall(term ? "cleanup-terminating" : "cleanup", "association", assocClass(mi));
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus AssocAssociators(CMPIAssociationMI *mi, const CMPIContext *ctx,
                                   const CMPIResult *rslt, const CMPIObjectPath *op,
                                   const char *assoc, const char *result, const char *role,
                                   const char *resultRole, const char **props) {
  CMPIStatus st = {CMPI_RC_OK, NULL};
  if (assocFails(mi, op, &st)) return st;
  CMReturnInstance(rslt,
                   echoInstance(mi, op, "QRX_CimHostTestPeer", assoc, result, role, resultRole, props));
  return done(rslt, op);
}

static CMPIStatus AssocAssociatorNames(CMPIAssociationMI *mi, const CMPIContext *ctx,
                                       const CMPIResult *rslt, const CMPIObjectPath *op,
                                       const char *assoc, const char *result, const char *role,
                                       const char *resultRole) {
  CMPIStatus st = {CMPI_RC_OK, NULL};
  if (assocFails(mi, op, &st)) return st;
  CMReturnObjectPath(rslt, testPath(nameSpaceOf(op), assocClass(mi), 7));
  return done(rslt, op);
}

static CMPIStatus AssocReferences(CMPIAssociationMI *mi, const CMPIContext *ctx,
                                  const CMPIResult *rslt, const CMPIObjectPath *op,
                                  const char *result, const char *role, const char **props) {
  CMPIStatus st = {CMPI_RC_OK, NULL};
  if (assocFails(mi, op, &st)) return st;
  CMReturnInstance(rslt, echoInstance(mi, op, assocClass(mi), result, role, NULL, NULL, props));
  return done(rslt, op);
}

static CMPIStatus AssocReferenceNames(CMPIAssociationMI *mi, const CMPIContext *ctx,
                                      const CMPIResult *rslt, const CMPIObjectPath *op,
                                      const char *result, const char *role) {
  CMPIStatus st = {CMPI_RC_OK, NULL};
  CMPIObjectPath *path;
  if (assocFails(mi, op, &st)) return st;
  path = CMNewObjectPath(_broker, nameSpaceOf(op), assocClass(mi), NULL);
  CMAddKey(path, "Source", &op, CMPI_ref);
  CMAddKey(path, "Role", role ? role : "", CMPI_chars);
  CMReturnObjectPath(rslt, path);
  return done(rslt, op);
}

static CMPIAssociationMIFT assocFT = {
    CMPICurrentVersion, CMPICurrentVersion, "associationQRX_CimHostTest",
    AssocCleanup,       AssocAssociators,   AssocAssociatorNames,
    AssocReferences,    AssocReferenceNames,
};

#define ASSOCIATION_FACTORY(cls)                                                         \
  CMPIAssociationMI *cls##_Provider_Create_AssociationMI(const CMPIBroker *brkr,         \
                                                         const CMPIContext *ctx,         \
                                                         CMPIStatus *rc) {               \
    static CMPIAssociationMI mi = {(void *)#cls, &assocFT};                              \
    _broker = brkr;                                                                      \
    logCall("create", "association", #cls);                                              \
    return &mi;                                                                          \
  }

ASSOCIATION_FACTORY(QRX_CimHostTestLink)
ASSOCIATION_FACTORY(QRX_CimHostTestAlso)
ASSOCIATION_FACTORY(QRX_UnrelatedLink)

/* ---- QRX_CimHostTestBroken: a factory that fails ------------------------ */

CMPIInstanceMI *QRX_CimHostTestBroken_Provider_Create_InstanceMI(const CMPIBroker *brkr,
                                                                const CMPIContext *ctx,
                                                                CMPIStatus *rc) {
  logCall("create", "instance", "QRX_CimHostTestBroken");
  rc->rc = CMPI_RC_ERR_FAILED;
  rc->msg = CMNewString(brkr, "backend down", NULL);
  return NULL;
}

/* ---- QRX_CimHostTestAlert: indications --------------------------------- */

static CMPIStatus AlertCleanup(CMPIIndicationMI *mi, const CMPIContext *ctx, CMPIBoolean term) {
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus AlertFilter(CMPIIndicationMI *mi, const CMPIContext *ctx,
                              const CMPISelectExp *filter, const char *cls,
                              const CMPIObjectPath *op, const char *owner) {
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus AlertActivation(CMPIIndicationMI *mi, const CMPIContext *ctx,
                                  const CMPISelectExp *filter, const char *cls,
                                  const CMPIObjectPath *op, CMPIBoolean first) {
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus AlertPoll(CMPIIndicationMI *mi, const CMPIContext *ctx,
                            const CMPISelectExp *filter, const char *cls,
                            const CMPIObjectPath *op) {
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus AlertEnable(CMPIIndicationMI *mi, const CMPIContext *ctx) {
  CMReturn(CMPI_RC_OK);
}

static CMPIIndicationMIFT alertFT = {
    CMPICurrentVersion, CMPICurrentVersion, "IndicationQRX_CimHostTestAlert",
    AlertCleanup,       AlertFilter,        AlertPoll,
    AlertActivation,    AlertActivation,    AlertEnable,
    AlertEnable,
};

CMPIIndicationMI *QRX_CimHostTestAlert_Provider_Create_IndicationMI(const CMPIBroker *brkr,
                                                                   const CMPIContext *ctx,
                                                                   CMPIStatus *rc) {
  static CMPIIndicationMI mi = {NULL, &alertFT};
  return &mi;
}
