#include "fsi/xml/sxml/xml_file.h"

#include "fsi/xml/sxml/host_functions.h"
#include "fsi/xml/sxml/plugin.h"
#include "host/memory.h"
#include "sxml/xml_api.h"

XmlFile* new_xml_file() {
    return static_cast<XmlFile*>(host_alloc(sizeof(XmlFile), HOST_BLOCK_ZEROED, SXML_SOURCE,
                                            __LINE__, "XML file pointer", 0));
}

void free_xml_file(XmlFile* file) {
    if (file->xfd != nullptr) host_functions::free_xfd()(file->xfd);
    if (file->out != nullptr) host_fclose(file->out);
    if (file->parser != 0) xml_free_parser(file->parser);
    if (file->item_tags != nullptr) host_free(file->item_tags, SXML_SOURCE, __LINE__, 0);
    if (file->write_plan != nullptr) host_free(file->write_plan, SXML_SOURCE, __LINE__, 0);
    if (file->input_items != nullptr) free_input_items(file->input_items);
    host_free(file, SXML_SOURCE, __LINE__, 0);
}
