// The registrar script parser: any text either fails with an offset inside it or gives a tree that
// keeps the grammar's promises, and a parsed tree written back out (every token quoted) parses to
// the same tree. Replacements come from a fixed table whose values hold the script's own special
// characters, which must arrive as plain text and never be scanned again.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/registrar_script.h"
#include "fuzz_support.h"

namespace {

using namespace corvane::core::rgs;

const Replacements& Table() {
  static const Replacements table = {
      {"MODULE", "C:\\Program Files\\Corvane\\Corvane.dll"},
      {"CLSID", "{0E5AAE11-A475-4C5B-AB00-C66DE400274E}"},
      {"EMPTY", ""},
      {"TRICKY", "'%MODULE%' { } = \\ HKCR"},
      {"a", "b"},
  };
  return table;
}

// One token in quotes: a quote doubled, a percent sign as the "%%" that stands for it.
std::string Quoted(std::string_view text) {
  std::string out = "'";
  for (const char c : text) {
    if (c == '\'') out += "''";
    else if (c == '%') out += "%%";
    else out.push_back(c);
  }
  return out + "'";
}

const char* HiveName(Hive hive) {
  switch (hive) {
    case Hive::ClassesRoot: return "HKCR";
    case Hive::CurrentUser: return "HKEY_CURRENT_USER";
    case Hive::LocalMachine: return "hklm";
    case Hive::Users: return "HKU";
    case Hive::CurrentConfig: return "HKCC";
  }
  FUZZ_CHECK(!"a hive outside the enumeration");
  return "";
}

void Write(const Node& node, std::string& out) {
  switch (node.mark) {
    case Mark::None: break;
    case Mark::NoRemove: out += "NoRemove "; break;
    case Mark::ForceRemove: out += "forceremove "; break;
    case Mark::Delete: out += "DELETE "; break;
  }
  if (node.isNamedValue) out += "val ";
  out += Quoted(node.name);
  if (node.value) {
    out += " = ";
    if (node.value->type == ValueType::String) {
      out += "s " + Quoted(node.value->text);
    } else {
      // Hexadecimal and decimal forms alike, by the number's low bit.
      char digits[16];
      std::snprintf(digits, sizeof(digits), (node.value->number & 1u) ? "0X%X" : "%u", node.value->number);
      out += std::string("d ") + digits;
    }
  }
  if (!node.children.empty()) {
    out += " {\n";
    for (const Node& child : node.children) Write(child, out);
    out += "}";
  } else if (!node.isNamedValue && (node.mark != Mark::None || node.name.size() % 2 == 0)) {
    // An empty block is the same as none.
    out += " { }";
  }
  out += "\n";
}

std::string Write(const Script& script) {
  std::string out;
  for (const Root& root : script.roots) {
    out += HiveName(root.hive);
    out += "\n{\n";
    for (const Node& node : root.children) Write(node, out);
    out += "}\n";
  }
  return out;
}

bool Same(const Node& a, const Node& b);

bool SameList(const std::vector<Node>& a, const std::vector<Node>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (!Same(a[i], b[i])) return false;
  return true;
}

bool Same(const Node& a, const Node& b) {
  if (a.mark != b.mark || a.isNamedValue != b.isNamedValue || a.name != b.name) return false;
  if (a.value.has_value() != b.value.has_value()) return false;
  if (a.value && (a.value->type != b.value->type || a.value->text != b.value->text || a.value->number != b.value->number))
    return false;
  return SameList(a.children, b.children);
}

bool Same(const Script& a, const Script& b) {
  if (a.roots.size() != b.roots.size()) return false;
  for (std::size_t i = 0; i < a.roots.size(); ++i)
    if (a.roots[i].hive != b.roots[i].hive || !SameList(a.roots[i].children, b.roots[i].children)) return false;
  return true;
}

void CheckShape(const Node& node) {
  if (node.isNamedValue) {
    FUZZ_CHECK(node.value.has_value() && node.children.empty());
  } else {
    FUZZ_CHECK(!node.name.empty() && node.name.find('\\') == std::string::npos);
  }
  if (node.value && node.value->type == ValueType::Dword) FUZZ_CHECK(node.value->text.empty());
  for (const Node& child : node.children) CheckShape(child);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  ParseError error;
  error.offset = static_cast<std::size_t>(-1);
  const std::optional<Script> script = Parse(text, Table(), &error);
  if (!script) {
    FUZZ_CHECK(error.offset <= text.size());
    FUZZ_CHECK(!error.message.empty());
    return 0;
  }
  FUZZ_CHECK(error.offset == static_cast<std::size_t>(-1) && error.message.empty());
  for (const Root& root : script->roots)
    for (const Node& node : root.children) CheckShape(node);

  // Written back out and read again, with no replacements at all: the same tree.
  const std::string written = Write(*script);
  ParseError again;
  const std::optional<Script> reparsed = Parse(written, Replacements{}, &again);
  if (!reparsed) std::fprintf(stderr, "rewritten script fails at %zu: %s\n%s\n", again.offset, again.message.c_str(), written.c_str());
  FUZZ_CHECK(reparsed.has_value());
  FUZZ_CHECK(Same(*script, *reparsed));
  // The error result is optional to ask for.
  FUZZ_CHECK(Parse(text, Table()).has_value());
  return 0;
}
