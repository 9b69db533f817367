"""Records of COBOL files and of XML documents.

    import sxml
    layout = sxml.Layout("orders.cpy", encoding="cp037")
    with sxml.open("orders.dat", layout) as orders, sxml.open("orders.xml", layout, "w") as document:
        for order in orders:
            order["customer_name"] = order["customer_name"].title()
            document.write(order)

A record is a dictionary: numbers are Decimal, floating-point numbers float, binary data bytes, all else
str. The keys are the fields' names, occurrences of a table with their subscripts ("phone(2)"); where
a name is not the only one of its kind, the names of its groups stand before it ("shipping/city").
Fields of other record layouts than the record's own are left out.
"""
from __future__ import annotations

import ctypes
import dataclasses
import decimal
import os
import typing
import warnings

from ._library import library as _c

__all__ = ["DataWarning", "Error", "Field", "File", "Layout", "Record", "Value", "open"]

Value = typing.Union[str, decimal.Decimal, float, bytes]
Record = typing.Dict[str, Value]

_TEXT, _NUMBER, _FLOAT, _BINARY = range(4)
_KINDS: tuple[type, ...] = (str, decimal.Decimal, float, bytes)


class Error(Exception):
    """A failure and its location. Unknown parts of the location are None."""

    def __init__(self, message: str, record: int | None = None, line: int | None = None,
                 column: int | None = None, offset: int | None = None) -> None:
        super().__init__(message)
        self.record, self.line, self.column, self.offset = record, line, column, offset


class DataWarning(UserWarning):
    """A value that was changed (a text was cut, a number repaired), or a doubtful layout."""


@dataclasses.dataclass(frozen=True)
class Field:
    """A field of a layout; each occurrence of a table is one."""
    name: str  # the key in records
    path: str  # with all groups
    kind: type  # of its values
    offset: int  # in the record, bytes
    length: int  # bytes
    decimals: int


class _Handle:
    """An open handle of the library, with the fields that it has."""

    def __init__(self, layout: str, options: dict[str, object], file: str | None = None, mode: str = "r") -> None:
        texts = [text.encode() for text in _option_texts(options)]
        self.pointer = _c.sxml_open(os.fsencode(layout), None if file is None else os.fsencode(file), mode.encode(),
                                    (ctypes.c_char_p * (len(texts) + 1))(*texts, None))
        if not self.pointer:
            raise MemoryError
        if _c.sxml_problem_cause(self.pointer):
            error = self.error()
            self.close()
            raise error
        self.warn(4)
        self.fields = self._find_fields()
        self.numbers = {field.name: number for number, field in enumerate(self.fields)}

    def _find_fields(self) -> list[Field]:
        count = range(_c.sxml_field_count(self.pointer))
        names = [_c.sxml_field_name(self.pointer, number).decode() for number in count]
        fields = []
        for number, name in enumerate(names):
            path = _c.sxml_field_path(self.pointer, number).decode()
            fields.append(Field(name if names.count(name) == 1 else path, path,
                                _KINDS[_c.sxml_field_kind(self.pointer, number)],
                                _c.sxml_field_offset(self.pointer, number),
                                _c.sxml_field_length(self.pointer, number),
                                _c.sxml_field_decimals(self.pointer, number)))
        return fields

    def error(self) -> Error:
        at = self.pointer
        offset = _c.sxml_problem_offset(at)
        return Error(_c.sxml_problem(at).decode(errors="replace"), _c.sxml_problem_record(at) or None,
                     _c.sxml_problem_line(at) or None, _c.sxml_problem_column(at) or None,
                     None if offset < 0 else offset)

    def check(self, result: int) -> int:
        if result < 0:
            raise self.error()
        return result

    def record(self) -> Record:
        values: Record = {}
        for number, field in enumerate(self.fields):
            if self.check(_c.sxml_applies(self.pointer, number)) == 0:
                continue
            text = _c.sxml_get_text(self.pointer, number)
            if text is None:
                raise self.error()
            values[field.name] = _value(field.kind, text.decode())
        return values

    def fill(self, values: typing.Mapping[str, object]) -> None:
        self.check(_c.sxml_clear(self.pointer))
        for name, value in values.items():
            if value is None:
                continue
            number = self.numbers.get(name)
            if number is None:
                number = self.check(_c.sxml_field(self.pointer, name.encode()))
            self.check(_c.sxml_set_text(self.pointer, number, _text(value).encode()))

    def warn(self, level: int = 3) -> None:
        index = 0
        while (text := _c.sxml_warning(self.pointer, index)) is not None:
            warnings.warn(text.decode(errors="replace"), DataWarning, stacklevel=level)
            index += 1

    def close(self) -> None:
        pointer, self.pointer = self.pointer, None
        _c.sxml_close(pointer)

    def __del__(self) -> None:
        if getattr(self, "pointer", None):
            self.close()


