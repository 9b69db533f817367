#include "fsi/xml/handlers/element_hash.h"

#include "fsi/xml/handlers/trace_message.h"
#include "fsi/xml/handlers/xml_parser.h"
#include "host/memory.h"
#include "sxml/xml_api.h"

namespace {

void free_element_chain(void* head) {
    for (auto* entry = static_cast<XmlHashEntry*>(head); entry;) {
        XmlHashEntry* next = entry->next;
        if (entry->name) host_free(entry->name, HANDLERS_SOURCE, __LINE__, 0);
        host_free(entry, HANDLERS_SOURCE, __LINE__, 0);
        entry = next;
    }
}

}  // namespace

HostNameIndex* create_element_hash() {
    const HostNameIndexType type{HOST_KEY_STRING,
                                 {},
                                 free_element_chain,
                                 "XML parser elements",
                                 offsetof(XmlHashEntry, name)};
    return host_hash_new(&type, HANDLERS_SOURCE, __LINE__, 0);
}

bool add_to_element_hash(HostNameIndex* hash, XmlElement& element, char* name) {
    auto* entry = static_cast<XmlHashEntry*>(host_alloc(
        sizeof(XmlHashEntry), HOST_BLOCK_ZEROED, HANDLERS_SOURCE, __LINE__, "Element hash", 0));
    if (!entry) return false;
    entry->name = name;
    entry->element = element.handle;
    entry->last = entry;

    auto* head = static_cast<XmlHashEntry*>(host_hash_find(hash, name));
    if (head) {
        if (host_trace_on)
            trace_message(0, HOST_TRACE_ELEMENTS, "Adding element %s to an existing hash", name);
        head->last->next = entry;
        head->last = entry;
    } else {
        if (host_trace_on)
            trace_message(0, HOST_TRACE_ELEMENTS, "Adding element %s to the hash", name);
        if (!host_hash_insert(hash, entry, HANDLERS_SOURCE, __LINE__, 0)) {
            host_free(entry, HANDLERS_SOURCE, __LINE__, 0);
            return false;
        }
    }
    element.user_data = entry;
    return true;
}
