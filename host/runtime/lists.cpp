#include "host/lists.h"

#include "host/runtime/memory/tracked_memory.h"

using namespace host;

HostList* host_list_new(const HostListType* type, const char* source, int line, int /*flags*/) {
    return static_cast<HostList*>(
        memory::allocate_zeroed(sizeof(HostList), {source, line, type->description}));
}

HostListNode* host_list_insert(std::uint32_t value, HostList* list, HostListNode* before,
                               const char* source, int line, int /*flags*/) {
    auto* node = static_cast<HostListNode*>(
        memory::allocate(sizeof(HostListNode), {source, line, memory::description_of(list)}));
    if (node == nullptr) return nullptr;
    HostListNode* previous = before != nullptr ? before->previous : list->last;
    *node = HostListNode{before, previous, list, value};
    (previous != nullptr ? previous->next : list->first) = node;
    (before != nullptr ? before->previous : list->last) = node;
    ++list->count;
    return node;
}

void host_list_remove(HostListNode* node, const char* /*source*/, int /*line*/, int /*flags*/) {
    if (node == nullptr) return;
    HostList* list = node->list;
    (node->previous != nullptr ? node->previous->next : list->first) = node->next;
    (node->next != nullptr ? node->next->previous : list->last) = node->previous;
    --list->count;
    memory::release(node);
}

void host_list_free(HostList* list, const char* /*source*/, int /*line*/, int /*flags*/) {
    if (list == nullptr) return;
    for (HostListNode* node = list->first; node != nullptr;) {
        HostListNode* next = node->next;
        memory::release(node);
        node = next;
    }
    memory::release(list);
}
