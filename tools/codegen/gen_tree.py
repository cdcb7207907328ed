"""The class tree (scimclasstree.h/.cpp): is-a answers and the factory of
model objects by class name."""

BANNER = "// Generated from schema/ by tools/codegen. Do not edit.\n"

HEADER = BANNER + """// The class tree: which CIM class is a kind of which, answered without the
// object manager, and model objects created by class name.
//
// The tree holds %(count)d nodes, filled once at library load. Model classes
// do not mirror the CIM inheritance; it lives only here. Names compare
// exactly (case-sensitive).
#ifndef QRX_GENERATED_SCIMCLASSTREE_H_
#define QRX_GENERATED_SCIMCLASSTREE_H_

#include <cstddef>
#include <cstring>
#include <map>
#include <string>

#include "common/base/SCIMCommon.h"

struct SCIMClassNode {
  std::string name;
  SCIMClassNode* parent;  // null at a root
};

// strcmp ordering of C strings.
struct cstringcomp {
  bool operator()(const char* a, const char* b) const { return strcmp(a, b) < 0; }
};

typedef std::map<const char*, SCIMClassNode*, cstringcomp> SCIMClassNodeMap;

// Class name -> node, for every node of the tree.
extern SCIMClassNodeMap scimClassNodeMap;

// The node of `name`, or null when the class is not in the tree.
SCIMClassNode* scimGetClassNode(const char* name);

// True when `node` is the class `name` or one of its subclasses; false for
// a null node.
bool scimIsa(const char* name, const SCIMClassNode* node);

// scimIsa(name, scimGetClassNode(className)): is className `name` or one of
// its subclasses?
bool scimIsa(const char* name, const char* className);

// A new default model object, owned by the caller, or null for an unknown
// name. A CIM class name ("QRX_Switch") gives the full class; the names of
// the companions ("QRX_Switch_Key", "QRX_Switch_Array",
// "QRX_Switch_KeyArray") give those.
SCIMSerdesable* createCimObject(const std::string& className);

// The CIM classes that have model types, in name order.
extern const char* const scimModelClassNames[];
extern const std::size_t scimModelClassCount;

#endif  // QRX_GENERATED_SCIMCLASSTREE_H_
"""


def source(schema):
    nodes = schema.tree
    index = {name: i for i, (name, _) in enumerate(nodes)}
    out = BANNER + "#include \"generated/scimclasstree.h\"\n\n#include <algorithm>\n\n"
    out += "#include \"generated/scimclasses.h\"\n\n"
    out += "SCIMClassNodeMap scimClassNodeMap;\n\nnamespace {\n\n"
    out += "// The nodes, in the order the tree is built; each parent before its children.\n"
    out += "SCIMClassNode gNodes[%d] = {\n" % len(nodes)
    for name, parent in nodes:
        link = "nullptr" if parent is None else "&gNodes[%d]" % index[parent]
        out += "    {\"%s\", %s},\n" % (name, link)
    out += "};\n\n"
    out += """// Fills scimClassNodeMap when the library is loaded.
struct SCIMClassNodeMapExt {
  SCIMClassNodeMapExt() {
    for (SCIMClassNode& node : gNodes) scimClassNodeMap[node.name.c_str()] = &node;
  }
};

SCIMClassNodeMapExt gClassNodeMapExt;

template <typename T>
SCIMSerdesable* make() {
  return new T();
}

struct Factory {
  const char* name;
  SCIMSerdesable* (*create)();
};

// Sorted by name (strcmp), for binary search.
const Factory kFactories[] = {
"""
    entries = []
    for name in schema.classes:
        for suffix in ("", "_Key", "_Array", "_KeyArray"):
            entries.append(name + suffix)
    for entry in sorted(entries, key=lambda s: s.encode()):
        out += "    {\"%s\", make<%s>},\n" % (entry, entry)
    out += """};

}  // namespace

SCIMClassNode* scimGetClassNode(const char* name) {
  if (name == nullptr) return nullptr;
  SCIMClassNodeMap::const_iterator it = scimClassNodeMap.find(name);
  return it == scimClassNodeMap.end() ? nullptr : it->second;
}

bool scimIsa(const char* name, const SCIMClassNode* node) {
  if (node == nullptr || name == nullptr) return false;
  if (node->name == name) return true;
  return scimIsa(name, node->parent);
}

bool scimIsa(const char* name, const char* className) {
  return scimIsa(name, scimGetClassNode(className));
}

SCIMSerdesable* createCimObject(const std::string& className) {
  const Factory* end = kFactories + sizeof(kFactories) / sizeof(kFactories[0]);
  const Factory* it = std::lower_bound(kFactories, end, className.c_str(),
                                       [](const Factory& f, const char* n) { return strcmp(f.name, n) < 0; });
  if (it == end || className != it->name) return nullptr;
  return it->create();
}

const char* const scimModelClassNames[] = {
"""
    for name in sorted(schema.classes, key=lambda s: s.encode()):
        out += "    \"%s\",\n" % name
    out += "};\n\nconst std::size_t scimModelClassCount = sizeof(scimModelClassNames) / sizeof(scimModelClassNames[0]);\n"
    return out


def generate(schema):
    return {
        "scimclasstree.h": HEADER % {"count": len(schema.tree)},
        "scimclasstree.cpp": source(schema),
    }
