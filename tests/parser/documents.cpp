#include "tests/parser/documents.h"

#include <cstdint>

#include "host/encoding.h"

namespace {

const std::string RECORDS =
    "<orders>\n <order id=\"1\" note=\"a > b\">\n  <qty> 12 </qty><qty>7</qty>\n </order>\n"
    " <order id='2'>x > y<sub>\xC3\xA9\xE2\x82\xAC</sub> and z</order>\n <order/><order/>\n"
    "</orders>\n";

std::string declared(const std::string& encoding, const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>" + body;
}

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += text;
    return all;
}

// A document whose root start tag ends after exactly `size` bytes.
std::string start_tag_of(std::size_t size) {
    std::string tag = "<root a=\"";
    tag += std::string(size - tag.size() - 2, 'x') + "\">";
    return tag + RECORDS + "<r>1</r><r>2</r></root>";
}

void add_encodings(std::vector<SampleDocument>& all) {
    for (const bool big : {false, true}) {
        for (const bool mark : {false, true}) {
            const std::string label =
                std::string(big ? "utf16be" : "utf16le") + (mark ? "_mark" : "");
            const auto add = [&](const std::string& kind, const std::string& text) {
                all.push_back({label + kind, utf16(text, big, mark)});
            };
            add("", declared("UTF-16", RECORDS));
            add("_lower", declared("utf-16", RECORDS));
            add("_named", declared(big ? "UTF-16BE" : "UTF-16LE", RECORDS));
            add("_no_name", "<?xml version=\"1.0\"?>" + RECORDS);
            add("_bare", RECORDS);
            add("_blank_first", "\n " + RECORDS);
            add("_accents", "\n<a><r>\xC3\xA9</r><r>\xE3\xB8\xBE\xE3\xB8\xBE</r><r/></a>");
            add("_wrong", declared("ISO-8859-1", RECORDS));
        }
    }
    all.push_back({"utf8_mark", "\xEF\xBB\xBF" + declared("UTF-8", RECORDS)});
    all.push_back({"ascii", declared("US-ASCII", "<a><b>&#233;</b><b c='&#8364;'>x</b></a>")});
    all.push_back({"ascii_broken", declared("US-ASCII", "<a><b>\xE9</b></a>")});
    all.push_back({"latin1", declared("iso-8859-1",
                                      "<\xE9t\xE9 \xE0='\xE9' empty=''> \xE9 <b>&#300;</b>"
                                      "<b>&#256;&#352;</b><c>" +
                                          std::string(300, '\xFC') + "</c></\xE9t\xE9>")});
    all.push_back({"unknown_encoding", declared("X-NONE", "<a/>")});
    all.push_back({"said_utf16_is_utf8", declared("UTF-16", "<a/>")});
}

}  // namespace

std::string utf16(const std::string& text, bool big_endian, bool byte_order_mark) {
    std::string bytes;
    const auto put = [&](std::uint32_t unit) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8 & 0xFF);
        bytes += big_endian ? high : low;
        bytes += big_endian ? low : high;
    };
    if (byte_order_mark) put(0xFEFF);
    for (const char* cursor = text.c_str(); *cursor;) put(host_next_char(&cursor));
    return bytes;
}

