"""Reads the class schema (schema/*.schema) into a checked model.

The syntax is described in schema/README.md. Every error names the file and
line it was found at; load() raises SchemaError on the first one.
"""

import os
import re

# Model types: schema type -> (C++ value type, CMPI type code name).
VALUE_TYPES = {
    "boolean": ("cboolean", "CMPI_boolean"),
    "uint8": ("cuint8", "CMPI_uint8"),
    "uint16": ("cuint16", "CMPI_uint16"),
    "uint32": ("cuint32", "CMPI_uint32"),
    "uint64": ("cuint64", "CMPI_uint64"),
    "sint8": ("csint8", "CMPI_sint8"),
    "sint16": ("csint16", "CMPI_sint16"),
    "sint32": ("csint32", "CMPI_sint32"),
    "real32": ("creal32", "CMPI_real32"),
    "string": ("cstring", "CMPI_string"),
    "datetime": ("cdatetime", "CMPI_dateTime"),
    "uint16[]": ("cuint16_A", "CMPI_uint16A"),
    "uint64[]": ("cuint64_A", "CMPI_uint64A"),
    "string[]": ("cstring_A", "CMPI_stringA"),
}

# CIM types a property may have in the DMTF schema (for `unmodelled`).
CIM_TYPES = {"boolean", "uint8", "uint16", "uint32", "uint64", "sint8", "sint16",
             "sint32", "sint64", "real32", "real64", "string", "char16", "datetime"}

KINDS = ("class", "association", "indication")

# The namespace (below root) of a served class without a `namespaces` line.
DEFAULT_NAMESPACE = "qrx"


class SchemaError(Exception):
    def __init__(self, where, reason):
        Exception.__init__(self, "%s: %s" % (where, reason))


class Location:
    def __init__(self, path, line):
        self.path, self.line = path, line

    def __str__(self):
        return "%s:%d" % (self.path, self.line)


class Type:
    """A property or parameter type: a value type, a reference or an
    embedded instance."""

    def __init__(self, name, ref_class=None, embedded=False):
        self.name = name            # schema spelling, e.g. "uint16[]"
        self.ref_class = ref_class  # referenced class for a REF
        self.embedded = embedded

    @property
    def cpp(self):
        if self.ref_class:
            return self.ref_class + "_Key"
        if self.embedded:
            return "cstring_EO"
        return VALUE_TYPES[self.name][0]

    @property
    def cmpi(self):
        if self.ref_class:
            return "CMPI_ref"
        if self.embedded:
            return "CMPI_string"
        return VALUE_TYPES[self.name][1]

    @property
    def mof(self):
        if self.ref_class:
            return self.ref_class + " REF"
        return self.name.replace("[]", "")

    @property
    def is_array(self):
        return self.name.endswith("[]")


class Property:
    def __init__(self, name, type_, where, new=False, unmodelled=False):
        self.name, self.type, self.where = name, type_, where
        self.new, self.unmodelled = new, unmodelled


class Parameter:
    def __init__(self, direction, name, type_):
        self.direction, self.name, self.type = direction, name, type_


class Method:
    def __init__(self, name, params, where, new=False):
        self.name, self.params, self.where, self.new = name, params, where, new


