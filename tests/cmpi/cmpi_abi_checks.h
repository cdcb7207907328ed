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

/* Counting and walking the member lists below (at most 30 members). */
#define ABI_NARGS(...) ABI_NARGS_(__VA_ARGS__, 30, 29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1)
#define ABI_NARGS_(_1, _2, _3, _4, _5, _6, _7, _8, _9, _10, _11, _12, _13, _14, _15, _16, _17, _18, _19, _20, _21, _22, _23, _24, _25, _26, _27, _28, _29, _30, N, ...) N
#define ABI_CAT(a, b) ABI_CAT_(a, b)
#define ABI_CAT_(a, b) a##b
#define ABI_EACH(M, T, ...) ABI_CAT(ABI_EACH_, ABI_NARGS(__VA_ARGS__))(M, T, 1, __VA_ARGS__)
#define ABI_EACH_1(M, T, n, x) M(T, x, n)
#define ABI_EACH_2(M, T, n, x, ...) M(T, x, n) ABI_EACH_1(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_3(M, T, n, x, ...) M(T, x, n) ABI_EACH_2(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_4(M, T, n, x, ...) M(T, x, n) ABI_EACH_3(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_5(M, T, n, x, ...) M(T, x, n) ABI_EACH_4(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_6(M, T, n, x, ...) M(T, x, n) ABI_EACH_5(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_7(M, T, n, x, ...) M(T, x, n) ABI_EACH_6(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_8(M, T, n, x, ...) M(T, x, n) ABI_EACH_7(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_9(M, T, n, x, ...) M(T, x, n) ABI_EACH_8(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_10(M, T, n, x, ...) M(T, x, n) ABI_EACH_9(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_11(M, T, n, x, ...) M(T, x, n) ABI_EACH_10(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_12(M, T, n, x, ...) M(T, x, n) ABI_EACH_11(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_13(M, T, n, x, ...) M(T, x, n) ABI_EACH_12(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_14(M, T, n, x, ...) M(T, x, n) ABI_EACH_13(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_15(M, T, n, x, ...) M(T, x, n) ABI_EACH_14(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_16(M, T, n, x, ...) M(T, x, n) ABI_EACH_15(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_17(M, T, n, x, ...) M(T, x, n) ABI_EACH_16(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_18(M, T, n, x, ...) M(T, x, n) ABI_EACH_17(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_19(M, T, n, x, ...) M(T, x, n) ABI_EACH_18(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_20(M, T, n, x, ...) M(T, x, n) ABI_EACH_19(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_21(M, T, n, x, ...) M(T, x, n) ABI_EACH_20(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_22(M, T, n, x, ...) M(T, x, n) ABI_EACH_21(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_23(M, T, n, x, ...) M(T, x, n) ABI_EACH_22(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_24(M, T, n, x, ...) M(T, x, n) ABI_EACH_23(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_25(M, T, n, x, ...) M(T, x, n) ABI_EACH_24(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_26(M, T, n, x, ...) M(T, x, n) ABI_EACH_25(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_27(M, T, n, x, ...) M(T, x, n) ABI_EACH_26(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_28(M, T, n, x, ...) M(T, x, n) ABI_EACH_27(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_29(M, T, n, x, ...) M(T, x, n) ABI_EACH_28(M, T, (n + 1), __VA_ARGS__)
#define ABI_EACH_30(M, T, n, x, ...) M(T, x, n) ABI_EACH_29(M, T, (n + 1), __VA_ARGS__)

/* FT_TABLE(T, f1, f2, ...): a function table that begins with `int
   ftVersion` holds exactly the functions f1, f2, ... in this order; function
   n sits in pointer slot n on 32-bit and 64-bit hosts alike. */
