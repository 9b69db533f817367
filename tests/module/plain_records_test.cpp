// The lane for plain records against Expat alone, on documents with anything in them.
//     SXML_PLAIN_DOCUMENTS   how many (3,000)
#include <cstdlib>
#include <iterator>
#include <random>

#include "host/encoding.h"
#include "tests/module/module_fixture.h"
#include "tests/module/sample_descriptions.h"

namespace {

constexpr std::string_view RECORDS[] = {
    " <customer>\r\n  <cust_id>42</cust_id>\r\n  <cust_name>Smith &amp; Son</cust_name>\r\n"
    "  <balance>123.45</balance>\r\n  <addr>\r\n   <city>Paris</city>\r\n   <zip>75001</zip>\r\n"
    "  </addr>\r\n  <phone>1234</phone>\r\n  <phone></phone>\r\n  <phone>5678</phone>\r\n"
    " </customer>\r\n",
    "<customer id=\"1\" b='>'><cust_id>7</cust_id><addr ><city>M\xC3\xBCnchen\n</city></addr>"
    "<phone/>x</customer>",
    "\n<customer>\n<cust_name>\n  long enough a name, with ] and \xE2\x82\xAC\n</cust_name>"
    "<other><cust_id>9</cust_id></other></customer>\n",
    "<customer/>",
};

constexpr std::string_view TOKENS[] = {
    "<",
    ">",
    "/",
    "&",
    "&amp;",
    "&#65;",
    "&#x3c;",
    "&lt;",
    "&quot;",
    "]]>",
    "]]",
    "]",
    "<!-- x -->",
    "<!-- > -- -->",
    "\r",
    "\r\n",
    "\n",
    "\t",
    " ",
    "<![CDATA[a>]]>",
    "<?p <x> ?>",
    "\x01",
    "\x7F",
    "\xC3\xA9",
    "\xFF",
    "\xC0\x80",
    "\xED\xA0\x80",
    "\xEF\xBF\xBE",
    " a='1'",
    " b=\">\"",
    " a ='1'",
    " a='1' a='2'",
    " a='<'",
    " a='&lt;'",
    " a='\xC3\xA9'",
    "<zip>",
    "</zip>",
    "<zip >",
    "</zip >",
    "<x/>",
    "<x></x>",
    "<ZIP>1</ZIP>",
    "<9>",
    "<-x/>",
    "<a:b/>",
    "\xC2\x85",
    "&e;",
    "<\xC3\xA9/>",
    "\xF4\x90\x80\x80",
    "<customer>",
    "</customer>",
    "<customer/>",
    "</custfile>",
    "<phone>9</phone>",
    "\xE0\x80\x80",
};

constexpr std::string_view HEADS[] = {
    "<custfile>",
    "<?xml version='1.0' encoding='utf-8'?>\n<custfile>\n",
    "\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8'?><!-- c --><custfile a='1'>",
    "<?xml version='1.0' encoding='iso-8859-1'?><custfile>",
    "<?xml version='1.0' encoding='us-ascii'?><custfile>",
    "<?xml version='1.0' encoding='utf8'?><custfile>",
    "<?xml version='1.0' encoding='windows-1252'?><custfile>",
    "<!DOCTYPE custfile [<!ELEMENT custfile ANY><!ELEMENT zip (#PCDATA)>]><custfile>",
    "<!DOCTYPE custfile [<!ENTITY e 'v<zip>2</zip>'><!ENTITY amp '&#38;#38;'>]><custfile>",
    "<!DOCTYPE custfile [<!ATTLIST zip k CDATA 'd'>]><custfile>",
    "<!DOCTYPE custfile SYSTEM 'x.dtd' [%p;]><custfile>",
};

class PlainRecordsTest : public ModuleTest {
  protected:
    std::size_t below(std::size_t limit) { return numbers_() % limit; }

    std::string mutated(std::string text) {
        for (std::size_t left = below(4); left > 0; --left) {
            const std::size_t at = below(text.size() + 1);
            switch (below(5)) {
                case 0:
                case 1:
                    text.insert(at, TOKENS[below(std::size(TOKENS))]);
                    break;
                case 2:
                    text.erase(at, 1 + below(12));
                    break;
                case 3:
                    text.insert(at, text.substr(below(text.size() + 1), 1 + below(60)));
                    break;
                default:
                    if (at < text.size()) text[at] = static_cast<char>(numbers_());
            }
        }
        return text;
    }

    std::string document() {
        constexpr std::size_t COUNTS[] = {1, 2, 5, 12, 300};
        std::string text(HEADS[below(3) > 0 ? below(3) : below(std::size(HEADS))]);
        const std::size_t rate = 1 + below(30);
        for (std::size_t left = COUNTS[below(std::size(COUNTS))]; left > 0; --left) {
            const std::string record(RECORDS[below(std::size(RECORDS))]);
            text += below(rate) == 0 ? mutated(record) : record;
        }
        text += "</custfile>";
        if (below(10) == 0) text = mutated(text);
        if (below(10) == 0) text.resize(below(text.size() + 1));
        return text;
    }

    // The records, and why there are no more.
    std::string read(Xfd* xfd, const std::string& text, const char* plain) {
        set("SXML_PLAIN_RECORDS", plain);
        std::string log;
        for (const ReadResult& result : records(xfd, text, 60)) {
            log += std::to_string(result.result) + "," + std::to_string(result.code) + "," +
                   result.record + "\n";
        }
        if (*host_file_error() == HOST_FILE_XML)
            log += std::to_string(*host_error_subcode()) + *host_error_text();
        return log;
    }

  private:
    std::mt19937_64 numbers_{17};
};

TEST_F(PlainRecordsTest, TheLaneReadsWhatExpatReads) {
    const char* const count = std::getenv("SXML_PLAIN_DOCUMENTS");
    XfdBuilder builder = customers();
    for (int left = count != nullptr ? std::atoi(count) : 3000; left > 0; --left) {
        const std::string text = document();
        ASSERT_EQ(read(builder.xfd(), text, "yes"), read(builder.xfd(), text, "no")) << text;
    }
}

// Records that end at, before and after the end of what is read at once, and larger ones.
TEST_F(PlainRecordsTest, RecordsOfAnySizeAreRead) {
    XfdBuilder builder = customers();
    const std::string end = "</cust_name></customer>";
    std::string text = "<custfile>";
    for (const std::size_t size : {100U, 31'700U, 31'750U, 100U, 32'100U, 70'000U, 20'000U}) {
        text += "<customer><cust_name>" + std::string(size, 'x') + end;
        for (int i = 0; i < 40; ++i) text += RECORDS[static_cast<std::size_t>(i) % 4];
    }
    text += "</custfile>";
    for (std::size_t blanks = 0; blanks < 600; blanks += 7) {
        const std::string moved = std::string(blanks, ' ') + text;
        ASSERT_EQ(read(builder.xfd(), moved, "yes"), read(builder.xfd(), moved, "no")) << blanks;
    }
}

}  // namespace