std::vector<SampleDocument> sample_documents() {
    std::vector<SampleDocument> all = {
        {"records", "<?xml version='1.0'?>" + RECORDS},
        {"empty_root", "<c/>"},
        {"empty_root_and_more", "<?xml version='1.0'?><c a='1'/><!-- x --><?p d?>\n"},
        {"open_root", "<c></c>"},
        {"empty_records", "<c><r/><r a='1'/>\n<r></r><r/></c>"},
        {"entities",
         "<!DOCTYPE a [<!ENTITY co \"C &amp; <b>i</b>\"><!ENTITY g '>'>\n<!ENTITY n '&co;'>]>"
         "<a k='&g;'>&co;<r>&n;&lt;&#62;</r><r>&g;</r></a>"},
        {"entity_of_records",
         "<!DOCTYPE a [<!ENTITY r '<r>1</r><r/><r><s>3</s></r> '>]><a>&r;<r>x</r>&r;&r;</a>"},
        {"entity_ends_with_record",
         "<!DOCTYPE a [<!ENTITY r '<r>1</r><r k=\"v\"/>'><!ENTITY s '<r><s>3</s></r>'>"
         "<!ENTITY e '<r i=\"1\"/>'>]><a>&r;<r j='2'>x</r>&r;&s;&e;&e;&r;</a>"},
        {"entities_end_with_entities",
         "<!DOCTYPE a [<!ENTITY r '<r>1</r>\n<r k=\"v\">2<s/></r><!--c--><r/>'><!ENTITY s "
         "'<r/>&r;&r;'>"
         "<!ENTITY t 'x&s;'>]><a>&s;<r>x</r>&t;&s;&t;<r/>&r;</a>"},
        {"junk_in_entity", "<!DOCTYPE a [<!ENTITY r '<r>1</r><r>2</r><s></r>'>]><a>&r;</a>"},
        {"doctype_system", "<!DOCTYPE a SYSTEM 'a.dtd'><a>&unknown;</a>"},
        {"doctype_public", "<!DOCTYPE a PUBLIC '-//x' 'a.dtd' [<!ATTLIST a d CDATA 'v>'>]><a/>"},
        {"doctype_full",
         "<!DOCTYPE a [<!ELEMENT a (b|c)*><!NOTATION n SYSTEM 'n'><!-- > --><?p >?>"
         "<!ENTITY u SYSTEM 'u' NDATA n><!ENTITY e SYSTEM 'e'>]>\n<a>&e;<b/></a>"},
        {"doctype_empty", "<!DOCTYPE a []><a><b>1</b></a>"},
        {"cdata", "<a><![CDATA[<b>&amp;]] > ]]]]><![CDATA[>]]><r>]</r><r>]]</r></a>"},
        {"comments", "<!-- a > b --><a><!-->--><b>1<!-- > -->2</b><?p a>b?></a><!-- end -->"},
        {"gt_everywhere", "<a x='>' y=\">>\">>><b>></b>&gt;<c z='>'/>></a>"},
        {"names",
         "<\xC3\xA9t\xC3\xA9 \xCF\x80='1'><\xE6\x97\xA5>1</\xE6\x97\xA5></\xC3\xA9t\xC3\xA9>"},
        {"line_ends", "<a>\r\n<b>x\r\ny\rz</b>\t<b k='\r\n'/>\r</a>\r\n"},
        {"cut_in_text", "<a><r>1</r><r>text]"},
        {"cut_after_return", "<a><r>1</r><r>text\r"},
        {"cut_in_tag", "<a><r>1</r><r b='x"},
        {"cut_in_record", "<a><r>1</r><r><s>2</s>"},
        {"cut_character", "<a><r>1</r>\xE2\x82"},
        {"cut_in_entity", "<!DOCTYPE a [<!ENTITY r '<r>1</r><r>2</r> '>]><a>&r;&r;"},
        {"nothing", ""},
        {"only_comment", "<!-- nothing -->"},
        {"no_xml", "hello"},
        {"mismatch", "<a><r>1</r><r>2</s></a>"},
        {"undefined_entity", "<a><r>1</r><r>&no;</r></a>"},
        {"attribute_twice", "<a><r>1</r><r k='1' k='2'/></a>"},
        {"control_character", "<a><r>1</r><r>\x01</r></a>"},
        {"broken_utf8", "<a><r>1</r><r>\xC3(</r></a>"},
        {"junk_behind", "<a><r>1</r></a><b/>"},
        {"late_declaration", " <?xml version='1.0'?><a/>"},
        {"recursive_entity", "<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>"},
        {"broken_entity", "<!DOCTYPE a [<!ENTITY e '<r>'>]><a><r>1</r>&e;</a>"},
        {"tag_ends_on_read", start_tag_of(32000)},
        {"tag_ends_behind_read", start_tag_of(32001)},
        {"tag_ends_on_second_read", start_tag_of(64000)},
        {"long_attribute_of_gt", "<a><r k='" + std::string(20000, '>') + "'>1</r><r>2</r>" +
                                     repeated("<r>y</r>", 2500) + "<r k='" +
                                     std::string(9000, '>') + "'/><r/></a>"},
        {"long_comment", "<a><r>1</r><!-- " + repeated("> - ", 10000) + "--><r>2</r><r>3</r></a>"},
        {"long_error", "<a><r k='" + std::string(9000, '>') + "'>1</r><r>2</r><r>3</s></a>"},
        {"many_records", "<a>\n" + repeated(" <r><s>1</s><t> 2 </t></r>\n", 3000) + "</a>\n"},
    };
    add_encodings(all);
    return all;
}
