#include "fsi/xml/handlers/declarations/declaration_tokens.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "fsi/xml/handlers/make_room.h"
#include "host/utf8.h"

namespace {

bool is_white_space(std::string_view token) {
    return token.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

bool append(EntityDeclaration& declaration, std::string_view text) {
    if (!make_room(declaration.bytes, declaration.room, declaration.size + text.size(),
                   "Entity declaration"))
        return false;
    std::memcpy(declaration.bytes + declaration.size, text.data(), text.size());
    declaration.size += text.size();
    return true;
}

// Length of the reference to a character that a text begins with, and the character; 0 for none.
std::size_t character_reference(std::string_view text, std::uint32_t& code) {
    if (text.size() < 3 || text[0] != '&' || text[1] != '#') return 0;
    const std::size_t end = text.find(';');
    if (end == std::string_view::npos) return 0;
    const bool is_hexadecimal = text[2] == 'x';
    const char* const first = text.data() + (is_hexadecimal ? 3 : 2);
    const auto result = std::from_chars(first, text.data() + end, code, is_hexadecimal ? 16 : 10);
    return result.ptr == text.data() + end ? end + 1 : 0;
}

// Replaces the references to characters in the value, whose quotes go.
void unquote(EntityDeclaration& declaration) {
    std::string_view left(declaration.bytes + declaration.name_size + 1,
                          declaration.size - declaration.name_size - 2);
    char* write = declaration.bytes + declaration.name_size;
    while (!left.empty()) {
        std::uint32_t code = 0;
        const std::size_t length = character_reference(left, code);
        if (length > 0)
            write = utf8::put(code, write);  // never longer than the reference
        else
            *write++ = left[0];
        left.remove_prefix(std::max<std::size_t>(length, 1));
    }
    declaration.size = static_cast<std::size_t>(write - declaration.bytes);
}

// Reads a value or a part of one.
DeclarationToken read_literal(EntityDeclaration& declaration, std::string_view token) {
    const bool is_first = declaration.place == DeclarationPlace::VALUE;
    if (!append(declaration, token)) return DeclarationToken::NO_MEMORY;
    declaration.place = DeclarationPlace::LITERAL;
    const char quote = declaration.bytes[declaration.name_size];
    if ((is_first && token.size() == 1) || token.back() != quote) return DeclarationToken::OTHER;
    declaration.place = DeclarationPlace::REST;
    unquote(declaration);
    return DeclarationToken::ENTITY;
}

DeclarationToken read_name(EntityDeclaration& declaration, std::string_view token) {
    if (token == "%") {  // parameter entities are never used
        declaration.place = DeclarationPlace::REST;
    } else if (!is_white_space(token)) {
        if (!append(declaration, token)) return DeclarationToken::NO_MEMORY;
        declaration.name_size = declaration.size;
    } else if (declaration.name_size > 0) {
        declaration.place = DeclarationPlace::VALUE;
    }
    return DeclarationToken::OTHER;
}

DeclarationToken read_between(EntityDeclaration& declaration, std::string_view token) {
    if (token == "]") {
        declaration.place = DeclarationPlace::AFTER;
        return DeclarationToken::END;
    }
    if (token == "<!ENTITY") {
        declaration.place = DeclarationPlace::NAME;
        declaration.size = declaration.name_size = 0;
    }
    return DeclarationToken::OTHER;
}

}  // namespace

DeclarationToken read_declaration_token(EntityDeclaration& declaration, std::string_view token) {
    switch (declaration.place) {
        case DeclarationPlace::BEFORE:
            if (token == "<!DOCTYPE") declaration.place = DeclarationPlace::BETWEEN;
            break;
        case DeclarationPlace::BETWEEN:
            return read_between(declaration, token);
        case DeclarationPlace::NAME:
            return read_name(declaration, token);
        case DeclarationPlace::VALUE:
            if (is_white_space(token)) break;
            if (token[0] == '"' || token[0] == '\'') return read_literal(declaration, token);
            declaration.place = DeclarationPlace::REST;
            break;
        case DeclarationPlace::LITERAL:
            return read_literal(declaration, token);
        case DeclarationPlace::REST:
            if (token == ">") declaration.place = DeclarationPlace::BETWEEN;
            break;
        case DeclarationPlace::AFTER:
            break;
    }
    return DeclarationToken::OTHER;
}

std::string_view declared_name(const EntityDeclaration& declaration) {
    return {declaration.bytes, declaration.name_size};
}

std::string_view declared_text(const EntityDeclaration& declaration) {
    return {declaration.bytes + declaration.name_size, declaration.size - declaration.name_size};
}

void forget_declaration(EntityDeclaration& declaration) {
    host_free(declaration.bytes, HANDLERS_SOURCE, __LINE__, 0);
    declaration.bytes = nullptr;
    declaration.size = declaration.room = declaration.name_size = 0;
}
