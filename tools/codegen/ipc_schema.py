"""Reads the switch daemon protocol (schema/*.ipc): records and remote calls.

  record name_t { <type> member; ... }
  call name(<type> Arg, ...) [returns (<type> Result, ...)];

Types: uint8, uint16, uint32, uint64, float, string, datetime, string[],
uint16[], uint64[], a record, and <record>[] (a list of records). Errors
raise schema.SchemaError with file:line.
"""

import os

from schema import SchemaError, TokenReader

# ipc type -> (C++ type, type code passed to the serializer)
SCALARS = {
    "uint8": ("cuint8", "CMPI_uint8"),
    "uint16": ("cuint16", "CMPI_uint16"),
    "uint32": ("cuint32", "CMPI_uint32"),
    "uint64": ("cuint64", "CMPI_uint64"),
    "float": ("creal32", "CMPI_real32"),
    "string": ("string_t", "CMPI_string"),
    "datetime": ("datetime_t", "CMPI_dateTime"),
    "string[]": ("string_tA", "CMPI_stringA"),
    "uint16[]": ("cuint16_A", "CMPI_uint16A"),
    "uint64[]": ("cuint64_A", "CMPI_uint64A"),
}


class IpcType:
    def __init__(self, name, record=None, is_list=False):
        self.name, self.record, self.is_list = name, record, is_list

    @property
    def cpp(self):
        if self.record:
            return self.record + ("A" if self.is_list else "")
        return SCALARS[self.name][0]

    @property
    def cpp_is_class(self):
        """False for the numbers, which need an initial value."""
        return bool(self.record) or self.name in ("string", "datetime", "string[]",
                                                  "uint16[]", "uint64[]")

    @property
    def code(self):
        if self.record:
            return "CMPI_instanceA" if self.is_list else "CMPI_instance"
        return SCALARS[self.name][1]


class Field:
    def __init__(self, type_, name, where):
        self.type, self.name, self.where = type_, name, where


class Record:
    def __init__(self, name, where):
        self.name, self.where, self.members = name, where, []


class Call:
    def __init__(self, name, where):
        self.name, self.where = name, where
        self.args, self.results = [], []


class Protocol:
    def __init__(self):
        self.records = []  # in declaration order
        self.calls = []    # in slot order

    def record(self, name):
        for record in self.records:
            if record.name == name:
                return record
        return None


class Parser(TokenReader):
    def __init__(self, path, text, protocol):
        TokenReader.__init__(self, path, text)
        self.protocol = protocol

    def parse(self):
        while self.peek() is not None:
            tok, where = self.ident("'record' or 'call'")
            if tok == "record":
                self.parse_record()
            elif tok == "call":
                self.parse_call()
            else:
                raise SchemaError(where, "expected 'record' or 'call', found %r" % tok)

    def parse_type(self):
        name, where = self.ident("a type")
        is_list = False
        if self.peek() == "[]":
            self.next()
            is_list = True
        if (name + "[]" if is_list else name) in SCALARS:
            return IpcType(name + "[]" if is_list else name), where
        record = self.protocol.record(name)
        if record is None:
            raise SchemaError(where, "unknown type %s (records must be declared before use)" % name)
        return IpcType(name, record=name, is_list=is_list), where

    def fields(self, closing, separator):
        result = []
        while self.peek() != closing:
            type_, where = self.parse_type()
            name, _ = self.ident("a name")
            if any(f.name == name for f in result):
                raise SchemaError(where, "%s named twice" % name)
            result.append(Field(type_, name, where))
            if self.peek() == separator:
                self.next()
            elif separator == "," and self.peek() != closing:
                raise SchemaError(self.tokens[self.i][1], "expected ',' or %r" % closing)
        self.expect(closing)
        return result

    def parse_record(self):
        name, where = self.ident("a record name")
        if self.protocol.record(name):
            raise SchemaError(where, "record %s is declared twice" % name)
        record = Record(name, where)
        self.expect("{")
        record.members = self.fields("}", ";")
        if not record.members:
            raise SchemaError(where, "record %s has no members" % name)
        self.protocol.records.append(record)

    def parse_call(self):
        name, where = self.ident("a call name")
        if any(c.name == name for c in self.protocol.calls):
            raise SchemaError(where, "call %s is declared twice" % name)
        call = Call(name, where)
        self.expect("(")
        call.args = self.fields(")", ",")
        if self.peek() == "returns":
            self.next()
            self.expect("(")
            call.results = self.fields(")", ",")
        self.expect(";")
        self.protocol.calls.append(call)


def load(directory):
    protocol = Protocol()
    for name in sorted(p for p in os.listdir(directory) if p.endswith(".ipc")):
        path = os.path.join(directory, name)
        with open(path, encoding="utf-8") as f:
            Parser(path, f.read(), protocol).parse()
    return protocol
