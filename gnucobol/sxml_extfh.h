/* Included before the C code that cobc makes of a program. */

/* cobc declares the handler itself only when the first program of a source has files. */
int sxml_extfh();

/* What cobc has done without the handler goes through it as well: CANCEL closes the files of a
   program, SORT and MERGE read and write files. */
#define cob_close sxml_cob_close
#define cob_file_sort_using sxml_cob_file_sort_using
#define cob_file_sort_giving sxml_cob_file_sort_giving
