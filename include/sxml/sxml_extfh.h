/* Included before the C code that cobc makes of a program. */

/* cobc declares the handler itself only when the first program of a source has files. */
int sxml_extfh();

/* What cobc has done without the handler goes through it as well: CANCEL closes the files of a
   program, SORT and MERGE read and write files. */
#define cob_close sxml_cob_close
#define cob_file_sort_using sxml_cob_file_sort_using
#define cob_file_sort_giving sxml_cob_file_sort_giving

/* Files with keys do not: through a handler the runtime loses sight of relative keys. */
#define cob_extfh_open sxml_cob_open
#define cob_extfh_close sxml_cob_handled_close
#define cob_extfh_read sxml_cob_read
#define cob_extfh_read_next sxml_cob_read_next
#define cob_extfh_write sxml_cob_write
#define cob_extfh_rewrite sxml_cob_rewrite
#define cob_extfh_delete sxml_cob_delete
#define cob_extfh_start sxml_cob_start