class ModelClass:
    def __init__(self, kind, name, superclass, where, handwritten=False):
        self.kind, self.name, self.superclass, self.where = kind, name, superclass, where
        self.handwritten = handwritten  # its provider is written by hand
        self.keys = []        # key property names, in key order
        self.keys_where = where
        self.properties = []  # Property, in model order (unmodelled included)
        self.methods = []     # Method, in dispatch order
        self.implements = []  # backend operations defined by hand, in common/backend
        self.implements_where = where
        self.namespaces = []  # CIM namespaces it is served in, below root; empty: the default
        self.source = os.path.basename(where.path)

    @property
    def generated_provider(self):
        """Whether the class gets the generated provider glue and backend."""
        return self.name.startswith("QRX_") and self.kind != "indication" and not self.handwritten

    @property
    def served(self):
        """Whether the library serves the class (it has a provider, generated,
        written by hand or an indication MI)."""
        return self.name.startswith("QRX_") or self.kind == "indication"

    @property
    def served_namespaces(self):
        """The CIM namespaces the class is served in."""
        return ["root/" + n for n in (self.namespaces or [DEFAULT_NAMESPACE])]

    @property
    def mi_kinds(self):
        """The management-interface kinds of the class's provider, in CMPI
        order: instance, association, method, indication."""
        if self.kind == "indication":
            return ["indication"]
        kinds = ["instance"]
        if self.kind == "association":
            kinds.append("association")
        if self.methods:
            kinds.append("method")
        return kinds

    @property
    def ends(self):
        """The left and right reference of an association."""
        refs = self.references
        return refs[0], refs[1]

    def backend_operations(self):
        """The names of the operations of the class's backend."""
        ops = ["enumInstanceNames", "enumInstances", "getInstance", "createInstance",
               "modifyInstance", "deleteInstance"]
        if self.kind == "association":
            for end in self.ends:
                ops += [op + end.name for op in
                        ("associatorsFor", "associatorNamesFor", "referencesFor")]
        return ops + [m.name for m in self.methods]

    @property
    def modelled(self):
        return [p for p in self.properties if not p.unmodelled]

    def prop(self, name):
        for p in self.properties:
            if p.name == name:
                return p
        return None

    @property
    def key_properties(self):
        return [self.prop(k) for k in self.keys]

    @property
    def has_embedded(self):
        return any(p.type.embedded for p in self.modelled)

    @property
    def references(self):
        return [p for p in self.modelled if p.type.ref_class]


class Schema:
    def __init__(self):
        self.tree = []        # (name, parent or None) in creation order
        self.hierarchy = {}   # standard class outside the tree -> parent
        self.classes = {}     # name -> ModelClass
        self.order = []       # model class names in file order

    def tree_parent(self, name):
        for node, parent in self.tree:
            if node == name:
                return parent
        return None

    def in_tree(self, name):
        return any(node == name for node, _ in self.tree)

    def parent_of(self, name):
        """Superclass of any known class (tree, hierarchy or model)."""
        if name in self.classes:
            return self.classes[name].superclass
        if self.in_tree(name):
            return self.tree_parent(name)
        return self.hierarchy.get(name)

    def known(self, name):
        return (name in self.classes or self.in_tree(name) or name in self.hierarchy
                or name in self.hierarchy.values())

    def all_class_names(self):
        names = [n for n, _ in self.tree]
        for child, parent in self.hierarchy.items():
            names += [n for n in (parent, child) if n not in names]
        names += [n for n in self.order if n not in names]
        return names


# --------------------------------------------------------------------------
# Tokenizer

TOKEN = re.compile(r"\s*(?:(#[^\n]*)|([A-Za-z_][A-Za-z0-9_]*)|(\[\])|([{}():,;]))")


def tokenize(path, text):
    tokens, line, pos = [], 1, 0
    while True:
        m = TOKEN.match(text, pos)
        if not m:
            rest = text[pos:]
            if not rest.strip():
                break
            line += rest[: len(rest) - len(rest.lstrip())].count("\n")
            raise SchemaError(Location(path, line), "unexpected character %r" % rest.strip()[0])
        line += text[pos:m.start(m.lastindex)].count("\n")
        pos = m.end()
        if m.lastindex != 1:  # group 1 is a comment
            tokens.append((m.group(m.lastindex), Location(path, line)))
    tokens.append((None, Location(path, line)))
    return tokens


