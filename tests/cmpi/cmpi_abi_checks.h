/*
 * Compile-time pins of the CMPI 2.0 binary interface: sizes, member offsets
 * and function-table slot positions as an object manager built on its own
 * copy of the standard headers expects them. Included from C and C++, and
 * compiled for 64-bit and 32-bit targets; any drift fails the build.
 */
#ifndef QRX_TESTS_CMPI_ABI_CHECKS_H_
#define QRX_TESTS_CMPI_ABI_CHECKS_H_

#include <stddef.h>

#include "cmpidt.h"
#include "cmpift.h"

#ifdef __cplusplus
#define ABI_CHECK(cond, what) static_assert(cond, what)
#else
#define ABI_CHECK(cond, what) _Static_assert(cond, what)
#endif

#define PTR ((size_t)sizeof(void *))

/* Objects and function tables that begin with `int ftVersion`: function n
   (counted from 1) sits in pointer slot n on 32-bit and 64-bit hosts. */
#define FT_SLOT(T, m, n) ABI_CHECK(offsetof(T, m) == (n) * PTR, #T "." #m " must be function " #n)
#define FT_SIZE(T, n) ABI_CHECK(sizeof(T) == ((n) + 1) * PTR, #T " must hold " #n " functions")

/* MI tables and the broker table begin with two ints and a name. */
#define MI_SLOT(T, m, n) \
  ABI_CHECK(offsetof(T, m) == 8 + (n) * PTR, #T "." #m " must be function " #n)
#define MI_SIZE(T, n) ABI_CHECK(sizeof(T) == 8 + ((n) + 1) * PTR, #T " must hold " #n " functions")

#define OFFSET(T, m, off) ABI_CHECK(offsetof(T, m) == (off), #T "." #m " must be at " #off)
#define SIZE(T, size) ABI_CHECK(sizeof(T) == (size), #T " must be " #size " bytes")

/* ---- Scalars, values and data items -------------------------------- */

SIZE(CMPIBoolean, 1);
SIZE(CMPIChar16, 2);
SIZE(CMPIUint8, 1);
SIZE(CMPIUint16, 2);
SIZE(CMPIUint32, 4);
SIZE(CMPIUint64, 8);
SIZE(CMPISint8, 1);
SIZE(CMPISint16, 2);
SIZE(CMPISint32, 4);
SIZE(CMPISint64, 8);
SIZE(CMPIReal32, 4);
SIZE(CMPIReal64, 8);
SIZE(CMPICount, 4);
SIZE(CMPIType, 2);
SIZE(CMPIValueState, 2);
SIZE(CMPIFlags, 4);
SIZE(CMPIrc, 4);
SIZE(CMPIPredOp, 4);
SIZE(CMPIErrorType, 4);
SIZE(CMPIErrorSeverity, 4);
SIZE(CMPIErrorProbableCause, 4);
SIZE(CMPIErrorSrcFormat, 4);

OFFSET(CMPIValuePtr, ptr, 0);
OFFSET(CMPIValuePtr, length, PTR);
SIZE(CMPIValuePtr, 2 * PTR);

OFFSET(CMPIData, type, 0);
OFFSET(CMPIData, state, 2);
#if defined(__x86_64__) || defined(__aarch64__) || defined(__powerpc64__)
SIZE(CMPIValue, 16);
OFFSET(CMPIData, value, 8);
SIZE(CMPIData, 24);
#elif defined(__i386__)
/* The i386 ABI aligns 64-bit members of structures to 4 bytes. */
SIZE(CMPIValue, 8);
OFFSET(CMPIData, value, 4);
SIZE(CMPIData, 12);
#elif defined(__powerpc__) || defined(__arm__)
SIZE(CMPIValue, 8);
OFFSET(CMPIData, value, 8);
SIZE(CMPIData, 16);
#else
#error "no CMPIData layout recorded for this target"
#endif

OFFSET(CMPIStatus, rc, 0);
OFFSET(CMPIStatus, msg, PTR);
SIZE(CMPIStatus, 2 * PTR);

/* ---- Type codes, states and return codes --------------------------- */

ABI_CHECK(CMPI_null == 0 && CMPI_boolean == 0x0002 && CMPI_char16 == 0x0003, "simple types");
ABI_CHECK(CMPI_real32 == 0x0008 && CMPI_real64 == 0x000C, "real types");
ABI_CHECK(CMPI_uint8 == 0x0080 && CMPI_uint16 == 0x0090 && CMPI_uint32 == 0x00A0 &&
              CMPI_uint64 == 0x00B0, "unsigned types");
ABI_CHECK(CMPI_sint8 == 0x00C0 && CMPI_sint16 == 0x00D0 && CMPI_sint32 == 0x00E0 &&
              CMPI_sint64 == 0x00F0, "signed types");
ABI_CHECK(CMPI_instance == 0x1000 && CMPI_ref == 0x1100 && CMPI_args == 0x1200 &&
              CMPI_class == 0x1300 && CMPI_filter == 0x1400 && CMPI_enumeration == 0x1500,
          "encapsulated types");
ABI_CHECK(CMPI_string == 0x1600 && CMPI_chars == 0x1700 && CMPI_dateTime == 0x1800 &&
              CMPI_ptr == 0x1900 && CMPI_charsptr == 0x1A00, "string and pointer types");
ABI_CHECK(CMPI_ARRAY == 0x2000 && CMPI_stringA == 0x3600 && CMPI_uint16A == 0x2090 &&
              CMPI_refA == 0x3100 && CMPI_instanceA == 0x3000, "array types");
ABI_CHECK(CMPI_keyInteger == CMPI_sint64 && CMPI_keyString == CMPI_string &&
              CMPI_keyBoolean == CMPI_boolean && CMPI_keyRef == CMPI_ref, "key types");
ABI_CHECK(CMPI_goodValue == 0 && CMPI_nullValue == 0x0100 && CMPI_keyValue == 0x0200 &&
              CMPI_notFound == 0x0400 && CMPI_badValue == 0x8000, "value states");
ABI_CHECK(CMPI_RC_OK == 0 && CMPI_RC_ERR_FAILED == 1 && CMPI_RC_ERR_ACCESS_DENIED == 2 &&
              CMPI_RC_ERR_INVALID_NAMESPACE == 3 && CMPI_RC_ERR_INVALID_PARAMETER == 4 &&
              CMPI_RC_ERR_INVALID_CLASS == 5 && CMPI_RC_ERR_NOT_FOUND == 6 &&
              CMPI_RC_ERR_NOT_SUPPORTED == 7 && CMPI_RC_ERR_CLASS_HAS_CHILDREN == 8 &&
              CMPI_RC_ERR_CLASS_HAS_INSTANCES == 9 && CMPI_RC_ERR_INVALID_SUPERCLASS == 10 &&
              CMPI_RC_ERR_ALREADY_EXISTS == 11 && CMPI_RC_ERR_NO_SUCH_PROPERTY == 12 &&
              CMPI_RC_ERR_TYPE_MISMATCH == 13 &&
              CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED == 14 &&
              CMPI_RC_ERR_INVALID_QUERY == 15 && CMPI_RC_ERR_METHOD_NOT_AVAILABLE == 16 &&
              CMPI_RC_ERR_METHOD_NOT_FOUND == 17 && CMPI_RC_DO_NOT_UNLOAD == 50 &&
              CMPI_RC_NEVER_UNLOAD == 51 && CMPI_RC_ERR_INVALID_HANDLE == 60 &&
              CMPI_RC_ERR_INVALID_DATA_TYPE == 61 && CMPI_RC_ERROR_SYSTEM == 100 &&
              CMPI_RC_ERROR == 200, "return codes");
ABI_CHECK(CMPI_PredOp_Equals == 1 && CMPI_PredOp_NotLike == 10 && CMPI_PredOp_Or == 14,
          "predicate operators");
ABI_CHECK(CMPI_FLAG_LocalOnly == 1 && CMPI_FLAG_DeepInheritance == 2 &&
              CMPI_FLAG_IncludeQualifiers == 4 && CMPI_FLAG_IncludeClassOrigin == 8,
          "invocation flags");
ABI_CHECK(CMPICurrentVersion == 200, "interface version");

/* ---- Broker --------------------------------------------------------- */

OFFSET(CMPIBroker, hdl, 0);
OFFSET(CMPIBroker, bft, PTR);
OFFSET(CMPIBroker, eft, 2 * PTR);
OFFSET(CMPIBroker, xft, 3 * PTR);
OFFSET(CMPIBroker, mft, 4 * PTR);
SIZE(CMPIBroker, 5 * PTR);

OFFSET(CMPIBrokerFT, brokerCapabilities, 0);
OFFSET(CMPIBrokerFT, brokerVersion, 4);
OFFSET(CMPIBrokerFT, brokerName, 8);
MI_SLOT(CMPIBrokerFT, prepareAttachThread, 1);
MI_SLOT(CMPIBrokerFT, attachThread, 2);
MI_SLOT(CMPIBrokerFT, detachThread, 3);
MI_SLOT(CMPIBrokerFT, deliverIndication, 4);
MI_SLOT(CMPIBrokerFT, enumerateInstanceNames, 5);
MI_SLOT(CMPIBrokerFT, getInstance, 6);
MI_SLOT(CMPIBrokerFT, createInstance, 7);
MI_SLOT(CMPIBrokerFT, modifyInstance, 8);
MI_SLOT(CMPIBrokerFT, deleteInstance, 9);
MI_SLOT(CMPIBrokerFT, execQuery, 10);
MI_SLOT(CMPIBrokerFT, enumerateInstances, 11);
MI_SLOT(CMPIBrokerFT, associators, 12);
MI_SLOT(CMPIBrokerFT, associatorNames, 13);
MI_SLOT(CMPIBrokerFT, references, 14);
MI_SLOT(CMPIBrokerFT, referenceNames, 15);
MI_SLOT(CMPIBrokerFT, invokeMethod, 16);
MI_SLOT(CMPIBrokerFT, setProperty, 17);
MI_SLOT(CMPIBrokerFT, getProperty, 18);
MI_SIZE(CMPIBrokerFT, 18);

FT_SLOT(CMPIBrokerEncFT, newInstance, 1);
FT_SLOT(CMPIBrokerEncFT, newObjectPath, 2);
FT_SLOT(CMPIBrokerEncFT, newArgs, 3);
FT_SLOT(CMPIBrokerEncFT, newString, 4);
FT_SLOT(CMPIBrokerEncFT, newArray, 5);
FT_SLOT(CMPIBrokerEncFT, newDateTime, 6);
FT_SLOT(CMPIBrokerEncFT, newDateTimeFromBinary, 7);
FT_SLOT(CMPIBrokerEncFT, newDateTimeFromChars, 8);
FT_SLOT(CMPIBrokerEncFT, newSelectExp, 9);
FT_SLOT(CMPIBrokerEncFT, classPathIsA, 10);
FT_SLOT(CMPIBrokerEncFT, toString, 11);
FT_SLOT(CMPIBrokerEncFT, isOfType, 12);
FT_SLOT(CMPIBrokerEncFT, getType, 13);
FT_SLOT(CMPIBrokerEncFT, getMessage, 14);
FT_SLOT(CMPIBrokerEncFT, logMessage, 15);
FT_SLOT(CMPIBrokerEncFT, trace, 16);
FT_SLOT(CMPIBrokerEncFT, newCMPIError, 17);
FT_SLOT(CMPIBrokerEncFT, openMessageFile, 18);
FT_SLOT(CMPIBrokerEncFT, closeMessageFile, 19);
FT_SLOT(CMPIBrokerEncFT, getMessage2, 20);
FT_SIZE(CMPIBrokerEncFT, 20);

FT_SLOT(CMPIBrokerExtFT, resolveFileName, 1);
FT_SLOT(CMPIBrokerExtFT, newThread, 2);
FT_SLOT(CMPIBrokerExtFT, joinThread, 3);
FT_SLOT(CMPIBrokerExtFT, exitThread, 4);
FT_SLOT(CMPIBrokerExtFT, cancelThread, 5);
FT_SLOT(CMPIBrokerExtFT, threadSleep, 6);
FT_SLOT(CMPIBrokerExtFT, threadOnce, 7);
FT_SLOT(CMPIBrokerExtFT, createThreadKey, 8);
FT_SLOT(CMPIBrokerExtFT, destroyThreadKey, 9);
FT_SLOT(CMPIBrokerExtFT, getThreadSpecific, 10);
FT_SLOT(CMPIBrokerExtFT, setThreadSpecific, 11);
FT_SLOT(CMPIBrokerExtFT, newMutex, 12);
FT_SLOT(CMPIBrokerExtFT, destroyMutex, 13);
FT_SLOT(CMPIBrokerExtFT, lockMutex, 14);
FT_SLOT(CMPIBrokerExtFT, unlockMutex, 15);
FT_SLOT(CMPIBrokerExtFT, newCondition, 16);
FT_SLOT(CMPIBrokerExtFT, destroyCondition, 17);
FT_SLOT(CMPIBrokerExtFT, condWait, 18);
FT_SLOT(CMPIBrokerExtFT, timedCondWait, 19);
FT_SLOT(CMPIBrokerExtFT, signalCondition, 20);
FT_SIZE(CMPIBrokerExtFT, 20);

FT_SLOT(CMPIBrokerMemFT, mark, 1);
FT_SLOT(CMPIBrokerMemFT, release, 2);
FT_SLOT(CMPIBrokerMemFT, cmpiMalloc, 3);
FT_SLOT(CMPIBrokerMemFT, cmpiCalloc, 4);
FT_SLOT(CMPIBrokerMemFT, cmpiRealloc, 5);
FT_SLOT(CMPIBrokerMemFT, cmpiStrDup, 6);
FT_SLOT(CMPIBrokerMemFT, cmpiFree, 7);
FT_SLOT(CMPIBrokerMemFT, freeInstance, 8);
FT_SLOT(CMPIBrokerMemFT, freeObjectPath, 9);
FT_SLOT(CMPIBrokerMemFT, freeArgs, 10);
FT_SLOT(CMPIBrokerMemFT, freeString, 11);
FT_SLOT(CMPIBrokerMemFT, freeArray, 12);
FT_SLOT(CMPIBrokerMemFT, freeDateTime, 13);
FT_SLOT(CMPIBrokerMemFT, freeSelectExp, 14);
FT_SIZE(CMPIBrokerMemFT, 14);

/* ---- Encapsulated objects: a handle, then the function table ------- */

#define ENCAPSULATED(T)   \
  OFFSET(T, hdl, 0);      \
  OFFSET(T, ft, PTR);     \
  SIZE(T, 2 * PTR)

ENCAPSULATED(CMPIContext);
ENCAPSULATED(CMPIResult);
ENCAPSULATED(CMPIError);
ENCAPSULATED(CMPIInstance);
ENCAPSULATED(CMPIObjectPath);
ENCAPSULATED(CMPISelectExp);
ENCAPSULATED(CMPISelectCond);
ENCAPSULATED(CMPISubCond);
ENCAPSULATED(CMPIPredicate);
ENCAPSULATED(CMPIArgs);
ENCAPSULATED(CMPIString);
ENCAPSULATED(CMPIArray);
ENCAPSULATED(CMPIEnumeration);
ENCAPSULATED(CMPIDateTime);
ENCAPSULATED(CMPIInstanceMI);
ENCAPSULATED(CMPIAssociationMI);
ENCAPSULATED(CMPIMethodMI);
ENCAPSULATED(CMPIPropertyMI);
ENCAPSULATED(CMPIIndicationMI);

FT_SLOT(CMPIContextFT, release, 1);
FT_SLOT(CMPIContextFT, clone, 2);
FT_SLOT(CMPIContextFT, getEntry, 3);
FT_SLOT(CMPIContextFT, getEntryAt, 4);
FT_SLOT(CMPIContextFT, getEntryCount, 5);
FT_SLOT(CMPIContextFT, addEntry, 6);
FT_SIZE(CMPIContextFT, 6);

FT_SLOT(CMPIResultFT, release, 1);
FT_SLOT(CMPIResultFT, clone, 2);
FT_SLOT(CMPIResultFT, returnData, 3);
FT_SLOT(CMPIResultFT, returnInstance, 4);
FT_SLOT(CMPIResultFT, returnObjectPath, 5);
FT_SLOT(CMPIResultFT, returnDone, 6);
FT_SLOT(CMPIResultFT, returnError, 7);
FT_SIZE(CMPIResultFT, 7);

FT_SLOT(CMPIErrorFT, release, 1);
FT_SLOT(CMPIErrorFT, clone, 2);
FT_SLOT(CMPIErrorFT, getErrorType, 3);
FT_SLOT(CMPIErrorFT, getOtherErrorType, 4);
FT_SLOT(CMPIErrorFT, getOwningEntity, 5);
FT_SLOT(CMPIErrorFT, getMessageID, 6);
FT_SLOT(CMPIErrorFT, getMessage, 7);
FT_SLOT(CMPIErrorFT, getPerceivedSeverity, 8);
FT_SLOT(CMPIErrorFT, getProbableCause, 9);
FT_SLOT(CMPIErrorFT, getProbableCauseDescription, 10);
FT_SLOT(CMPIErrorFT, getRecommendedActions, 11);
FT_SLOT(CMPIErrorFT, getErrorSource, 12);
FT_SLOT(CMPIErrorFT, getErrorSourceFormat, 13);
FT_SLOT(CMPIErrorFT, getOtherErrorSourceFormat, 14);
FT_SLOT(CMPIErrorFT, getCIMStatusCode, 15);
FT_SLOT(CMPIErrorFT, getCIMStatusCodeDescription, 16);
FT_SLOT(CMPIErrorFT, getMessageArguments, 17);
FT_SLOT(CMPIErrorFT, setErrorType, 18);
FT_SLOT(CMPIErrorFT, setOtherErrorType, 19);
FT_SLOT(CMPIErrorFT, setProbableCauseDescription, 20);
FT_SLOT(CMPIErrorFT, setRecommendedActions, 21);
FT_SLOT(CMPIErrorFT, setErrorSource, 22);
FT_SLOT(CMPIErrorFT, setErrorSourceFormat, 23);
FT_SLOT(CMPIErrorFT, setOtherErrorSourceFormat, 24);
FT_SLOT(CMPIErrorFT, setCIMStatusCodeDescription, 25);
FT_SLOT(CMPIErrorFT, setMessageArguments, 26);
FT_SIZE(CMPIErrorFT, 26);

FT_SLOT(CMPIInstanceFT, release, 1);
FT_SLOT(CMPIInstanceFT, clone, 2);
FT_SLOT(CMPIInstanceFT, getProperty, 3);
FT_SLOT(CMPIInstanceFT, getPropertyAt, 4);
FT_SLOT(CMPIInstanceFT, getPropertyCount, 5);
FT_SLOT(CMPIInstanceFT, setProperty, 6);
FT_SLOT(CMPIInstanceFT, getObjectPath, 7);
FT_SLOT(CMPIInstanceFT, setPropertyFilter, 8);
FT_SLOT(CMPIInstanceFT, setObjectPath, 9);
FT_SLOT(CMPIInstanceFT, setPropertyWithOrigin, 10);
FT_SIZE(CMPIInstanceFT, 10);

FT_SLOT(CMPIObjectPathFT, release, 1);
FT_SLOT(CMPIObjectPathFT, clone, 2);
FT_SLOT(CMPIObjectPathFT, setNameSpace, 3);
FT_SLOT(CMPIObjectPathFT, getNameSpace, 4);
FT_SLOT(CMPIObjectPathFT, setHostname, 5);
FT_SLOT(CMPIObjectPathFT, getHostname, 6);
FT_SLOT(CMPIObjectPathFT, setClassName, 7);
FT_SLOT(CMPIObjectPathFT, getClassName, 8);
FT_SLOT(CMPIObjectPathFT, addKey, 9);
FT_SLOT(CMPIObjectPathFT, getKey, 10);
FT_SLOT(CMPIObjectPathFT, getKeyAt, 11);
FT_SLOT(CMPIObjectPathFT, getKeyCount, 12);
FT_SLOT(CMPIObjectPathFT, setNameSpaceFromObjectPath, 13);
FT_SLOT(CMPIObjectPathFT, setHostAndNameSpaceFromObjectPath, 14);
FT_SLOT(CMPIObjectPathFT, getClassQualifier, 15);
FT_SLOT(CMPIObjectPathFT, getPropertyQualifier, 16);
FT_SLOT(CMPIObjectPathFT, getMethodQualifier, 17);
FT_SLOT(CMPIObjectPathFT, getParameterQualifier, 18);
FT_SLOT(CMPIObjectPathFT, toString, 19);
FT_SIZE(CMPIObjectPathFT, 19);

FT_SLOT(CMPISelectExpFT, release, 1);
FT_SLOT(CMPISelectExpFT, clone, 2);
FT_SLOT(CMPISelectExpFT, evaluate, 3);
FT_SLOT(CMPISelectExpFT, getString, 4);
FT_SLOT(CMPISelectExpFT, getDOC, 5);
FT_SLOT(CMPISelectExpFT, getCOD, 6);
FT_SLOT(CMPISelectExpFT, evaluateUsingAccessor, 7);
FT_SIZE(CMPISelectExpFT, 7);

FT_SLOT(CMPISelectCondFT, release, 1);
FT_SLOT(CMPISelectCondFT, clone, 2);
FT_SLOT(CMPISelectCondFT, getCountAndType, 3);
FT_SLOT(CMPISelectCondFT, getSubCondAt, 4);
FT_SIZE(CMPISelectCondFT, 4);

FT_SLOT(CMPISubCondFT, release, 1);
FT_SLOT(CMPISubCondFT, clone, 2);
FT_SLOT(CMPISubCondFT, getCount, 3);
FT_SLOT(CMPISubCondFT, getPredicateAt, 4);
FT_SLOT(CMPISubCondFT, getPredicate, 5);
FT_SIZE(CMPISubCondFT, 5);

FT_SLOT(CMPIPredicateFT, release, 1);
FT_SLOT(CMPIPredicateFT, clone, 2);
FT_SLOT(CMPIPredicateFT, getData, 3);
FT_SLOT(CMPIPredicateFT, evaluateUsingAccessor, 4);
FT_SIZE(CMPIPredicateFT, 4);

FT_SLOT(CMPIArgsFT, release, 1);
FT_SLOT(CMPIArgsFT, clone, 2);
FT_SLOT(CMPIArgsFT, addArg, 3);
FT_SLOT(CMPIArgsFT, getArg, 4);
FT_SLOT(CMPIArgsFT, getArgAt, 5);
FT_SLOT(CMPIArgsFT, getArgCount, 6);
FT_SIZE(CMPIArgsFT, 6);

FT_SLOT(CMPIStringFT, release, 1);
FT_SLOT(CMPIStringFT, clone, 2);
FT_SLOT(CMPIStringFT, getCharPtr, 3);
FT_SIZE(CMPIStringFT, 3);

FT_SLOT(CMPIArrayFT, release, 1);
FT_SLOT(CMPIArrayFT, clone, 2);
FT_SLOT(CMPIArrayFT, getSize, 3);
FT_SLOT(CMPIArrayFT, getSimpleType, 4);
FT_SLOT(CMPIArrayFT, getElementAt, 5);
FT_SLOT(CMPIArrayFT, setElementAt, 6);
FT_SIZE(CMPIArrayFT, 6);

FT_SLOT(CMPIEnumerationFT, release, 1);
FT_SLOT(CMPIEnumerationFT, clone, 2);
FT_SLOT(CMPIEnumerationFT, getNext, 3);
FT_SLOT(CMPIEnumerationFT, hasNext, 4);
FT_SLOT(CMPIEnumerationFT, toArray, 5);
FT_SIZE(CMPIEnumerationFT, 5);

FT_SLOT(CMPIDateTimeFT, release, 1);
FT_SLOT(CMPIDateTimeFT, clone, 2);
FT_SLOT(CMPIDateTimeFT, getBinaryFormat, 3);
FT_SLOT(CMPIDateTimeFT, getStringFormat, 4);
FT_SLOT(CMPIDateTimeFT, isInterval, 5);
FT_SIZE(CMPIDateTimeFT, 5);

/* ---- Management instrumentation tables ----------------------------- */

#define MI_HEADER(T)             \
  OFFSET(T, ftVersion, 0);       \
  OFFSET(T, miVersion, 4);       \
  OFFSET(T, miName, 8)

MI_HEADER(CMPIInstanceMIFT);
MI_SLOT(CMPIInstanceMIFT, cleanup, 1);
MI_SLOT(CMPIInstanceMIFT, enumerateInstanceNames, 2);
MI_SLOT(CMPIInstanceMIFT, enumerateInstances, 3);
MI_SLOT(CMPIInstanceMIFT, getInstance, 4);
MI_SLOT(CMPIInstanceMIFT, createInstance, 5);
MI_SLOT(CMPIInstanceMIFT, modifyInstance, 6);
MI_SLOT(CMPIInstanceMIFT, deleteInstance, 7);
MI_SLOT(CMPIInstanceMIFT, execQuery, 8);
MI_SIZE(CMPIInstanceMIFT, 8);

MI_HEADER(CMPIAssociationMIFT);
MI_SLOT(CMPIAssociationMIFT, cleanup, 1);
MI_SLOT(CMPIAssociationMIFT, associators, 2);
MI_SLOT(CMPIAssociationMIFT, associatorNames, 3);
MI_SLOT(CMPIAssociationMIFT, references, 4);
MI_SLOT(CMPIAssociationMIFT, referenceNames, 5);
MI_SIZE(CMPIAssociationMIFT, 5);

MI_HEADER(CMPIMethodMIFT);
MI_SLOT(CMPIMethodMIFT, cleanup, 1);
MI_SLOT(CMPIMethodMIFT, invokeMethod, 2);
MI_SIZE(CMPIMethodMIFT, 2);

MI_HEADER(CMPIPropertyMIFT);
MI_SLOT(CMPIPropertyMIFT, cleanup, 1);
MI_SLOT(CMPIPropertyMIFT, setProperty, 2);
MI_SLOT(CMPIPropertyMIFT, getProperty, 3);
MI_SLOT(CMPIPropertyMIFT, setPropertyWithOrigin, 4);
MI_SIZE(CMPIPropertyMIFT, 4);

MI_HEADER(CMPIIndicationMIFT);
MI_SLOT(CMPIIndicationMIFT, cleanup, 1);
MI_SLOT(CMPIIndicationMIFT, authorizeFilter, 2);
MI_SLOT(CMPIIndicationMIFT, mustPoll, 3);
MI_SLOT(CMPIIndicationMIFT, activateFilter, 4);
MI_SLOT(CMPIIndicationMIFT, deActivateFilter, 5);
MI_SLOT(CMPIIndicationMIFT, enableIndications, 6);
MI_SLOT(CMPIIndicationMIFT, disableIndications, 7);
MI_SIZE(CMPIIndicationMIFT, 7);

#endif /* QRX_TESTS_CMPI_ABI_CHECKS_H_ */
