// The sample programs' files, from cobc to xmllint.

#include "tests/command/command_run.h"

namespace {

class SamplesTest : public CommandTest {
  protected:
    // Compiles and runs a sample program, which writes `file`.
    static void make(const std::string& program, const std::string& file) {
        const Outcome compiled =
            run({"cobc", "-x", "-I", EXAMPLES, "-o", program, EXAMPLES + program + ".cbl"});
        ASSERT_EQ(compiled.status, 0) << compiled.err;
        const Outcome outcome = run({"./" + program, file});
        ASSERT_EQ(outcome.status, 0) << outcome.err;
    }

    static std::size_t count(const std::string& text, const std::string& part) {
        std::size_t found = 0;
        for (std::size_t at = text.find(part); at != std::string::npos;
             at = text.find(part, at + 1)) {
            ++found;
        }
        return found;
    }
};

TEST_F(SamplesTest, OrdersAreValidWithDtdAndSchema) {
    make("write_orders", "orders.dat");
    const std::string layout = EXAMPLES + "orders.cpy";
    EXPECT_EQ(sxml({"to-xml", "orders.dat", "orders.xml", "--layout", layout}).err, "");
    const Outcome valid = run({"xmllint", "--noout", "--valid", "orders.xml"});
    EXPECT_EQ(valid.status, 0) << valid.err;
    write_file("orders.dtd", sxml({"dtd", layout}).out);
    write_file("orders.xsd", sxml({"schema", layout}).out);
    EXPECT_EQ(sxml({"to-xml", "orders.dat", "plain.xml", "--layout", layout, "--set",
                    "SXML_CREATE_STYLE=NONE"})
                  .err,
              "");
    const Outcome with_dtd = run({"xmllint", "--noout", "--dtdvalid", "orders.dtd", "plain.xml"});
    EXPECT_EQ(with_dtd.status, 0) << with_dtd.err;
    const Outcome with_schema = run({"xmllint", "--noout", "--schema", "orders.xsd", "plain.xml"});
    EXPECT_EQ(with_schema.status, 0) << with_schema.err;
    const std::string document = read_file("orders.xml");
    EXPECT_EQ(count(document, " <order_record>\r\n"), 1200U);
    EXPECT_EQ(count(document, "<order_line>"), 4 * 1200U);
    for (const char* text : {"<customer_name>Smith &amp; Sons</customer_name>",
                             "<customer_name>Caf\xC3\xA9 Zo\xC3\xAB</customer_name>",
                             "<credit_limit>-1500.5", "<street></street>"}) {
        EXPECT_NE(document.find(text), std::string::npos) << text;
    }
}

TEST_F(SamplesTest, LedgerIsValidFromTheProgramItself) {
    make("write_ledger", "ledger.dat");
    const std::string program = EXAMPLES + "write_ledger.cbl";
    const Outcome outcome =
        sxml({"to-xml", "ledger.dat", "ledger.xml", "--layout", program, "--fd", "LEDGER"});
    EXPECT_EQ(outcome.err, "");
    const Outcome valid = run({"xmllint", "--noout", "--valid", "ledger.xml"});
    EXPECT_EQ(valid.status, 0) << valid.err;
    const std::string document = read_file("ledger.xml");
    EXPECT_EQ(count(document, " <account>\r\n"), 200U);
    EXPECT_EQ(count(document, " <booking>\r\n"), 1000U);
    EXPECT_EQ(count(document, "<booking_kind>R</booking_kind>"), 20U);
    EXPECT_NE(sxml({"layout", program, "--fd", "JOURNAL"}).err.find("JOURNAL"), std::string::npos);
}

}  // namespace
