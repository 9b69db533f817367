#include "fsi/xml/sxml/host_functions.h"

#include <cstddef>
#include <cstring>
#include <iterator>

#include "fsi/xml/sxml/entries.h"

namespace {

struct NamedHostFunction {
    const char* name;
    HostFunction* function;
};

// All names that hosts offer, in the order in which a host is asked for them. Most functions are
// only kept.
NamedHostFunction functions[] = {
    {"QTrace", nullptr},
    {"Q4DBFromPath", nullptr},
    {"Q4FlattenName", nullptr},
    {"Q4XFDFree", nullptr},
    {"Q4ParseXFD", nullptr},
    {"Q4MatchFDInfotoXFD", nullptr},
    {"Q4FreeTable", nullptr},
    {"Q4MatchDBColstoXFD", nullptr},
    {"Q4TestCOBOLCond", nullptr},
    {"Q4ConvertDateTime", nullptr},
    {"Q4TestData", nullptr},
    {"Q4TestDatap", nullptr},
    {"Q4CheckExtraWhere", nullptr},
    {"Q4ParseErrorFile", nullptr},
    {"Q4DefineSuffixes", nullptr},
    {"Q4RemoveSuffix", nullptr},
    {"Q4FillWhereMagic", nullptr},
    {"Q4MatchDBKeystoXFD", nullptr},
    {"Q4FindColumn", nullptr},
    {"Q4make_sql_name", nullptr},
    {"Q4fill_nines", nullptr},
    {"Q4build_key", nullptr},
    {"Q4free_string", nullptr},
    {"Q4TransactionTrace", nullptr},
    {"Q4CurTrace", nullptr},
    {"Qconvert", nullptr},
    {"QconvertData", nullptr},
    {"cvt_8_decimal", nullptr},
    {"f_rename", nullptr},
    {"f_remove", nullptr},
    {"f_copy", nullptr},
    {"w_message_box", nullptr},
    {"i_open", nullptr},
    {"i_close", nullptr},
    {"i_info", nullptr},
    {"i_write", nullptr},
    {"i_start", nullptr},
    {"i_next", nullptr},
    {"i_read", nullptr},
    {"i_delete", nullptr},
};

// Places in the table of the functions that the module calls.
enum Place : std::size_t {
    Q4_XFD_FREE = 3,
    Q4_PARSE_XFD = 4,
    Q4_TEST_COBOL_COND = 8,
    Q_CONVERT = 25,
    F_RENAME = 28,
    F_REMOVE = 29,
    F_COPY = 30
};
static_assert(std::size(functions) == 40);

template <typename Function>
Function* at(Place place) {
    return reinterpret_cast<Function*>(functions[place].function);
}

}  // namespace

namespace host_functions {

Q4ParseXFDFunction* parse_xfd() {
    return at<Q4ParseXFDFunction>(Q4_PARSE_XFD);
}
Q4XFDFreeFunction* free_xfd() {
    return at<Q4XFDFreeFunction>(Q4_XFD_FREE);
}
Q4TestCOBOLCondFunction* test_condition() {
    return at<Q4TestCOBOLCondFunction>(Q4_TEST_COBOL_COND);
}
QconvertFunction* convert() {
    return at<QconvertFunction>(Q_CONVERT);
}
XmlRemoveEntry* remove_file() {
    return at<XmlRemoveEntry>(F_REMOVE);
}
XmlRenameEntry* rename_file() {
    return at<XmlRenameEntry>(F_RENAME);
}
XmlCopyEntry* copy_file() {
    return at<XmlCopyEntry>(F_COPY);
}

}  // namespace host_functions

const void* xml_set_host_function(const char* name, HostFunction* function) {
    for (NamedHostFunction& entry : functions) {
        if (name == nullptr) {
            if (entry.function == nullptr) return entry.name;
        } else if (std::strcmp(entry.name, name) == 0) {
            const auto* before = reinterpret_cast<const void*>(entry.function);
            entry.function = function;
            return before;
        }
    }
    return nullptr;
}
