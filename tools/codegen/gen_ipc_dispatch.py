"""The daemon's side of the switch daemon protocol.

smis_ipc/smis_ipc_dispatch.h/.cpp  rs_api_dispatch(): reads one request (the
                                   function name and its arguments), calls
                                   the matching operation of an rs_api_client
                                   and writes the status and results

It lets a simulated switch, or a test, answer the request client with any
implementation of rs_api_client. It is not part of the provider library.
"""

from gen_classes import BANNER
from gen_ipc import SOURCE

DISPATCH_HEADER = """\
#ifndef QRX_GENERATED_SMIS_IPC_SMIS_IPC_DISPATCH_H_
#define QRX_GENERATED_SMIS_IPC_SMIS_IPC_DISPATCH_H_

#include <string>

#include "common/base/SCIMCommon.h"
#include "generated/smis_ipc/smis_ipc_client.h"

enum rs_api_dispatch_result {
  kDispatchDone = 0,            // status (and results) written to the reply
  kDispatchUnknownFunction = 1, // no call has that function name
  kDispatchBadArguments = 2,    // the arguments do not decode
};

// Serves one request: reads the function name into `orFunction`, then the
// call's arguments from `irRequest`, calls the operation of `irHandler` and
// writes into `irReply` the unsigned 32-bit status it returned and, only
// when that is 0, its results. Unless the result is kDispatchDone nothing
// is called and nothing is written.
int rs_api_dispatch(rs_api_client& irHandler, SCIMDeserializerIf& irRequest,
                    SCIMSerializerIf& irReply, std::string& orFunction);

#endif  // QRX_GENERATED_SMIS_IPC_SMIS_IPC_DISPATCH_H_
"""


def serve_function(call):
    out = ("int serve_%s(rs_api_client& irHandler, SCIMDeserializerIf& irRequest,\n"
           "    SCIMSerializerIf& irReply) {\n") % call.name
    if not call.args:
        out += "  (void)irRequest;\n"
    for a in call.args:
        out += "  %s %s%s;\n" % (a.type.cpp, a.name, "" if a.type.cpp_is_class else "{}")
    out += "".join("  irRequest.read(\"%s\", %s, %s);\n" % (a.name, a.type.code, a.name)
                   for a in call.args)
    if call.args:
        out += "  if (irRequest.hasError()) return kDispatchBadArguments;\n"
    for r in call.results:
        out += "  %s %s%s;\n" % (r.type.cpp, r.name, "" if r.type.cpp_is_class else "{}")
    params = ", ".join(["std::move(%s)" % a.name if a.type.cpp_is_class else a.name
                        for a in call.args] + [r.name for r in call.results])
    out += "  const int status = irHandler.%s(%s);\n" % (call.name, params)
    out += "  irReply.write(\"status\", CMPI_uint32, static_cast<cuint32>(status));\n"
    if call.results:
        out += "  if (status == 0) {\n"
        out += "".join("    irReply.write(\"%s\", %s, %s);\n" % (r.name, r.type.code, r.name)
                       for r in call.results)
        out += "  }\n"
    out += "  return kDispatchDone;\n}\n\n"
    return out


def dispatch_source(protocol):
    out = BANNER % SOURCE
    out += ("#include \"generated/smis_ipc/smis_ipc_dispatch.h\"\n\n"
            "#include <cstring>\n#include <utility>\n\nnamespace {\n\n")
    out += "".join(serve_function(c) for c in protocol.calls)
    out += ("struct Entry {\n  const char* function;\n"
            "  int (*serve)(rs_api_client&, SCIMDeserializerIf&, SCIMSerializerIf&);\n};\n\n"
            "const Entry kEntries[] = {\n")
    out += "".join("    {\"rs_api_%s\", serve_%s},\n" % (c.name, c.name) for c in protocol.calls)
    out += "};\n\n}  // namespace\n\n"
    out += ("int rs_api_dispatch(rs_api_client& irHandler, SCIMDeserializerIf& irRequest,\n"
            "                    SCIMSerializerIf& irReply, std::string& orFunction) {\n"
            "  orFunction.clear();\n"
            "  irRequest.read(\"function\", CMPI_string, orFunction);\n"
            "  if (irRequest.hasError()) return kDispatchUnknownFunction;\n"
            "  for (const Entry& entry : kEntries) {\n"
            "    if (orFunction == entry.function) return entry.serve(irHandler, irRequest, irReply);\n"
            "  }\n"
            "  return kDispatchUnknownFunction;\n}\n")
    return out


def generate(schema):
    protocol = schema.protocol
    return {
        "smis_ipc/smis_ipc_dispatch.h": BANNER % SOURCE + DISPATCH_HEADER,
        "smis_ipc/smis_ipc_dispatch.cpp": dispatch_source(protocol),
    }
