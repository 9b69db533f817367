/* Included before the C code that cobc makes of a program, after data about the program's files:
 * `sxml cob` sees to both. These functions do the program's work on files, and pass calls for other
 * files than documents on to the runtime. */
#ifndef SXML_SXML_COB_H
#define SXML_SXML_COB_H

#include <stddef.h>
#include <stdio.h>

/* Without it the runtime's header leaves out declarations that programs with arithmetic need. */
#if __has_include(<gmp.h>)
#include <gmp.h>
#endif
/* As the generated code defines it before it includes the header. */
#define COB_KEYWORD_INLINE __inline
#include <libcob.h>

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/* What `sxml cob` knows of a source. Texts are in upper case except the source's name. */
struct sxml_cob_program {
    const char* name;
    int container; /* index of the program that it is nested in; -1 for none */
};
struct sxml_cob_file {
    const char* program;
    const char* name;            /* of the FD */
    const char* description;     /* of its records, JSON; null: never a document */
    const char* element;         /* the document element; empty: as the description says */
    const char* variable_record; /* the only record whose length varies; empty when there is none */
    const char* plain_records;   /* those of which no directive says when they are meant: "A B " */
    int has_reports;             /* written to by the Report Writer */
};
struct sxml_cob_record {
    const char* expression; /* the record in a call of cob_write */
    const char* name;
};
struct sxml_cob_source {
    const char* name; /* as COB_SOURCE_FILE has it; null at the end of the sources */
    const struct sxml_cob_program* programs;
    unsigned program_count;
    const struct sxml_cob_file* files;
    unsigned file_count;
    const struct sxml_cob_record* records;
    unsigned record_count;
};

/* Where a statement stands: the sources of its C code, and which of them it is in. */
#define SXML_COB_HERE sxml_cob_sources, COB_SOURCE_FILE

/* How many documents the program has open. While there are none, most calls are the runtime's. */
extern int sxml_cob_documents;

extern void sxml_cob_open(const struct sxml_cob_source*, const char*, cob_file*, int, int,
                          cob_field*);
extern void sxml_cob_close(cob_file*, cob_field*, int, int);
extern void sxml_cob_read(cob_file*, cob_field*, cob_field*, int);
extern void sxml_cob_read_next(cob_file*, cob_field*, int);
extern void sxml_cob_write(const struct sxml_cob_source*, const char*, cob_file*, cob_field*,
                           const char*, int, cob_field*, unsigned);
extern void sxml_cob_rewrite(cob_file*, cob_field*, int, cob_field*);
extern void sxml_cob_delete(cob_file*, cob_field*);
extern void sxml_cob_start(cob_file*, int, cob_field*, cob_field*, cob_field*);
extern void sxml_cob_delete_file(cob_file*, cob_field*);
extern void sxml_cob_unlock_file(cob_file*, cob_field*);
extern void sxml_cob_file_free(cob_file**, cob_file_key**);
extern void sxml_cob_file_sort_init(cob_file*, unsigned, const unsigned char*, void*, cob_field*);
extern void sxml_cob_file_sort_using(const struct sxml_cob_source*, const char*, cob_file*,
                                     cob_file*);
extern void sxml_cob_file_sort_giving(const struct sxml_cob_source*, const char*, cob_file*, size_t,
                                      ...);
extern void sxml_cob_stop_run(int) __attribute__((noreturn));
extern int sxml_cob_error_proc(const void*, const void*);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#ifndef SXML_COB_ADAPTER
#define cob_open(file, mode, sharing, status) \
    sxml_cob_open(SXML_COB_HERE, file, mode, sharing, status)
#define cob_close(...) (sxml_cob_documents ? sxml_cob_close(__VA_ARGS__) : (cob_close)(__VA_ARGS__))
#define cob_read(...) (sxml_cob_documents ? sxml_cob_read(__VA_ARGS__) : (cob_read)(__VA_ARGS__))
#define cob_read_next(...) \
    (sxml_cob_documents ? sxml_cob_read_next(__VA_ARGS__) : (cob_read_next)(__VA_ARGS__))
#define cob_write(file, record, options, status, checks_page_end)                                 \
    (sxml_cob_documents                                                                           \
         ? sxml_cob_write(SXML_COB_HERE, file, record, #record, options, status, checks_page_end) \
         : (cob_write)(file, record, options, status, checks_page_end))
#define cob_rewrite(...) \
    (sxml_cob_documents ? sxml_cob_rewrite(__VA_ARGS__) : (cob_rewrite)(__VA_ARGS__))
#define cob_delete(...) \
    (sxml_cob_documents ? sxml_cob_delete(__VA_ARGS__) : (cob_delete)(__VA_ARGS__))
#define cob_start(...) (sxml_cob_documents ? sxml_cob_start(__VA_ARGS__) : (cob_start)(__VA_ARGS__))
#define cob_delete_file sxml_cob_delete_file
#define cob_unlock_file sxml_cob_unlock_file
#define cob_file_free sxml_cob_file_free
#define cob_file_sort_init sxml_cob_file_sort_init
#define cob_file_sort_using(sort_file, file) \
    sxml_cob_file_sort_using(SXML_COB_HERE, sort_file, file)
#define cob_file_sort_giving(sort_file, ...) \
    sxml_cob_file_sort_giving(SXML_COB_HERE, sort_file, __VA_ARGS__)
#define cob_stop_run sxml_cob_stop_run
#define cob_sys_error_proc sxml_cob_error_proc
#endif

#endif