def _option_texts(options: dict[str, object]) -> typing.Iterator[str]:
    for name, value in options.items():
        name = name if name.startswith(("SXML_", "4GL_")) else name.replace("_", "-")
        for one in value if isinstance(value, (list, tuple)) else [value]:
            yield f"{name}={({True: 'yes', False: 'no'}[one] if isinstance(one, bool) else one)}"


def _value(kind: type, text: str) -> Value:
    return bytes.fromhex(text) if kind is bytes else kind(text)


def _text(value: object) -> str:
    if isinstance(value, (bytes, bytearray)):
        return value.hex()
    if isinstance(value, str) and "\0" in value:
        raise Error("a text with a NUL character cannot be in a record")
    return format(value, "f") if isinstance(value, decimal.Decimal) else str(value)


class Layout:
    """A record layout: a copybook, a program or a description file.

    `options` are those of sxml_open in sxml/records.h, with underscores for hyphens: encoding, fd,
    copy_path (a list), name, binary_size, filler ...; and settings, such as SXML_CREATE_STYLE.
    """

    def __init__(self, source: str | os.PathLike[str], **options: object) -> None:
        self.source = os.fspath(source)
        self.options = options
        self._handle: _Handle | None = None
        self.fields: tuple[Field, ...] = tuple(self._opened().fields)

    def _opened(self) -> _Handle:
        if self._handle is None:
            self._handle = _Handle(self.source, self.options)
        return self._handle

    @property
    def record_length(self) -> int:
        """Bytes of the longest record."""
        length = ctypes.c_size_t()
        _c.sxml_record(self._opened().pointer, ctypes.byref(length))
        return length.value

    def parse(self, record: bytes) -> Record:
        """Decodes the bytes of a record."""
        handle = self._opened()
        handle.check(_c.sxml_set_record(handle.pointer, record, len(record)))
        return handle.record()

    def build(self, values: typing.Mapping[str, object]) -> bytes:
        """Encodes a record. Fields without a value are blank: spaces, or zero."""
        handle = self._opened()
        handle.fill(values)
        length = ctypes.c_size_t()
        return ctypes.string_at(_c.sxml_record(handle.pointer, ctypes.byref(length)), length.value)

    def __getstate__(self) -> dict[str, object]:
        return {**self.__dict__, "_handle": None}  # so that it can go to another process


class File:
    """An open record file or document; made by sxml.open."""

    def __init__(self, handle: _Handle, mode: str) -> None:
        self._handle = handle
        self._mode = mode

    def _opened(self) -> _Handle:
        if self._handle.pointer is None:
            raise Error("the file is closed")
        return self._handle

    def __iter__(self) -> typing.Iterator[Record]:
        return self

    def __next__(self) -> Record:
        handle = self._opened()
        if handle.check(_c.sxml_read(handle.pointer)) == 0:
            raise StopIteration
        handle.warn()
        return handle.record()

    def write(self, values: typing.Mapping[str, object]) -> None:
        """Writes a record. Fields without a value are blank: spaces, or zero."""
        handle = self._opened()
        handle.fill(values)
        handle.check(_c.sxml_write(handle.pointer))
        handle.warn()

    def skip(self) -> bool:
        """After an Error that concerns a single record: whether the next one can be read.

        Otherwise, and without such a call, the failure is final.
        """
        return _c.sxml_skip(self._opened().pointer) == 0

    def close(self) -> None:
        """Completes a file that is written: it replaces an older file of its name."""
        if self._handle.pointer is None:
            return
        try:
            if self._mode == "w":
                self._handle.check(_c.sxml_finish(self._handle.pointer))
        finally:
            self._handle.close()

    def __enter__(self) -> File:
        return self

    def __exit__(self, kind: object, *_: object) -> None:
        """After an exception a file that is written is discarded: an older file of its name stays."""
        if kind is None:
            self.close()
        elif self._handle.pointer is not None:
            self._handle.close()


def open(file: str | os.PathLike[str], layout: Layout | str | os.PathLike[str], mode: str = "r",
         **options: object) -> File:
    """Opens a record file or a document (a name that ends in .xml) for reading ("r") or writing ("w").

    `options` come after those of the layout: kind ("document", "records"), format ("fixed", "lines"),
    buffer, and settings.
    """
    if not isinstance(layout, Layout):
        layout = Layout(layout, **{name: value for name, value in options.items()
                                   if name not in ("kind", "format", "buffer")})
    return File(_Handle(layout.source, {**layout.options, **options}, os.fspath(file), mode), mode)
