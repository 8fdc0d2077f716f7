#include "simulator/page/page_api.h"

namespace qvx::simulator {

bool isForPage(const httplib::Request& request) {
  return request.target == "/" || request.path.starts_with("/cameras");
}

void addPageRoutes(httplib::Server& server, Desk& desk) {
  server.Get("/", [&desk](const httplib::Request&, httplib::Response& response) {
    std::string list;
    for (const auto& camera : desk.cameras()) list += camera->spec().name + "\n";
    response.set_content(list, "text/plain");
  });
}

}  // namespace qvx::simulator
