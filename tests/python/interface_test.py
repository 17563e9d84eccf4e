"""Compares the package's view of the C interface with the header."""

import ctypes
import os
import re
from pathlib import Path

import numpy as np

from framesink import interface

HEADER = (Path(__file__).parents[2] / "include/framesink/framesink.h").read_text()

# In the order of tests/abi/description_layout.h.
LISTED = ["valid", "reserved1", "fourcc", "inputCount", "componentCount", "widths", "widths+2", "heights", "heights+2",
          "dataType", "layout", "reserved2", "reserved3"]


def offset(item):
    field, _, index = item.partition("+")
    return getattr(interface.InputDescription, field).offset + 4 * int(index or 0)


def test_the_description_lies_in_memory_as_in_c():
    in_c = (ctypes.c_size_t * (len(LISTED) + 1)).in_dll(
        ctypes.CDLL(os.environ["FRAMESINK_DESCRIPTION_LAYOUT"]), "descriptionLayoutInC")
    assert [offset(item) for item in LISTED] + [ctypes.sizeof(interface.InputDescription)] == list(in_c)


def test_constants_are_the_headers():
    values = {name: int(value.rstrip("u"), 0) for name, value in re.findall(r"#define FRAMESINK_(\w+) (\w+)$", HEADER,
                                                                         re.MULTILINE)}
    assert values["ERROR_BYTES"] == interface.ERROR_BYTES
    assert values["POSITION_UNDEFINED"] == interface.POSITION_UNDEFINED


def test_sample_types_are_the_headers():
    names = {"DOUBLE": "float64", "SINGLE": "float32", "BOOLEAN": "bool"}
    listed = re.findall(r"FRAMESINK_(\w+) = (\d),?", HEADER)
    assert len(listed) == 9
    assert {np.dtype(names.get(name, name.lower())): int(number) for name, number in listed} == interface.DATA_TYPES


def test_every_function_of_the_header_is_declared_with_as_many_arguments():
    prototypes = re.findall(r"FRAMESINK_API \w+\*? (\w+)\(([^)]*)\);", HEADER)
    assert len(prototypes) == 11
    in_header = {name: arguments.count(",") + 1 for name, arguments in prototypes}
    del in_header["libOutputs"]  # not declared, because it does nothing
    assert {name: len(arguments) for name, _, arguments in interface.FUNCTIONS} == in_header
