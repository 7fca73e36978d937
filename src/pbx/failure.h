// Why a request came to nothing, and which one it was.
#pragma once

#include <cstdint>
#include <string_view>

namespace vordane {

class cListRequest;

namespace pbx {

enum class Failure {
  declined,      // the user did not want it sent
  loginBusy,     // "BUSY"
  loginRefused,  // "ERROR" or an empty identifier
  unreachable,   // the log-in raised an error, whose number comes with it
  noServer,      // stand-alone: the exchange server could not be created
  sendFailed,
  errorCode,   // the answer's code, or a tag that stands for no action
  unreadable,  // the answer could not be read, or its server went away meanwhile
  tooLarge,    // the answer needs more memory than is allowed for one
  noMemory,    // there was none left for the answer or the request
  cancelled,   // the answer failed after the server was asked to give the request up
};

struct FailedRequest {
  std::int16_t kind;  // as step::faultListRequest
  std::u16string_view exchange;
  Failure failure;
  std::int32_t errorCode = 0;
  const cListRequest* answer = nullptr;  // as far as it could be read; null: none came
};

}  // namespace pbx
}  // namespace vordane