class TokenReader:
    """The token cursor the schema readers share."""

    def __init__(self, path, text):
        self.tokens = tokenize(path, text)
        self.i = 0

    def peek(self, k=0):
        return self.tokens[self.i + k][0]

    def where(self):
        return self.tokens[self.i][1]

    def next(self):
        tok = self.tokens[self.i]
        self.i += 1
        return tok

    def expect(self, value):
        tok, where = self.next()
        if tok != value:
            raise SchemaError(where, "expected %r, found %s" % (value, describe(tok)))
        return where

    def ident(self, what):
        tok, where = self.next()
        if tok is None or not re.match(r"[A-Za-z_]", tok):
            raise SchemaError(where, "expected %s, found %s" % (what, describe(tok)))
        return tok, where


class Parser(TokenReader):
    def __init__(self, path, text, schema):
        TokenReader.__init__(self, path, text)
        self.schema = schema

    def parse(self):
        while self.peek() is not None:
            tok, where = self.ident("'tree', 'hierarchy' or a class declaration")
            if tok == "tree":
                self.parse_tree()
            elif tok == "hierarchy":
                self.parse_hierarchy()
            elif tok == "handwritten":
                kind, kwhere = self.ident("a class kind")
                if kind not in KINDS:
                    raise SchemaError(kwhere, "expected a class kind after 'handwritten', found %r" % kind)
                self.parse_class(kind, kwhere, handwritten=True)
            elif tok in KINDS:
                self.parse_class(tok, where)
            else:
                raise SchemaError(where, "expected 'tree', 'hierarchy' or a class kind, found %r" % tok)

    def parse_links(self):
        """Parent: Child, Child ... lines up to the closing brace."""
        self.expect("{")
        links = []
        while self.peek() != "}":
            parent, where = self.ident("a parent class")
            self.expect(":")
            while True:
                child, cwhere = self.ident("a child class")
                links.append((parent, child, cwhere))
                if self.peek() != ",":
                    break
                self.next()
        self.expect("}")
        return links

    def parse_tree(self):
        if self.schema.tree:
            raise SchemaError(self.where(), "a second tree block")
        nodes = {}
        for parent, child, where in self.parse_links():
            if parent not in nodes:
                nodes[parent] = None
                self.schema.tree.append([parent, None])
            if child in nodes and nodes[child] is not None:
                raise SchemaError(where, "%s already has the parent %s" % (child, nodes[child]))
            if child in nodes:
                for node in self.schema.tree:
                    if node[0] == child:
                        node[1] = parent
            else:
                self.schema.tree.append([child, parent])
            nodes[child] = parent
        self.schema.tree = [tuple(n) for n in self.schema.tree]
        for child, parent in self.schema.tree:
            ancestor, seen = parent, {child}
            while ancestor is not None:
                if ancestor in seen:
                    raise SchemaError(self.where(), "the tree has a cycle through %s" % child)
                seen.add(ancestor)
                ancestor = nodes.get(ancestor)

    def parse_hierarchy(self):
        for parent, child, where in self.parse_links():
            if child in self.schema.hierarchy:
                raise SchemaError(where, "%s is placed twice in the hierarchy" % child)
            self.schema.hierarchy[child] = parent

    def parse_type(self, allow_embedded):
        tok, where = self.ident("a type")
        if tok == "embedded":
            if not allow_embedded:
                raise SchemaError(where, "an embedded instance cannot be a parameter")
            self.expect("string")
            return Type("string", embedded=True)
        if self.peek() == "REF":
            self.next()
            return Type(tok + " REF", ref_class=tok)
        name = tok
        if self.peek() == "[]":
            self.next()
            name += "[]"
        if name not in VALUE_TYPES:
            raise SchemaError(where, "type %s has no model representation; "
                                     "list the property as 'unmodelled'" % name)
        return Type(name)

    def parse_class(self, kind, where, handwritten=False):
        name, where = self.ident("a class name")
        superclass = None
        if self.peek() == ":":
            self.next()
            superclass, _ = self.ident("a superclass name")
        if name in self.schema.classes:
            raise SchemaError(where, "class %s is declared again (first at %s)"
                              % (name, self.schema.classes[name].where))
        cls = ModelClass(kind, name, superclass, where, handwritten)
        self.expect("{")
        while self.peek() != "}":
            if self.peek() is None:
                raise SchemaError(where, "class %s is not closed with '}'" % name)
            self.parse_member(cls)
        self.expect("}")
        self.schema.classes[name] = cls
        self.schema.order.append(name)

    def parse_member(self, cls):
        tok, where = self.tokens[self.i]
        if tok == "keys":
            cls.keys_where = self.name_list(cls.keys, "keys", "a key property", "key")
            return
        if tok == "implements":
            cls.implements_where = self.name_list(cls.implements, "implements",
                                                  "a backend operation", "operation")
            return
        if tok == "namespaces":
            self.name_list(cls.namespaces, "namespaces", "a namespace below root", "namespace")
            return
        new = False
        if tok == "new":
            self.next()
            new = True
        tok, where = self.tokens[self.i]
        if tok == "method":
            self.next()
            self.parse_method(cls, new)
            return
        if tok == "unmodelled":
            self.next()
            cim, twhere = self.ident("a CIM type")
            if self.peek() == "REF":
                raise SchemaError(twhere, "references are always modelled")
            if cim not in CIM_TYPES:
                raise SchemaError(twhere, "unknown CIM type %s" % cim)
            if self.peek() == "[]":
                self.next()
                cim += "[]"
            prop_name, pwhere = self.ident("a property name")
            self.expect(";")
            self.add_property(cls, Property(prop_name, Type(cim), pwhere, new, True))
            return
        type_ = self.parse_type(True)
        prop_name, pwhere = self.ident("a property name")
        self.expect(";")
        self.add_property(cls, Property(prop_name, type_, pwhere, new))

    def name_list(self, names, line, what, noun):
        """Reads `line a, b;` into the empty list `names`; returns where it is."""
        tok, where = self.next()
        if names:
            raise SchemaError(where, "a second %s line" % line)
        while True:
            name, _ = self.ident(what)
            if name in names:
                raise SchemaError(where, "%s %s named twice" % (noun, name))
            names.append(name)
            if self.peek() != ",":
                break
            self.next()
        self.expect(";")
        return where

    def add_property(self, cls, prop):
        if cls.prop(prop.name):
            raise SchemaError(prop.where, "property %s is declared twice in %s" % (prop.name, cls.name))
        cls.properties.append(prop)

    def parse_method(self, cls, new):
        name, where = self.ident("a method name")
        if any(m.name == name for m in cls.methods):
            raise SchemaError(where, "method %s is declared twice in %s" % (name, cls.name))
        self.expect("(")
        params = []
        while self.peek() != ")":
            direction, dwhere = self.ident("'in' or 'out'")
            if direction not in ("in", "out"):
                raise SchemaError(dwhere, "expected 'in' or 'out', found %r" % direction)
            type_ = self.parse_type(False)
            pname, pwhere = self.ident("a parameter name")
            if any(p.name == pname for p in params):
                raise SchemaError(pwhere, "parameter %s named twice" % pname)
            params.append(Parameter(direction, pname, type_))
            if self.peek() == ",":
                self.next()
            elif self.peek() != ")":
                raise SchemaError(self.where(), "expected ',' or ')', found %s" % describe(self.peek()))
        self.expect(")")
        self.expect(";")
        cls.methods.append(Method(name, params, where, new))


