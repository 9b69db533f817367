/* The functions of the host library for C programs that use the XML API. C++ programs find the same
 * functions, and all others, in the headers of the folder host. */
#ifndef SXML_HOST_H
#define SXML_HOST_H

#include <stddef.h>
#include <stdint.h>

struct HostStream;    /* a file */
struct HostNameIndex; /* records found by a name */
struct HostTable;     /* values by name */

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Files ---- */

/* Opens a file. `mode` "wb" creates or empties it for writing, "r" reads; `flag` is 0; the name "-"
 * is standard output or input. Null on failure, with errno saying why. */
struct HostStream* host_fopen(const char* name, const char* mode, int flag);

/* Writes what is buffered and closes; null is allowed. host_take_write_failure tells whether all of
 * it could be written. */
void host_fclose(struct HostStream* stream);

/* The oldest failure to write to any stream that was not asked for yet, which is forgotten with
 * that. Result: the system's error number, 0 when there is none; the name of the file is stored
 * through `file` unless that is null, and stays valid until the next call. */
int host_take_write_failure(const char** file);

/* ---- Error words of the calling thread ---- */

/* How the last parse went: 0 there is more, 8 the input has ended, 14 no memory, 19 not
 * well-formed; then Expat's code and message are in the two others. */
int16_t* host_file_error(void);
int32_t* host_error_subcode(void);
const char** host_error_text(void);

/* ---- What xml_parser_models and xml_parser_element_hash give ---- */

/* The number of names in a table, 0 for null; the name at `index` in the order in which they were
 * stored, null out of range; the value of a name, null when there is none. */
size_t host_table_count(const struct HostTable* table);
const char* host_table_name(const struct HostTable* table, size_t index);
void* host_table_get(const struct HostTable* table, const char* name);

/* The record of a name; null when there is none. */
void* host_hash_find(const struct HostNameIndex* index, const char* name);

#ifdef __cplusplus
}
#endif

#endif
