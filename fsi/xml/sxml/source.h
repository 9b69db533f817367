// The source path that the file interface's allocations carry in the host's accounts.
#pragma once

constexpr char SXML_SOURCE[] = "fsi/xml/sxml";
