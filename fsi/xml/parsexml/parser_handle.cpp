#include "fsi/xml/parsexml/parser_handle.h"

#include "host/handles.h"
#include "host/memory.h"
#include "sxml/xml_api.h"

namespace {

const char* const parser_messages[XMLERR_COUNT + 1] = XML_ERROR_MESSAGES;

std::int32_t parser_last_error = XMLERR_NONE;

std::uint32_t parser_type = 0;  // 0 until the first handle is asked for

XmlParserInfo* info_of(std::uint32_t handle) {
    return static_cast<XmlParserInfo*>(host_handle_ptr(handle));
}

void destroy_parser(std::uint32_t handle) {
    XmlParserInfo& info = *info_of(handle);
    free_parser(info.parser);
    info.parser = nullptr;
    close_input(info);
}

}  // namespace

void set_parser_error(XmlErrorCode code) {
    parser_last_error = code;
}

std::uint32_t new_parser_handle() {
    if (!parser_type) {
        const HostHandleType type{sizeof(XmlParserInfo), {}, HOST_HANDLE_KIND, {}, destroy_parser};
        parser_type = host_handle_type_register(&type);
    }
    if (!parser_type) return 0;
    return host_handle_new(parser_type, 0, 0, PARSEXML_SOURCE, __LINE__, "XML Parser info", 0);
}

XmlParserInfo* lookup_parser_info(std::uint32_t handle) {
    if (xml_is_parser(handle)) return info_of(handle);
    set_parser_error(XMLERR_BAD_PARSER);
    return nullptr;
}

XmlParser* lookup_parser(std::uint32_t handle) {
    const XmlParserInfo* info = lookup_parser_info(handle);
    return info ? info->parser : nullptr;
}

std::uint32_t next_parser_handle(std::uint32_t previous) {
    return parser_type ? host_handle_next(previous, parser_type) : 0;
}

void close_input(XmlParserInfo& info) {
    if (info.stream && (info.flags & XML_INPUT_IS_OURS)) host_fclose(info.stream);
    info.stream = nullptr;
    if (!info.source) return;
    if (info.flags & XML_INPUT_IS_LOCAL_COPY) host_remove_file(info.source);
    host_free(info.source, PARSEXML_SOURCE, __LINE__, 0);
    info.source = nullptr;
}

std::int32_t xml_is_parser(std::uint32_t handle) {
    return parser_type != 0 && host_handle_type(handle) == parser_type ? 1 : 0;
}

std::int32_t xml_free_parser(std::uint32_t parser) {
    if (!lookup_parser_info(parser)) return 0;
    host_handle_free(parser, PARSEXML_SOURCE, __LINE__, 0);
    return 1;
}

const char* xml_last_error(std::int32_t* code) {
    if (code) *code = parser_last_error;
    return parser_messages[parser_last_error];
}
