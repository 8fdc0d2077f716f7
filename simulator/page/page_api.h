// The page on which a person sees the cameras and turns them: its file, its events, its changes.
#pragma once

#include <httplib.h>

#include "simulator/program/desk.h"

namespace qvx::simulator {

// What only the page asks for begins so: its home a Wi-Fi camera may share.
constexpr std::string_view pagePrefix = "/cameras/";

// Adds the page's routes to a server. The desk must outlive it.
void addPageRoutes(httplib::Server& server, Desk& desk);

}  // namespace qvx::simulator
