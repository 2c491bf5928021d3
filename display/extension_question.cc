#include "display/extension_question.h"

#include <sys/uio.h>

#include <array>

namespace gromlit {

bool HasExtension(xcb_extension_t* extension) {
  const xcb_query_extension_reply_t* const found =
      xcb_get_extension_data(XGetXCBConnection(dpy), extension);
  return found != nullptr && found->present != 0;
}

ExtensionQuestion AskExtension(xcb_extension_t* extension, uint8_t opcode,
                               std::span<uint8_t> request) {
  // The two before the first are XCB's.
  std::array<iovec, 3> parts{{{}, {}, {request.data(), request.size()}}};
  const xcb_protocol_request_t protocol{1, extension, opcode, 0};
  return {xcb_send_request(XGetXCBConnection(dpy), XCB_REQUEST_CHECKED, &parts[2], &protocol)};
}

Reply<uint8_t> AnswerOf(ExtensionQuestion question) {
  if (question.sequence == 0) return nullptr;
  xcb_generic_error_t* error = nullptr;
  Reply<uint8_t> answer(
      static_cast<uint8_t*>(xcb_wait_for_reply(XGetXCBConnection(dpy), question.sequence, &error)));
  std::free(error);
  return answer;
}

}  // namespace gromlit