def describe(tok):
    return "end of file" if tok is None else repr(tok)


# --------------------------------------------------------------------------
# Checks across files

def check(schema):
    if not schema.tree:
        raise SchemaError(Location("schema", 0), "no tree block")
    for child, parent in schema.hierarchy.items():
        if schema.in_tree(child):
            raise SchemaError(Location("schema", 0),
                              "%s is a tree node and cannot be placed in the hierarchy" % child)
    for name in schema.order:
        cls = schema.classes[name]
        if schema.in_tree(name):
            parent = schema.tree_parent(name)
            if cls.superclass != parent:
                raise SchemaError(cls.where, "%s is under %s in the tree, not %s"
                                  % (name, parent, cls.superclass))
        elif name in schema.hierarchy:
            if cls.superclass != schema.hierarchy[name]:
                raise SchemaError(cls.where, "%s is under %s in the hierarchy, not %s"
                                  % (name, schema.hierarchy[name], cls.superclass))
        if cls.superclass is not None and not schema.known(cls.superclass):
            raise SchemaError(cls.where, "superclass %s is neither in the tree, in the "
                              "hierarchy nor a model class" % cls.superclass)
        if cls.superclass is None and not name.startswith("QRX_") and not schema.in_tree(name):
            raise SchemaError(cls.where, "only a vendor class may lack a superclass")
        ancestor, seen = cls.superclass, {name}
        while ancestor is not None:
            if ancestor in seen:
                raise SchemaError(cls.where, "%s inherits from itself" % name)
            seen.add(ancestor)
            ancestor = schema.parent_of(ancestor)
        for key in cls.keys:
            prop = cls.prop(key)
            if prop is None:
                raise SchemaError(cls.keys_where, "key %s is not a property of %s" % (key, name))
            if prop.unmodelled or prop.type.is_array or prop.type.embedded:
                raise SchemaError(prop.where, "key %s must be a modelled scalar or reference" % key)
        if cls.kind == "indication" and cls.keys:
            raise SchemaError(cls.keys_where, "an indication has no keys")
        refs = cls.references
        if cls.kind == "association" and len(refs) < 2:
            raise SchemaError(cls.where, "association %s needs two references" % name)
        if cls.kind != "association" and refs:
            raise SchemaError(refs[0].where, "only an association holds references")
        for prop in cls.modelled:
            check_ref(schema, prop.type, prop.where)
        for method in cls.methods:
            for param in method.params:
                check_ref(schema, param.type, method.where)
        check_provider(schema, cls)
    return schema


