// cimhost::ClassHierarchy: what the in-process broker knows about CIM
// classes, read from MOF class declarations: each class's superclass,
// whether it is an association or an indication, and its key properties.
//
// Loading: every loadMof*() call parses one MOF text (see MofParser.h for
// what is read and what is skipped) and merges its classes into the
// hierarchy. A class may be declared several times, in one text or across
// texts (typically a stub "class CIM_System : CIM_EnabledLogicalElement {
// };" first and a full declaration later); the declarations must name the
// same superclass, their keys are united (a key already known keeps its
// position; a second declaration of it must have the same type) and the
// Association / Indication flags are or-ed. A superclass need not be
// declared at all. A load either succeeds completely or leaves the
// hierarchy as it was; errors read "<name>:<line>: <reason>".
//
// Queries: class names compare case-insensitively, as CIM names do. A
// class is "known" once declared. isA() follows the declared superclass
// chain from a known class (a class is-a itself; an undeclared class is-a
// nothing). The Association and Indication qualifiers are inherited.
//
// Thread-safety: const queries may run concurrently; loading must not run
// concurrently with anything else.
#ifndef QRX_TOOLS_CIMHOST_BROKER_CLASSHIERARCHY_H_
#define QRX_TOOLS_CIMHOST_BROKER_CLASSHIERARCHY_H_

#include <map>
#include <string>
#include <vector>

namespace cimhost {

// A property or reference that carries the Key qualifier.
struct KeyProperty {
  std::string name;
  // A CIM type name as written ("string", "uint16", ...) or, for a
  // reference, "<Class> REF".
  std::string type;

  bool isReference() const;
};

class ClassHierarchy {
 public:
  ClassHierarchy() = default;
  ClassHierarchy(const ClassHierarchy&) = default;
  ClassHierarchy& operator=(const ClassHierarchy&) = default;

  // Reads and merges the MOF file at `irPath`. Returns false with
  // *opError set if it cannot be read or has an error.
  bool loadMofFile(const std::string& irPath, std::string* opError);

  // Merges the MOF text `irText`; `irName` stands for the file in errors.
  bool loadMofText(const std::string& irText, const std::string& irName, std::string* opError);

  bool isKnown(const std::string& irClass) const;

  // Whether `irClass` is `irAncestor` or inherits from it.
  bool isA(const std::string& irClass, const std::string& irAncestor) const;

  // The keys declared in the class and its known ancestors, ancestors
  // first, each name once. Empty for an unknown class.
  std::vector<KeyProperty> keysOf(const std::string& irClass) const;

  // The declared superclass, "" for a root or unknown class.
  std::string superclassOf(const std::string& irClass) const;

  // Whether the class or one of its ancestors is qualified Association
  // (Indication). False for an unknown class.
  bool isAssociation(const std::string& irClass) const;
  bool isIndication(const std::string& irClass) const;

  // The declared classes, as first spelled, in case-insensitive order.
  std::vector<std::string> classNames() const;

 private:
  struct ClassInfo {
    std::string name;
    std::string superclass;
    bool association = false;
    bool indication = false;
    std::vector<KeyProperty> keys;
    std::string origin;  // "<file>:<line>" of the first declaration
  };

  // Classes by lower-case name.
  using ClassMap = std::map<std::string, ClassInfo>;

  const ClassInfo* find(const std::string& irClass) const;

  // The chain from `irClass` up through known classes (the class first);
  // empty for an unknown class.
  std::vector<const ClassInfo*> lineage(const std::string& irClass) const;

  ClassMap ivClasses;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_CLASSHIERARCHY_H_
