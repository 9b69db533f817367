#include "fsi/xml/handlers/declarations/content_model.h"

#include <array>
#include <cstddef>

#include "host/trace.h"

namespace {

constexpr std::size_t MAX_LEVELS = 100;

const char* type_word(XML_Content_Type type) {
    switch (type) {
        case XML_CTYPE_EMPTY:
            return "type: empty";
        case XML_CTYPE_ANY:
            return "type: any";
        case XML_CTYPE_MIXED:
            return "type: mixed";
        case XML_CTYPE_NAME:
            return "type: name";
        case XML_CTYPE_CHOICE:
            return "type: choice";
        case XML_CTYPE_SEQ:
            return "type: seq";
        default:
            return "(nil)";
    }
}

const char* quantifier_word(XML_Content_Quant quantifier) {
    switch (quantifier) {
        case XML_CQUANT_NONE:
            return "quant: none";
        case XML_CQUANT_OPT:
            return "quant: opt";
        case XML_CQUANT_REP:
            return "quant: rep";
        case XML_CQUANT_PLUS:
            return "quant: plus";
        default:
            return "(nil)";
    }
}

void trace_head(const XML_Content& model) {
    host_trace(1, HOST_TRACE_MODELS, "Dumping content model");
    host_trace(0, HOST_TRACE_MODELS, "%s", type_word(model.type));
    host_trace(0, HOST_TRACE_MODELS, "%s", quantifier_word(model.quant));
    host_trace(0, HOST_TRACE_MODELS, "%s", model.name ? model.name : "No name");
}

// A model whose children are being traced.
struct Level {
    const XML_Content* model;
    unsigned next_child;
};

}  // namespace

void dump_content_model(const XML_Content* model) {
    if (!host_trace_on) return;
    std::array<Level, MAX_LEVELS> levels;
    std::size_t depth = 1;
    levels[0] = {model, 0};
    trace_head(*model);
    while (depth > 0) {
        Level& level = levels[depth - 1];
        if (level.next_child == level.model->numchildren || depth == MAX_LEVELS) {
            host_trace(-1, HOST_TRACE_MODELS, "Done with model");
            --depth;
            continue;
        }
        const XML_Content* child = &level.model->children[level.next_child++];
        trace_head(*child);
        levels[depth++] = {child, 0};
    }
}
