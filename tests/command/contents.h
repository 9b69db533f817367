// What documents hold, as Expat alone says.
#pragma once

#include <string>
#include <vector>

// The texts of the elements that have one, each with its path. What fields without data come to is
// left out: empty texts and zeros.
enum class Zeros { left_out, counted };
std::vector<std::string> contents_of(const std::string& document, Zeros zeros = Zeros::left_out);
