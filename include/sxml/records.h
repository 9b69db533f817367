/* Records of files and documents, for C and C++ programs; linked with libsxml_records.
 *
 *     const char* options[] = {"encoding=cp037", NULL};
 *     SxmlFile* file = sxml_open("orders.cpy", "orders.dat", "r", options);
 *     const int name = sxml_field(file, "customer_name");
 *     while (sxml_read(file) == 1) puts(sxml_get_text(file, name));
 *     if (sxml_finish(file) != 0) fprintf(stderr, "%s\n", sxml_problem(file));
 *     sxml_close(file);
 *
 * A file is a record file or an XML document; the calls are the same for both. A call that fails
 * says so by its result, and sxml_problem says why, with the place. A file remembers its first
 * failure of opening, reading or writing: every later sxml_read, sxml_write and sxml_finish fails
 * with it. So a program may leave the checking to sxml_finish. A field that cannot be had or set
 * fails that call alone.
 *
 * A null handle is allowed everywhere; calls with one fail.
 *
 * Threads: a handle is used by one thread at a time. Threads that work on handles of their own take
 * turns within the library. Nothing else is shared: a setting given with sxml_open counts for that
 * handle only. */
#ifndef SXML_RECORDS_H
#define SXML_RECORDS_H

#include <stddef.h>
#include <stdint.h>

#if defined(SXML_RECORDS_BUILD) && defined(_WIN32)
#define SXML_RECORDS_API __declspec(dllexport)
#elif defined(_WIN32)
#define SXML_RECORDS_API __declspec(dllimport)
#else
#define SXML_RECORDS_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef struct SxmlFile SxmlFile;

/* ---- Files ---- */

/* Opens a file.
 * `layout`: a copybook, a program or a description file (.xfd).
 * `file`: the record file or document; "-" is standard input or output, an "http:" address a
 * document to read. Null: no file; the handle serves to take records of the program's own apart and
 * to put them together (sxml_set_record, sxml_record).
 * `mode`: "r" reads, "w" writes a new file. Not looked at without a file.
 * `options`: "NAME=VALUE" texts, ended by a null pointer; null for none. The names are:
 *   kind           document or records; without it a name that ends in .xml, or is a web address,
 *                  is a document
 *   encoding       the character set of the records' text, as with `sxml to-xml --encoding`;
 *                  without it UTF-8
 *   format         the form of a record file, as with `sxml to-xml --record-format`:
 *                  fixed (default), line, rdw, bdw, gnucobol ..., and auto for reading; lines is
 *                  another name of line
 *   skip, skip-end bytes at the start and the end of a record file that belong to no record
 *   record         the elements of a document that are its records, as `sxml from-xml --record`
 *   strict         yes: what would be a warning of a record fails that record (SXML_RECORD)
 *   layout, when, hide
 *                  one more copybook, a condition, an item without an element: as the options of
 *                  the command, each may be given several times
 *   fd, copy-path, source-format, name, machine, binary-size, byte-order, national-size, odo,
 *   debugging-lines, no-truncate, ebcdic-sign, filler
 *                  as the options of the command (source-format is its --format); copy-path may be
 *                  given several times; the last four take yes or no
 *   buffer         by-type (default), spaces, zeros or keep: as `sxml from-xml --buffer`
 * and every setting, such as SXML_CREATE_STYLE=NONE. A file of the other kind, and one that is
 * written, refuses skip, skip-end and record.
 * Result: a handle, to be given back with sxml_close, also when opening has failed: sxml_problem is
 * then not empty. Null only when there is no memory for the handle. */
SXML_RECORDS_API SxmlFile* sxml_open(const char* layout, const char* file, const char* mode,
                                     const char* const* options);

/* Reads the next record. Result: 1; 0 at the end of a file that is complete; -1. */
SXML_RECORDS_API int sxml_read(SxmlFile* file);

/* Writes the record, and blanks it for the next one. Result: 0 or -1; a record that the file cannot
 * hold is not written. */
SXML_RECORDS_API int sxml_write(SxmlFile* file);

/* Takes a failure of sxml_read or sxml_write back that concerned that record alone (its cause is
 * SXML_RECORD): the next sxml_read gives the record after, and sxml_write writes another one. Until
 * then the record has the data that is available, for a file of rejected records; it is blank when
 * a document has a wrong counter for sliding tables. Result: 0, or -1 when the file as a whole has
 * failed, or nothing has. */
SXML_RECORDS_API int sxml_skip(SxmlFile* file);

/* Completes a file that is written: it replaces an older file of its name. For a file that is read,
 * tells whether anything has failed. Result: 0 or -1. */
SXML_RECORDS_API int sxml_finish(SxmlFile* file);

/* Releases the handle. A file that is written but not finished is discarded: an older file of its
 * name is unchanged. */
SXML_RECORDS_API void sxml_close(SxmlFile* file);

/* ---- What went wrong ---- */

/* The last failure: "FILE:LINE:COLUMN: what; remedy" or "FILE: record N, field F, byte offset B
 * ...". Empty when there was none. Valid until the next call with the handle, as all texts are. */
