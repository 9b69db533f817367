"""The C functions of libsxml_records."""
from __future__ import annotations

import ctypes
import os
import pathlib

_NAME = "libsxml_records.so.1"


def _path() -> str:
    """$SXML_LIBRARY, the library of the installation that this package is in, or the system's."""
    named = os.environ.get("SXML_LIBRARY")
    if named:
        return named
    for folder in pathlib.Path(__file__).resolve().parents[1:5]:
        if (folder / _NAME).exists():
            return str(folder / _NAME)
    return _NAME


def _load() -> ctypes.CDLL:
    library = ctypes.CDLL(_path())
    text, number, handle = ctypes.c_char_p, ctypes.c_int, ctypes.c_void_p
    signatures = {
        "sxml_open": (handle, [text, text, text, ctypes.POINTER(text)]),
        "sxml_read": (number, [handle]),
        "sxml_write": (number, [handle]),
        "sxml_skip": (number, [handle]),
        "sxml_finish": (number, [handle]),
        "sxml_close": (None, [handle]),
        "sxml_problem": (text, [handle]),
        "sxml_problem_cause": (number, [handle]),
        "sxml_problem_record": (ctypes.c_int64, [handle]),
        "sxml_problem_line": (ctypes.c_int64, [handle]),
        "sxml_problem_column": (ctypes.c_int64, [handle]),
        "sxml_problem_offset": (ctypes.c_int64, [handle]),
        "sxml_warning": (text, [handle, number]),
        "sxml_field_count": (number, [handle]),
        "sxml_field": (number, [handle, text]),
        "sxml_field_name": (text, [handle, number]),
        "sxml_field_path": (text, [handle, number]),
        "sxml_field_kind": (number, [handle, number]),
        "sxml_field_offset": (ctypes.c_int32, [handle, number]),
        "sxml_field_length": (ctypes.c_int32, [handle, number]),
        "sxml_field_decimals": (number, [handle, number]),
        "sxml_applies": (number, [handle, number]),
        "sxml_get_text": (text, [handle, number]),
        "sxml_set_text": (number, [handle, number, text]),
        "sxml_clear": (number, [handle]),
        "sxml_record": (handle, [handle, ctypes.POINTER(ctypes.c_size_t)]),
        "sxml_set_record": (number, [handle, ctypes.c_char_p, ctypes.c_size_t]),
    }
    for name, (result, arguments) in signatures.items():
        function = getattr(library, name)
        function.restype, function.argtypes = result, arguments
    return library


library = _load()
