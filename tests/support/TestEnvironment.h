// What provider tests set up around the code under test: the class
// hierarchy of the test object manager, and (TraceCapture.h) a private
// trace log to read back. Header-only, so that it can be linked with either
// static library.
#ifndef QRX_TESTS_SUPPORT_TESTENVIRONMENT_H_
#define QRX_TESTS_SUPPORT_TESTENVIRONMENT_H_

#include <gtest/gtest.h>

#include <string>

#include "tests/support/TraceCapture.h"
#include "tools/cimhost/broker/ClassHierarchy.h"

// Every class of the model and the DMTF classes above it, with their keys,
// read once from the generated hierarchy MOF (QRX_HIERARCHY_MOF).
inline const cimhost::ClassHierarchy& modelHierarchy() {
  static cimhost::ClassHierarchy* loaded = [] {
    auto* hierarchy = new cimhost::ClassHierarchy;
    std::string error;
    if (!hierarchy->loadMofFile(QRX_HIERARCHY_MOF, &error)) ADD_FAILURE() << error;
    return hierarchy;
  }();
  return *loaded;
}

#endif  // QRX_TESTS_SUPPORT_TESTENVIRONMENT_H_
