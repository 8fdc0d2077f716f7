# The address goes into the library as it stands: it must be an IPv4 literal.
set(octet "(25[0-5]|2[0-4][0-9]|1[0-9][0-9]|[1-9]?[0-9])")
if(NOT QVX_CAMERA_ADDRESS MATCHES "^${octet}\\.${octet}\\.${octet}\\.${octet}$")
  message(FATAL_ERROR "QVX_CAMERA_ADDRESS is not an IPv4 address: \"${QVX_CAMERA_ADDRESS}\"")
endif()
