#include "tools/switchsim/Status.h"

namespace switchsim {

const char* statusName(std::uint32_t ipStatus) {
  switch (ipStatus) {
    case kStatusOk: return "ok";
    case kStatusNotFound: return "not-found";
    case kStatusAlreadyExists: return "already-exists";
    case kStatusBadMemberType: return "bad-member-type";
    case kStatusBadMemberId: return "bad-member-id";
    case kStatusBadName: return "bad-name";
    case kStatusLimitReached: return "limit-reached";
    case kStatusSessionOpen: return "session-open";
    case kStatusNoSession: return "no-session";
    case kStatusBadOperation: return "bad-operation";
    case kStatusNotAvailable: return "not-available";
    case kStatusUnknownFunction: return "unknown-function";
    case kStatusBadArguments: return "bad-arguments";
    case kStatusReplyTooLarge: return "reply-too-large";
  }
  return "unknown";
}

const char* statusTable() {
  return "  0                ok                success; the results follow\n"
         "  0x8101 (33025)   not-found         no zone service, port, zone set, zone,\n"
         "                                     alias or member of that name\n"
         "  0x8102 (33026)   already-exists    the name exists, or the member is there\n"
         "  0x8103 (33027)   bad-member-type   member type not 2-5, or an alias where\n"
         "                                     none may be\n"
         "  0x8104 (33028)   bad-member-id     identifier does not fit its member type\n"
         "  0x8105 (33029)   bad-name          empty, too long, or bad characters\n"
         "  0x8106 (33030)   limit-reached     a zone capabilities limit is reached\n"
         "  0x8107 (33031)   session-open      a zoning session is already open\n"
         "  0x8108 (33032)   no-session        no zoning session is open\n"
         "  0x8109 (33033)   bad-operation     unknown zone opcode or kind marker\n"
         "  0x810a (33034)   not-available     the fabric is absent\n"
         "  0x81f0 (33264)   unknown-function  the function name is not a switch call\n"
         "  0x81f1 (33265)   bad-arguments     arguments or frames do not decode\n"
         "  0x81f2 (33266)   reply-too-large   the reply of an edit did not fit\n";
}

}  // namespace switchsim
