// Services that a host library may lack.
#pragma once

#include "host/record_handler.h"

// The handler of a file that is being opened; null for none, also where the host has no such
// service.
HostRecordHandler* optional_record_handler(Xfd* xfd);
