// Entity declarations among the tokens that Expat hands a default handler. A handler for entity
// declarations would learn of them in a simpler way, but keep them from the default handler.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

enum class DeclarationPlace : std::uint8_t {
    BEFORE,   // the DOCTYPE declaration has not started
    BETWEEN,  // two declarations
    NAME,     // of an entity comes next, or goes on
    VALUE,    // of an entity comes next
    LITERAL,  // the value goes on: Expat cuts what it converts into pieces
    REST,     // of a declaration
    AFTER     // the DOCTYPE declaration has ended
};

// Zero-filled, it stands before the DOCTYPE declaration. Released with forget_declaration.
struct EntityDeclaration {
    char* bytes;  // name and value
    std::size_t size;
    std::size_t room;
    std::size_t name_size;
    DeclarationPlace place;
};

enum class DeclarationToken {
    OTHER,
    ENTITY,    // name and text of an internal general entity are complete
    END,       // the last declaration has been
    NO_MEMORY  // a part of an entity could not be kept
};

// Reads one token.
DeclarationToken read_declaration_token(EntityDeclaration& declaration, std::string_view token);

// The entity declared last, as Expat has it: references to characters are replaced in the text.
std::string_view declared_name(const EntityDeclaration& declaration);
std::string_view declared_text(const EntityDeclaration& declaration);

void forget_declaration(EntityDeclaration& declaration);
