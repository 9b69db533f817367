// The module's entries, as the host finds them in the dispatch table. Signatures and slots are in
// host/dispatch_table.h. Every entry of the file interface first sets the host's file error code.
#pragma once

#include "host/dispatch_table.h"

extern "C" {
XmlInitEntry xml_init;
XmlTermEntry xml_term;
XmlVersionInfoEntry xml_version_info;
XmlSetHostFunctionEntry xml_set_host_function;
XmlRegisterSettingsEntry xml_register_settings;

// Creates or empties a file. Result: 1, or 0 when that fails.
XmlMakeEntry xml_smake;
// Opens a file; the low two bits of `mode` tell the direction. For output everything up to the
// document element's start tag is written. Result: the file record, given back with xml_sclose;
// null on failure, and then nothing stays open or allocated.
XmlOpenEntry xml_sopen;
// Completes the document of an output file and releases the file record. Result: 0.
XmlCloseEntry xml_sclose;
// Fills a record from the next record element. Result: 0 when there is none.
XmlReadEntry xml_sread;
// Writes one record of `length` bytes as an element. Result: 1.
XmlWriteEntry xml_swrite;
XmlUnsupportedEntry xml_sunsupported_a;
XmlUnsupportedEntry xml_sunsupported_b;
// Handed on to the host function of the same task, whose result they give.
XmlRemoveEntry xml_sremove;
XmlRenameEntry xml_srename;
XmlCopyEntry xml_scopy;
}
