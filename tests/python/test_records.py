"""The package as its users call it; the command is the judge of what it writes."""
import decimal
import os
import pathlib
import pickle
import subprocess
import sys
import threading

import pytest
import sxml

SOURCE = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = SOURCE / "examples"
COMMAND = pathlib.Path(os.environ["SXML_COMMAND"])
CUSTOMERS = EXAMPLES / "custfile.cpy"
LEDGER = """      *> sxml: when KIND OF ACCOUNT = "A"
       01  ACCOUNT.
           05  KIND      PIC X.
           05  NAME      PIC X(10).
           05  HOUSE.
               10  CITY  PIC X(5).
           05  WORK.
               10  CITY  PIC X(5).
      *> sxml: when KIND OF BOOKING = "B"
       01  BOOKING.
           05  KIND      PIC X.
           05  AMOUNT    PIC S9(7)V99 COMP-3.
           05  RATE      COMP-2.
           05  COUNTER   PIC S9(18) COMP-5.
"""


@pytest.fixture(autouse=True)
def in_a_folder_of_its_own(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)


def test_record_files_and_documents_hold_the_same_records():
    with sxml.open(EXAMPLES / "custfile.dat", CUSTOMERS) as customers:
        records = list(customers)
    assert records[0] == {"cust_id": decimal.Decimal(42), "cust_name": "Smith", "balance": decimal.Decimal("123.45"),
                          "city": "Paris", "zip": "75001", "phone(1)": "1234", "phone(2)": "", "phone(3)": "5678"}
    assert str(records[1]["balance"]) == "-199.90"
    with sxml.open("custfile.xml", CUSTOMERS, "w") as document, sxml.open("copy.dat", CUSTOMERS, "w") as copy:
        for record in records:
            document.write(record)
            copy.write(record)
    assert pathlib.Path("copy.dat").read_bytes() == (EXAMPLES / "custfile.dat").read_bytes()
    subprocess.run(["xmllint", "--noout", "--valid", "custfile.xml"], check=True)
    subprocess.run([COMMAND, "from-xml", "custfile.xml", "back.dat", "--layout", CUSTOMERS], check=True)
    assert pathlib.Path("back.dat").read_bytes() == (EXAMPLES / "custfile.dat").read_bytes()
    with sxml.open("custfile.xml", CUSTOMERS) as document:
        assert list(document) == records


def test_fields_are_those_of_the_records_layout():
    pathlib.Path("ledger.cpy").write_text(LEDGER)
    layout = sxml.Layout("ledger.cpy", encoding="cp037")
    booking = {"booking/kind": "B", "amount": "-1234567.89", "rate": 0.1, "counter": -(10**18 - 1)}
    assert layout.parse(layout.build(booking)) == {
        "booking/kind": "B", "amount": decimal.Decimal("-1234567.89"), "rate": 0.1, "counter": 1 - 10**18}
    account = layout.build({"NAME": "Zoë", "account/kind": "A", "house/city": "Bern"})
    assert account[:4] == "AZoë".encode("cp037")
    assert layout.parse(account) == {
        "account/kind": "A", "name": "Zoë", "account/house/city": "Bern", "account/work/city": ""}
    assert pickle.loads(pickle.dumps(layout)).parse(account)["name"] == "Zoë"
    kinds = {field.name: (field.kind, field.offset, field.length, field.decimals) for field in layout.fields}
    assert kinds["amount"] == (decimal.Decimal, 1, 5, 2)
    with pytest.raises(sxml.Error, match="several fields city: account/house/city, account/work/city"):
        layout.build({"account/kind": "A", "city": "Rome"})


@pytest.mark.parametrize("values, complaint", [
    ({"cust_id": 123456}, "field cust_id: the field cannot hold 123456 exactly"),
    ({"balance": "1.234"}, "cannot hold 1.234 exactly"),
    ({"balance": "much"}, "takes a number, not much"),
    ({"zip": "750012"}, "has 5 bytes, the text 6"),
    ({"phone(4)": "1"}, "there is no field phone"),
    ({"city": "a\0b"}, "NUL"),
])
def test_what_a_field_cannot_hold_is_refused(values, complaint):
    with pytest.raises(sxml.Error, match=complaint):
        sxml.Layout(CUSTOMERS).build(values)


