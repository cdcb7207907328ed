#include "tools/cimhost/broker/ClassHierarchy.h"

#include <strings.h>

#include <fstream>
#include <sstream>

#include "tools/cimhost/broker/MofParser.h"
#include "tools/cimhost/broker/MofScanner.h"

namespace cimhost {

namespace {

bool sameName(const std::string& irA, const std::string& irB) {
  return strcasecmp(irA.c_str(), irB.c_str()) == 0;
}

}  // namespace

bool KeyProperty::isReference() const {
  return type.size() > 4 && sameName(type.substr(type.size() - 4), " REF");
}

bool ClassHierarchy::loadMofFile(const std::string& irPath, std::string* opError) {
  std::ifstream in(irPath, std::ios::binary);
  if (!in) {
    *opError = irPath + ": cannot open";
    return false;
  }
  std::ostringstream text;
  text << in.rdbuf();
  if (in.bad()) {
    *opError = irPath + ": read error";
    return false;
  }
  return loadMofText(text.str(), irPath, opError);
}

bool ClassHierarchy::loadMofText(const std::string& irText, const std::string& irName,
                                 std::string* opError) {
  std::vector<MofClassDecl> decls;
  if (!parseMof(irText, irName, &decls, opError)) return false;

  ClassMap merged = ivClasses;
  for (MofClassDecl& decl : decls) {
    const std::string where = irName + ":" + std::to_string(decl.line);
    auto it = merged.find(lowerName(decl.name));
    if (it == merged.end()) {
      // A new class must not close a superclass loop.
      for (std::string up = decl.superclass; !up.empty();) {
        if (sameName(up, decl.name)) {
          *opError = where + ": class " + decl.name + " inherits from itself";
          return false;
        }
        auto parent = merged.find(lowerName(up));
        up = parent == merged.end() ? std::string() : parent->second.superclass;
      }
      ClassInfo info;
      info.name = decl.name;
      info.superclass = decl.superclass;
      info.association = decl.association;
      info.indication = decl.indication;
      info.keys = std::move(decl.keys);
      info.origin = where;
      merged.emplace(lowerName(decl.name), std::move(info));
      continue;
    }

    ClassInfo& info = it->second;
    if (!sameName(info.superclass, decl.superclass)) {
      *opError = where + ": class " + decl.name + " redeclared with superclass '" +
                 decl.superclass + "', but " + info.origin + " declares '" + info.superclass +
                 "'";
      return false;
    }
    info.association = info.association || decl.association;
    info.indication = info.indication || decl.indication;
    for (KeyProperty& key : decl.keys) {
      bool known = false;
      for (const KeyProperty& old : info.keys) {
        if (!sameName(old.name, key.name)) continue;
        if (!sameName(old.type, key.type)) {
          *opError = where + ": key " + decl.name + "." + key.name + " redeclared as '" +
                     key.type + "', but was '" + old.type + "'";
          return false;
        }
        known = true;
      }
      if (!known) info.keys.push_back(std::move(key));
    }
  }
  ivClasses.swap(merged);
  return true;
}

const ClassHierarchy::ClassInfo* ClassHierarchy::find(const std::string& irClass) const {
  auto it = ivClasses.find(lowerName(irClass));
  return it == ivClasses.end() ? nullptr : &it->second;
}

std::vector<const ClassHierarchy::ClassInfo*> ClassHierarchy::lineage(
    const std::string& irClass) const {
  std::vector<const ClassInfo*> chain;
  // Loading rejects loops; the bound only keeps a walk finite regardless.
  for (const ClassInfo* info = find(irClass); info && chain.size() <= ivClasses.size();
       info = info->superclass.empty() ? nullptr : find(info->superclass)) {
    chain.push_back(info);
  }
  return chain;
}

bool ClassHierarchy::isKnown(const std::string& irClass) const { return find(irClass) != nullptr; }

bool ClassHierarchy::isA(const std::string& irClass, const std::string& irAncestor) const {
  const std::vector<const ClassInfo*> chain = lineage(irClass);
  if (chain.empty()) return false;
  for (const ClassInfo* info : chain) {
    if (sameName(info->name, irAncestor)) return true;
  }
  // The last known class may name a superclass that was never declared.
  return sameName(chain.back()->superclass, irAncestor);
}

std::vector<KeyProperty> ClassHierarchy::keysOf(const std::string& irClass) const {
  const std::vector<const ClassInfo*> chain = lineage(irClass);
  std::vector<KeyProperty> keys;
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    for (const KeyProperty& key : (*it)->keys) {
      bool seen = false;
      for (const KeyProperty& have : keys) seen = seen || sameName(have.name, key.name);
      if (!seen) keys.push_back(key);
    }
  }
  return keys;
}

std::string ClassHierarchy::superclassOf(const std::string& irClass) const {
  const ClassInfo* info = find(irClass);
  return info ? info->superclass : std::string();
}

bool ClassHierarchy::isAssociation(const std::string& irClass) const {
  for (const ClassInfo* info : lineage(irClass)) {
    if (info->association) return true;
  }
  return false;
}

bool ClassHierarchy::isIndication(const std::string& irClass) const {
  for (const ClassInfo* info : lineage(irClass)) {
    if (info->indication) return true;
  }
  return false;
}

std::vector<std::string> ClassHierarchy::classNames() const {
  std::vector<std::string> names;
  names.reserve(ivClasses.size());
  for (const auto& entry : ivClasses) names.push_back(entry.second.name);
  return names;
}

}  // namespace cimhost
