// What the whole module knows about itself and its host.
#pragma once

#include <cstdint>

// Set by xml_init when the host supports text encodings, and never cleared. Without it the encoding
// setting only names the encoding in what is written.
extern std::int32_t encoding_support;

// The version label: at most 20 characters, stored with its NUL in 21 bytes.
constexpr char VERSION_LABEL[21] = SXML_VERSION_LABEL;
static_assert(sizeof SXML_VERSION_LABEL <= sizeof VERSION_LABEL);

// The source path that the file interface's allocations carry in the host's accounts.
constexpr char SXML_SOURCE[] = "fsi/xml/sxml";
