#include "fsi/xml/sxml/writing/declared_names.h"

#include <cstddef>

#include "fsi/xml/sxml/plugin.h"
#include "host/name_index.h"

namespace {

constexpr HostNameIndexType INDEX_TYPE = {
    HOST_KEY_STRING, {}, nullptr, "XML elements", offsetof(XfdItem, key)};

HostNameIndex* index = nullptr;

}  // namespace

namespace declared_names {

bool open() {
    index = host_hash_new(&INDEX_TYPE, SXML_SOURCE, __LINE__, 0);
    return index != nullptr;
}

bool add(XfdItem& item) {
    item.key = item.name;
    return host_hash_insert(index, &item, SXML_SOURCE, __LINE__, 0) != 0;
}

bool contains(const char* name) {
    return host_hash_find(index, name) != nullptr;
}

void close() {
    host_hash_free(index, SXML_SOURCE, __LINE__, 0);
    index = nullptr;
}

}  // namespace declared_names
