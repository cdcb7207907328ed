/*
 * cmpios.h - operating-system bindings of the CMPI 2.0 interface.
 *
 * The types in which the broker's extended services (CMPIBrokerExtFT) pass
 * threads, thread keys, mutexes and conditions, and the linkage macros for
 * the provider factories. This project targets POSIX hosts built with GCC
 * or Clang, 32-bit and 64-bit.
 */
#ifndef _CMPIOS_H_
#define _CMPIOS_H_

#include <stddef.h> /* size_t */

struct timespec;

#define CMPI_THREAD_RETURN void *
#define CMPI_THREAD_TYPE void *
#define CMPI_MUTEX_TYPE void *
#define CMPI_COND_TYPE void *
#define CMPI_THREAD_CDECL
#define CMPI_THREAD_KEY_TYPE unsigned long int

#if defined(__GNUC__)
#define CMPI_EXPORT __attribute__((visibility("default")))
#else
#define CMPI_EXPORT
#endif
#define CMPI_IMPORT

/* Linkage of the factory functions the broker looks up by name. */
#ifdef __cplusplus
#define CMPI_EXTERN_C extern "C" CMPI_EXPORT
#else
#define CMPI_EXTERN_C CMPI_EXPORT
#endif

#endif /* _CMPIOS_H_ */