def test_failures_name_the_place():
    pathlib.Path("short.dat").write_bytes(b"x" * 50)
    with pytest.raises(sxml.Error, match="short.dat"), sxml.open("short.dat", CUSTOMERS) as customers:
        list(customers)
    pathlib.Path("bad.xml").write_text("<custfile>\n<customer><cust_id>1</cust_id></custfile>")
    with sxml.open("bad.xml", CUSTOMERS) as document, pytest.raises(sxml.Error, match="bad.xml:2:") as raised:
        list(document)
    assert (raised.value.line, raised.value.column) == (2, 33)
    for file, layout, complaint in (("none.dat", CUSTOMERS, "none.dat"), ("short.dat", "none.cpy", "none.cpy")):
        with pytest.raises(sxml.Error, match=complaint):
            sxml.open(file, layout)
    with pytest.raises(sxml.Error, match="SXML_CREATE_STYLE"):
        sxml.open("out.xml", CUSTOMERS, "w", SXML_CREATE_STYLE="XSD")
    with pytest.raises(sxml.Error, match="there is no option colour"):
        sxml.Layout(CUSTOMERS, colour="red")
    pathlib.Path("long.xml").write_text("<c><customer><zip>1234567</zip></customer></c>")
    with sxml.open("long.xml", CUSTOMERS) as document, pytest.warns(sxml.DataWarning, match="zip.*cut"):
        assert next(document)["zip"] == "12345"


def test_what_is_said_about_a_layout_is_passed_on():
    pathlib.Path("two.cpy").write_text(LEDGER.replace("sxml: when", "when"))
    with pytest.warns(sxml.DataWarning, match="of the record layouts ACCOUNT is described, not BOOKING"):
        sxml.Layout("two.cpy")


def test_a_file_that_is_not_finished_leaves_the_old_one():
    pathlib.Path("old.xml").write_text("old")
    with pytest.raises(RuntimeError), sxml.open("old.xml", CUSTOMERS, "w") as document:
        document.write({"cust_id": 1})
        raise RuntimeError
    assert os.listdir() == ["old.xml"]
    assert pathlib.Path("old.xml").read_text() == "old"


def test_settings_count_for_their_file_alone():
    with sxml.open("plain.xml", CUSTOMERS, "w", SXML_CREATE_STYLE="NONE") as plain:
        with sxml.open("full.xml", CUSTOMERS, "w") as full:
            plain.write({"cust_id": 1})
            full.write({"cust_id": 2})
    assert "DOCTYPE" not in pathlib.Path("plain.xml").read_text()
    assert "DOCTYPE" in pathlib.Path("full.xml").read_text()


def test_threads_work_on_files_of_their_own():
    def work(number):
        with sxml.open(f"{number}.xml", CUSTOMERS, "w") as document:
            for index in range(200):
                document.write({"cust_id": index, "cust_name": f"thread {number}"})

    threads = [threading.Thread(target=work, args=(number,)) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    for number in range(4):
        with sxml.open(f"{number}.xml", CUSTOMERS) as document:
            records = list(document)
        assert [record["cust_id"] for record in records] == list(range(200))
        assert {record["cust_name"] for record in records} == {f"thread {number}"}


def test_records_that_fail_by_themselves_can_be_skipped():
    pathlib.Path("some.xml").write_text(
        "<d><customer><zip>75001</zip></customer><customer><zip>750012</zip></customer>"
        "<customer><zop>1</zop></customer><customer><zip>1</zip></customer></d>")
    rejected, zips = [], []
    with sxml.open("some.xml", CUSTOMERS, strict=True) as customers:
        while True:
            try:
                zips.append(next(customers)["zip"])
            except StopIteration:
                break
            except sxml.Error as error:
                assert customers.skip()
                rejected.append(str(error))
        assert not customers.skip()
    assert zips == ["75001", "1"]
    assert ["record 2" in rejected[0], "zop" in rejected[1]] == [True, True]
    with pytest.warns(sxml.DataWarning, match="zop: the text went into no field"):
        with sxml.open("some.xml", CUSTOMERS) as customers:
            list(customers)


def test_the_version_is_the_projects(tmp_path):
    pytest.importorskip("setuptools")
    told = subprocess.run([sys.executable, "-B", "setup.py", "--version"], cwd=SOURCE / "python", check=True,
                          capture_output=True, text=True).stdout.split()[-1]
    command = subprocess.run([COMMAND, "--version"], check=True, capture_output=True, text=True).stdout
    assert command.split()[1] == told
