#include "tests/command/contents.h"

#include <expat.h>
#include <gtest/gtest.h>

namespace {

class Contents {
  public:
    static std::vector<std::string> of(const std::string& document, Zeros zeros) {
        Contents contents;
        contents.zeros_ = zeros;
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, &contents);
        XML_SetElementHandler(parser, start, finish);
        XML_SetCharacterDataHandler(parser, text);
        EXPECT_EQ(XML_Parse(parser, document.data(), static_cast<int>(document.size()), 1),
                  XML_STATUS_OK)
            << document;
        XML_ParserFree(parser);
        return contents.lines_;
    }

  private:
    static void XMLCALL start(void* user, const XML_Char* name, const XML_Char**) {
        auto& self = *static_cast<Contents*>(user);
        self.path_.emplace_back(name);
        self.text_.clear();
    }
    static void XMLCALL text(void* user, const XML_Char* text, int length) {
        static_cast<Contents*>(user)->text_.append(text, static_cast<std::size_t>(length));
    }
    static void XMLCALL finish(void* user, const XML_Char*) {
        auto& self = *static_cast<Contents*>(user);
        const char* white = " \t\r\n";
        const std::size_t begin = self.text_.find_first_not_of(white);
        if (begin != std::string::npos) {
            const std::size_t end = self.text_.find_last_not_of(white);
            std::string line = self.text_.substr(begin, end + 1 - begin);
            const bool is_zero =
                self.zeros_ == Zeros::left_out && line.find_first_not_of("0.") == std::string::npos;
            // The document element is called as the user wishes.
            for (std::size_t i = self.path_.size(); i-- > 1;) line.insert(0, self.path_[i] + "/");
            if (!is_zero) self.lines_.push_back(line);
        }
        self.text_.clear();
        self.path_.pop_back();
    }

    std::vector<std::string> path_;
    std::string text_;
    Zeros zeros_ = Zeros::left_out;
    std::vector<std::string> lines_;
};

}  // namespace

std::vector<std::string> contents_of(const std::string& document, Zeros zeros) {
    return Contents::of(document, zeros);
}