def check_provider(schema, cls):
    if cls.namespaces and not cls.served:
        raise SchemaError(cls.where, "%s is not served, so it has no namespaces" % cls.name)
    if cls.handwritten and not cls.name.startswith("QRX_"):
        raise SchemaError(cls.where, "only a vendor class has a provider to write by hand")
    if cls.implements and not cls.generated_provider:
        raise SchemaError(cls.implements_where, "%s has no generated backend to implement" % cls.name)
    if not cls.generated_provider:
        return
    if not cls.keys:
        raise SchemaError(cls.where, "%s has a generated provider and needs keys" % cls.name)
    if cls.kind == "association":
        if len(cls.references) != 2:
            raise SchemaError(cls.where, "association %s with a generated provider needs "
                                         "exactly two references" % cls.name)
        for end in cls.ends:
            target = schema.classes[end.type.ref_class]
            if not target.generated_provider or target.kind == "association":
                raise SchemaError(end.where, "%s ends at %s, which has no generated provider"
                                  % (cls.name, target.name))
    operations = cls.backend_operations()
    for op in cls.implements:
        if op not in operations:
            raise SchemaError(cls.implements_where, "%s is not an operation of %s_Best"
                              % (op, cls.name))


def check_ref(schema, type_, where):
    if type_.ref_class and type_.ref_class not in schema.classes:
        raise SchemaError(where, "%s is not a model class and cannot be referenced" % type_.ref_class)
    if type_.ref_class and schema.classes[type_.ref_class].kind == "indication":
        raise SchemaError(where, "an indication cannot be referenced")


def load(directory):
    schema = Schema()
    paths = sorted(p for p in os.listdir(directory) if p.endswith(".schema"))
    if not paths:
        raise SchemaError(Location(directory, 0), "no .schema files")
    for name in paths:
        path = os.path.join(directory, name)
        with open(path, encoding="utf-8") as f:
            Parser(path, f.read(), schema).parse()
    return check(schema)
