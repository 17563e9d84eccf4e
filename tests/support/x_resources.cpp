#include "support/x_resources.hpp"

#include <xcb/res.h>

namespace framesink::test {
namespace {

std::size_t countOfClient(XConnection& x, std::uint32_t client) {
  const xcb_atom_t colourMap = x.atom("COLORMAP");
  const auto answer = x.reply(xcb_res_query_client_resources_reply,
                              xcb_res_query_client_resources(x.raw(), client));
  if (!answer) return 0;
  std::size_t count = 0;
  for (auto type = xcb_res_query_client_resources_types_iterator(answer.get()); type.rem > 0;
       xcb_res_type_next(&type)) {
    if (type.data->resource_type != colourMap) count += type.data->count;
  }
  return count;
}

}  // namespace

// Asks for version 1.2 first, because the server answers in the version last asked for, and process
// ids came with 1.2.
std::size_t countXResources(XConnection& x, pid_t process) {
  x.reply(xcb_res_query_version_reply, xcb_res_query_version(x.raw(), 1, 2));
  const xcb_res_client_id_spec_t everyClient{XCB_NONE, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
  const auto answer =
      x.reply(xcb_res_query_client_ids_reply, xcb_res_query_client_ids(x.raw(), 1, &everyClient));
  if (!answer) return 0;
  std::size_t count = 0;
  for (auto id = xcb_res_query_client_ids_ids_iterator(answer.get()); id.rem > 0;
       xcb_res_client_id_value_next(&id)) {
    if (xcb_res_client_id_value_value_length(id.data) < 1) continue;
    const auto owner = static_cast<pid_t>(*xcb_res_client_id_value_value(id.data));
    if (owner == process) count += countOfClient(x, id.data->spec.client);
  }
  return count;
}

}  // namespace framesink::test