#define FT_SLOT_(T, m, n) ABI_CHECK(offsetof(T, m) == (n) * PTR, #T "." #m " is out of place");
#define FT_TABLE(T, ...)              \
  ABI_EACH(FT_SLOT_, T, __VA_ARGS__)  \
  ABI_CHECK(sizeof(T) == (ABI_NARGS(__VA_ARGS__) + 1) * PTR, #T " has a wrong function count")

/* MI_TABLE(T, f1, f2, ...): the same for the MI tables and the broker
   table, which begin with two ints and a name. */
#define MI_SLOT_(T, m, n) ABI_CHECK(offsetof(T, m) == 8 + (n) * PTR, #T "." #m " is out of place");
#define MI_TABLE(T, ...)              \
  ABI_EACH(MI_SLOT_, T, __VA_ARGS__)  \
  ABI_CHECK(sizeof(T) == 8 + (ABI_NARGS(__VA_ARGS__) + 1) * PTR, #T " has a wrong function count")

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
MI_TABLE(CMPIBrokerFT, prepareAttachThread, attachThread, detachThread, deliverIndication,
         enumerateInstanceNames, getInstance, createInstance, modifyInstance, deleteInstance,
         execQuery, enumerateInstances, associators, associatorNames, references,
         referenceNames, invokeMethod, setProperty, getProperty);

FT_TABLE(CMPIBrokerEncFT, newInstance, newObjectPath, newArgs, newString, newArray,
         newDateTime, newDateTimeFromBinary, newDateTimeFromChars, newSelectExp, classPathIsA,
         toString, isOfType, getType, getMessage, logMessage, trace, newCMPIError,
         openMessageFile, closeMessageFile, getMessage2);

FT_TABLE(CMPIBrokerExtFT, resolveFileName, newThread, joinThread, exitThread, cancelThread,
         threadSleep, threadOnce, createThreadKey, destroyThreadKey, getThreadSpecific,
         setThreadSpecific, newMutex, destroyMutex, lockMutex, unlockMutex, newCondition,
         destroyCondition, condWait, timedCondWait, signalCondition);

FT_TABLE(CMPIBrokerMemFT, mark, release, cmpiMalloc, cmpiCalloc, cmpiRealloc, cmpiStrDup,
         cmpiFree, freeInstance, freeObjectPath, freeArgs, freeString, freeArray, freeDateTime,
         freeSelectExp);

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

FT_TABLE(CMPIContextFT, release, clone, getEntry, getEntryAt, getEntryCount, addEntry);

FT_TABLE(CMPIResultFT, release, clone, returnData, returnInstance, returnObjectPath,
         returnDone, returnError);

FT_TABLE(CMPIErrorFT, release, clone, getErrorType, getOtherErrorType, getOwningEntity,
         getMessageID, getMessage, getPerceivedSeverity, getProbableCause,
         getProbableCauseDescription, getRecommendedActions, getErrorSource,
         getErrorSourceFormat, getOtherErrorSourceFormat, getCIMStatusCode,
         getCIMStatusCodeDescription, getMessageArguments, setErrorType, setOtherErrorType,
         setProbableCauseDescription, setRecommendedActions, setErrorSource,
         setErrorSourceFormat, setOtherErrorSourceFormat, setCIMStatusCodeDescription,
         setMessageArguments);

FT_TABLE(CMPIInstanceFT, release, clone, getProperty, getPropertyAt, getPropertyCount,
         setProperty, getObjectPath, setPropertyFilter, setObjectPath, setPropertyWithOrigin);

FT_TABLE(CMPIObjectPathFT, release, clone, setNameSpace, getNameSpace, setHostname,
         getHostname, setClassName, getClassName, addKey, getKey, getKeyAt, getKeyCount,
         setNameSpaceFromObjectPath, setHostAndNameSpaceFromObjectPath, getClassQualifier,
         getPropertyQualifier, getMethodQualifier, getParameterQualifier, toString);

FT_TABLE(CMPISelectExpFT, release, clone, evaluate, getString, getDOC, getCOD,
         evaluateUsingAccessor);

FT_TABLE(CMPISelectCondFT, release, clone, getCountAndType, getSubCondAt);

FT_TABLE(CMPISubCondFT, release, clone, getCount, getPredicateAt, getPredicate);

FT_TABLE(CMPIPredicateFT, release, clone, getData, evaluateUsingAccessor);

FT_TABLE(CMPIArgsFT, release, clone, addArg, getArg, getArgAt, getArgCount);

FT_TABLE(CMPIStringFT, release, clone, getCharPtr);

FT_TABLE(CMPIArrayFT, release, clone, getSize, getSimpleType, getElementAt, setElementAt);

FT_TABLE(CMPIEnumerationFT, release, clone, getNext, hasNext, toArray);

FT_TABLE(CMPIDateTimeFT, release, clone, getBinaryFormat, getStringFormat, isInterval);

/* ---- Management instrumentation tables ----------------------------- */

#define MI_HEADER(T)             \
  OFFSET(T, ftVersion, 0);       \
  OFFSET(T, miVersion, 4);       \
  OFFSET(T, miName, 8)

MI_HEADER(CMPIInstanceMIFT);
MI_TABLE(CMPIInstanceMIFT, cleanup, enumerateInstanceNames, enumerateInstances, getInstance,
         createInstance, modifyInstance, deleteInstance, execQuery);

MI_HEADER(CMPIAssociationMIFT);
MI_TABLE(CMPIAssociationMIFT, cleanup, associators, associatorNames, references,
         referenceNames);

MI_HEADER(CMPIMethodMIFT);
MI_TABLE(CMPIMethodMIFT, cleanup, invokeMethod);

MI_HEADER(CMPIPropertyMIFT);
MI_TABLE(CMPIPropertyMIFT, cleanup, setProperty, getProperty, setPropertyWithOrigin);

MI_HEADER(CMPIIndicationMIFT);
MI_TABLE(CMPIIndicationMIFT, cleanup, authorizeFilter, mustPoll, activateFilter,
         deActivateFilter, enableIndications, disableIndications);

#endif /* QRX_TESTS_CMPI_ABI_CHECKS_H_ */
