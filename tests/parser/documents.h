// Documents of our own making: each is parsed from every side and compared with Expat alone.
#pragma once

#include <string>
#include <vector>

struct SampleDocument {
    std::string name;
    std::string bytes;
};

std::vector<SampleDocument> sample_documents();

// UTF-8 text in 16-bit units.
std::string utf16(const std::string& text, bool big_endian, bool byte_order_mark);
