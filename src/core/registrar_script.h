#pragma once
// The registrar script language of the module's REGISTRY resources, parsed into a tree. The text
// is UTF-8 and names and data stay UTF-8 here; whoever writes the registry converts them.
//
//   script := root*
//   root   := HIVE '{' item* '}'          HIVE: HKCR HKCU HKLM HKU HKCC (or the long HKEY_ names)
//   item   := [ForceRemove | NoRemove | Delete] ( 'val' NAME '=' VALUE | NAME ['=' VALUE] ['{' item* '}'] )
//   VALUE  := 's' TEXT | 'd' NUMBER
//
// Tokens are separated by white space; a token in single quotes may hold spaces, braces and '=',
// and '' inside it stands for one quote. "%NAME%" anywhere in a token is replaced from the
// replacement table before the token is used ("%%" is a single percent sign).
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::core::rgs {

enum class Mark { None, NoRemove, ForceRemove, Delete };

enum class ValueType { String, Dword };

struct Value {
  ValueType type = ValueType::String;
  std::string text;        // String
  std::uint32_t number = 0;  // Dword
};

struct Node {
  Mark mark = Mark::None;
  bool isNamedValue = false;  // a "val" item: a value of the enclosing key, never a key
  std::string name;
  std::optional<Value> value;  // a key's default value, or the named value's data
  std::vector<Node> children;
};

enum class Hive { ClassesRoot, CurrentUser, LocalMachine, Users, CurrentConfig };

struct Root {
  Hive hive = Hive::ClassesRoot;
  std::vector<Node> children;
};

struct Script {
  std::vector<Root> roots;
};

using Replacements = std::map<std::string, std::string, std::less<>>;

struct ParseError {
  std::size_t offset = 0;  // byte offset of the token that broke the grammar
  std::string message;
};

// The parsed script, or nothing with the reason in `error`.
std::optional<Script> Parse(std::string_view text, const Replacements& replacements, ParseError* error = nullptr);

}  // namespace corvane::core::rgs
