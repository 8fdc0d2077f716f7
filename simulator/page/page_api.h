// The HTTP interface of the cameras' page: its file, its events, its changes.
#pragma once

#include <httplib.h>

#include "simulator/desk/desk.h"

namespace qvx::simulator {

// Starts the paths that belong to the page alone; "/" may also be the home page of a Wi-Fi camera.
constexpr std::string_view pagePrefix = "/cameras/";

// Adds the page's routes to a server. The desk must outlive it.
void addPageRoutes(httplib::Server& server, Desk& desk);

}  // namespace qvx::simulator