SXML_RECORDS_API const char* sxml_problem(const SxmlFile* file);

enum SxmlCause {
    SXML_NO_PROBLEM = 0,
    SXML_USAGE = 1,     /* an argument, an option or the order of the calls */
    SXML_SETTING = 2,   /* the value of a setting */
    SXML_LAYOUT = 3,    /* the record description */
    SXML_NOT_FOUND = 4, /* there is no such file, or field */
    SXML_NOT_PERMITTED = 5,
    SXML_BUSY = 6,
    SXML_NO_SPACE = 7,
    SXML_NO_MEMORY = 8,
    SXML_INPUT_OUTPUT = 9,
    SXML_DOCUMENT = 10, /* the document is not well-formed, or not complete */
    SXML_RECORD = 11    /* a record or a value cannot be what it has to become */
};

/* Of the last failure. Places are 0, and offsets -1, where they are not known. */
SXML_RECORDS_API int sxml_problem_cause(const SxmlFile* file);
SXML_RECORDS_API int64_t sxml_problem_record(const SxmlFile* file);
SXML_RECORDS_API int64_t sxml_problem_line(const SxmlFile* file);
SXML_RECORDS_API int64_t sxml_problem_column(const SxmlFile* file);
SXML_RECORDS_API int64_t sxml_problem_offset(const SxmlFile* file);

/* After opening, what the compiler of copybooks says about the layout. Then what became of the
 * record that was read or written last, where it is not just what was asked for: a text that was
 * cut, a number that was repaired, elements of a document that went into no field, a record of no
 * layout. `index` counts from 0; null after the last. */
SXML_RECORDS_API const char* sxml_warning(const SxmlFile* file, int index);

/* ---- Fields ---- */

enum SxmlKind { SXML_TEXT = 0, SXML_NUMBER = 1, SXML_FLOAT = 2, SXML_BINARY = 3 };

/* The number of fields, each occurrence of a table by itself. They are numbered from 0 in the order
 * of the layout. */
SXML_RECORDS_API int sxml_field_count(const SxmlFile* file);

/* The field of this name: "balance", "phone(2)"; with the names of groups in front where it is not
 * the only one ("shipping/city"). COBOL's spelling (CUST-NAME) is taken, too.
 * Result: its number, or -1. Calls that are given -1 fail and leave the problem as it is. */
SXML_RECORDS_API int sxml_field(SxmlFile* file, const char* name);

/* Name with subscripts; the names of the groups that it is in, outermost first, and the name,
 * separated by "/". Null for a number that is not a field's. */
SXML_RECORDS_API const char* sxml_field_name(SxmlFile* file, int field);
SXML_RECORDS_API const char* sxml_field_path(SxmlFile* file, int field);
/* -1 for a number that is not a field's. Offset and length are in bytes, decimals are the digits
 * after the decimal point. */
SXML_RECORDS_API int sxml_field_kind(const SxmlFile* file, int field);
SXML_RECORDS_API int32_t sxml_field_offset(const SxmlFile* file, int field);
SXML_RECORDS_API int32_t sxml_field_length(const SxmlFile* file, int field);
SXML_RECORDS_API int sxml_field_decimals(const SxmlFile* file, int field);

/* Whether the field is one of this record: its layout applies, its condition holds, its entry of a
 * table is in use. Result: 1, 0 or -1. */
SXML_RECORDS_API int sxml_applies(SxmlFile* file, int field);

/* ---- Values of the record ---- */

/* As UTF-8: characters without the spaces at the end; numbers with a point; binary data in
 * hexadecimal. Null when the field holds no valid number or text. */
SXML_RECORDS_API const char* sxml_get_text(SxmlFile* file, int field);
/* Result: 0, or -1 for a value that is not an integer of 64 bits. */
SXML_RECORDS_API int sxml_get_integer(SxmlFile* file, int field, int64_t* value);
/* The number is value / 10^decimals. Result: 0, or -1 when it has more than 18 digits. */
SXML_RECORDS_API int sxml_get_decimal(SxmlFile* file, int field, int64_t* value, int* decimals);

/* Result: 0, or -1 when the field cannot hold the value exactly; it then stays as it is. */
SXML_RECORDS_API int sxml_set_text(SxmlFile* file, int field, const char* text);
SXML_RECORDS_API int sxml_set_integer(SxmlFile* file, int field, int64_t value);
SXML_RECORDS_API int sxml_set_decimal(SxmlFile* file, int field, int64_t value, int decimals);

/* Blanks the record: characters spaces, numbers zero. */
SXML_RECORDS_API int sxml_clear(SxmlFile* file);
/* The record's bytes; where tables slide (the option odo), with all their entries, whether in use
 * or not, as the fields' offsets have it. In a file those in use lie by themselves. */
SXML_RECORDS_API const void* sxml_record(SxmlFile* file, size_t* length);
/* Takes a record's bytes, as many as sxml_record tells or fewer; the rest is blank. */
SXML_RECORDS_API int sxml_set_record(SxmlFile* file, const void* record, size_t length);

#ifdef __cplusplus
}
#endif

#endif
