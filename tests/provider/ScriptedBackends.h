// Backends whose answers a test sets, for the provider glue of QRX_Switch,
// QRX_SwitchInFabric, QRX_ZoneService, QRX_ZoneCapabilities and
// QRX_SwitchFCPortStats. They replace the library's backends of these
// classes: the glue tests link the library without its backends.
//
// Every operation appends "<Class>.<operation>" to script().calls and
// answers from script(): `answer` for the instance and association
// operations, `methodResult` for the methods.
#ifndef QRX_TESTS_PROVIDER_SCRIPTEDBACKENDS_H_
#define QRX_TESTS_PROVIDER_SCRIPTEDBACKENDS_H_

#include <string>
#include <vector>

#include "generated/scimbackend/QRX_SwitchFCPortStats_Best.h"
#include "generated/scimbackend/QRX_SwitchInFabric_Best.h"
#include "generated/scimbackend/QRX_Switch_Best.h"
#include "generated/scimbackend/QRX_ZoneCapabilities_Best.h"
#include "generated/scimbackend/QRX_ZoneService_Best.h"

struct BackendScript {
  bool answer = true;
  cuint32 methodResult = 0;
  std::vector<std::string> calls;

  // What the backends hold: enumerations return them, getInstance looks a
  // switch up by key, associations return the end or link objects.
  QRX_Switch_Array switches;
  QRX_Fabric_Array fabrics;
  QRX_SwitchInFabric_Array links;

  // What the last call received.
  QRX_Switch_Key switchKey;
  QRX_Fabric_Key fabricKey;
  QRX_Switch created;
  QRX_ZoneService_Key serviceKey;
  std::string text;
  cuint16 number = 0;
  cboolean flag = 0;
  cdatetime time;
  QRX_ZoneSet_Key zoneSet;
  QRX_Zone_Key zone;
  CIM_SystemSpecificCollection_Key collection;
  cstring_A strings;

  // What methods give back.
  std::string outputId = "out-1";
  cstring_A outputStrings;
};

// The script of the current test; reset() puts it back to its defaults.
BackendScript& script();
void resetScript();

#endif  // QRX_TESTS_PROVIDER_SCRIPTEDBACKENDS_H_
