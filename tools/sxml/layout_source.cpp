#include "tools/sxml/layout_source.h"

#include <cstdio>

#include "tools/sxml/errors.h"

namespace command {

records::Description load_layout(const LayoutOptions& options, records::RecordEncoding encoding,
                                 Reports reports) {
    records::LayoutOptions layout = options.layout;
    layout.name_case = records::configured_name_case();
    layout.encoding = encoding;
    if (encoding == records::RecordEncoding::ebcdic) layout.ebcdic_sign = true;
    records::Diagnostics diagnostics;
    std::optional<records::Description> description =
        records::load_description(options.file, options.copybook, layout, diagnostics);
    if (reports == Reports::shown) std::fputs(diagnostics.text().c_str(), stderr);
    if (!description || diagnostics.has_errors()) {
        fail(options.file + ": there is no usable record layout");
    }
    if (description->record_length() <= 0) fail(options.file + ": the record has no bytes");
    return std::move(*description);
}

}  // namespace command
