#include "tests/support/ModelText.h"

#include <sstream>

#include "generated/scimclasstree.h"

namespace {

class TextWriter : public SCIMSerializerIf {
 public:
  explicit TextWriter(int depth) : ivDepth(depth) {}
  std::string text() const { return ivOut.str(); }

  bool hasError() override { return false; }
  void write(const char* n, unsigned int t, float v) override { line(n, t) << v << "\n"; }
  void write(const char* n, unsigned int t, signed char v) override { line(n, t) << int(v) << "\n"; }
  void write(const char* n, unsigned int t, short v) override { line(n, t) << v << "\n"; }
  void write(const char* n, unsigned int t, int v) override { line(n, t) << v << "\n"; }
  void write(const char* n, unsigned int t, unsigned char v) override { line(n, t) << unsigned(v) << "\n"; }
  void write(const char* n, unsigned int t, unsigned short v) override { line(n, t) << v << "\n"; }
  void write(const char* n, unsigned int t, unsigned int v) override { line(n, t) << v << "\n"; }
  void write(const char* n, unsigned int t, unsigned long long v) override { line(n, t) << v << "\n"; }
  void write(const char* n, unsigned int t, const cdatetime& v) override { line(n, t) << v.ivTime << "\n"; }
  void write(const char* n, unsigned int t, const std::string& v) override { line(n, t) << '"' << v << "\"\n"; }
  void write(const char* n, unsigned int t, const char* v) override { line(n, t) << '"' << v << "\"\n"; }
  void write(const char* n, unsigned int t, const std::vector<unsigned short>& v) override { list(n, t, v); }
  void write(const char* n, unsigned int t, const std::vector<unsigned long long>& v) override { list(n, t, v); }
  void write(const char* n, unsigned int t, const std::vector<std::string>& v) override { list(n, t, v); }
  void write(const char* n, unsigned int t, const cstring_EO& v) override {
    line(n, t) << "EO " << v.ivNameSpace << ":" << v.ivClassName << (v.ivNull ? " null" : "") << "\n";
    if (v.ivpEmbeddedObj != nullptr) ivOut << modelTextAt(*v.ivpEmbeddedObj, ivDepth + 1);
  }
  void write(const char* n, unsigned int t, const SCIMSerdesable& v) override {
    line(n, t) << v.getClassName() << "\n" << modelTextAt(v, ivDepth + 1);
  }
  void write(const char* n, CMPIData&) override { line(n, 0) << "raw\n"; }

  static std::string modelTextAt(const SCIMSerdesable& object, int depth) {
    TextWriter writer(depth);
    object.serialize(writer);
    return writer.text();
  }

 private:
  std::ostream& line(const char* name, unsigned int type) {
    ivOut << std::string(2 * ivDepth, ' ') << name << " 0x" << std::hex << type << std::dec << " ";
    return ivOut;
  }
  template <typename T>
  void list(const char* name, unsigned int type, const std::vector<T>& values) {
    std::ostream& out = line(name, type);
    out << "[";
    for (const T& value : values) out << " " << value;
    out << " ]\n";
  }

  int ivDepth;
  std::ostringstream ivOut;
};

// Every value depends on a counter, so properties differ from one another.
class Filler : public SCIMDeserializerIf {
 public:
  bool hasError() override { return false; }
  void read(const char*, unsigned int, float& v) override { v = next() + 0.5f; }
  void read(const char*, unsigned int, signed char& v) override { v = static_cast<signed char>(-(next() % 100)); }
  void read(const char*, unsigned int, short& v) override { v = static_cast<short>(-next()); }
  void read(const char*, unsigned int, int& v) override { v = -100000 - next(); }
  void read(const char*, unsigned int t, unsigned char& v) override {
    v = static_cast<unsigned char>(t == CMPI_boolean ? 1 : 200 + next() % 50);
  }
  void read(const char*, unsigned int, unsigned short& v) override { v = static_cast<unsigned short>(1000 + next()); }
  void read(const char*, unsigned int, unsigned int& v) override { v = 4000000000u - next(); }
  void read(const char*, unsigned int, unsigned long long& v) override { v = 0x100000000ULL * 7 + next(); }
  void read(const char*, unsigned int, cdatetime& v) override { v.ivTime = 1700000000u + next() * 3601u; }
  void read(const char* n, unsigned int, std::string& v) override { v = std::string(n) + "-" + std::to_string(next()); }
  void read(const char*, unsigned int, std::vector<unsigned short>& v) override {
    v = {static_cast<unsigned short>(next()), 0, 65535};
  }
  void read(const char*, unsigned int, std::vector<unsigned long long>& v) override {
    v = {next() * 0x1000000000ULL, 1};
  }
  void read(const char* n, unsigned int, std::vector<std::string>& v) override {
    v = {std::string(n) + "-a" + std::to_string(next()), "", "x y \"z\""};
  }
  void read(const char*, unsigned int, cstring_EO& v) override {
    // An embedded switch with its own filled properties.
    SCIMSerdesable* object = createCimObject("QRX_Switch");
    object->deserialize(*this);
    v.reset(object);
    v.ivNameSpace = "root/qrx";
    v.ivClassName = "QRX_Switch";
  }
  void read(const char*, unsigned int, SCIMSerdesable& v) override { v.deserialize(*this); }
  SCIMSerdesable* newSerdesable(const std::string& className) override { return createCimObject(className); }

 private:
  unsigned next() { return ++ivCounter; }
  unsigned ivCounter = 0;
};

}  // namespace

std::string modelText(const SCIMSerdesable& object) { return TextWriter::modelTextAt(object, 0); }

void fillModel(SCIMSerdesable& object) {
  Filler filler;
  object.deserialize(filler);
}
