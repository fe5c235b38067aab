// The registrar script grammar: what a script means, and the mistakes it must refuse.
#include <gtest/gtest.h>

#include <string>

#include "core/registrar_script.h"

namespace {

using namespace corvane::core::rgs;

// A compact, unambiguous rendering of a parsed tree: marks as prefixes, values after '=', blocks
// in braces.
std::string Render(const std::vector<Node>& nodes) {
  std::string out;
  for (const Node& node : nodes) {
    if (!out.empty()) out += ' ';
    if (node.mark == Mark::NoRemove) out += "NR:";
    if (node.mark == Mark::ForceRemove) out += "FR:";
    if (node.mark == Mark::Delete) out += "DEL:";
    out.append(node.isNamedValue ? "val:<" : "<").append(node.name).append(">");
    if (node.value && node.value->type == ValueType::Dword) out.append("=d").append(std::to_string(node.value->number));
    if (node.value && node.value->type == ValueType::String) out.append("=s<").append(node.value->text).append(">");
    if (!node.children.empty()) out.append("{").append(Render(node.children)).append("}");
  }
  return out;
}

std::string Render(const Script& script) {
  std::string out;
  for (const Root& root : script.roots) {
    out.append("[").append(std::to_string(static_cast<int>(root.hive))).append("]{");
    out.append(Render(root.children)).append("}");
  }
  return out;
}

// What a script parses to, rendered; or where it is refused, when the refusal says why.
std::string Outcome(const char* text) {
  ParseError error;
  const std::optional<Script> script = Parse(text, {{"MODULE", "C:\\it's here\\Corvane.dll"}}, &error);
  if (script.has_value()) return Render(*script);
  return error.message.empty() ? "refused without a reason" : "refused at " + std::to_string(error.offset);
}

TEST(RegistrarScript, ParsesWhatTheScriptsSayAndRefusesBrokenOnes) {
  const struct {
    const char* text;
    const char* outcome;
  } cases[] = {
      {"HKCR\r\n{\r\n}\r\n", "[0]{}"},
      {"\xEF\xBB\xBFHKCR { }", "[0]{}"},
      {"hkey_local_machine { } HKCU { }", "[2]{}[1]{}"},
      // Marks, a key with a default value and a block, a key without either, nesting.
      {"HKCR { NoRemove CLSID { ForceRemove {5B1E} = s 'Class' { ForceRemove Programmable "
       "InprocServer32 = s '%MODULE%' { val ThreadingModel = s 'Apartment' } } } Delete Old }",
       "[0]{NR:<CLSID>{FR:<{5B1E}>=s<Class>{FR:<Programmable> <InprocServer32>=s<C:\\it's here\\Corvane.dll>"
       "{val:<ThreadingModel>=s<Apartment>}}} DEL:<Old>}"},
      // Quotes keep spaces, braces and '=' in a name; '' is one quote; %% is one percent sign.
      {"HKLM { NoRemove 'Browser Helper Objects' { '{ = }' = s 'it''s 100%%' } }",
       "[2]{NR:<Browser Helper Objects>{<{ = }>=s<it's 100%>}}"},
      {"HKLM { k { ForceRemove val '{5B}' = s '2' val n = d '4294967295' val h = d '0x42' val e = s '' } }",
       "[2]{<k>{FR:val:<{5B}>=s<2> val:<n>=d4294967295 val:<h>=d66 val:<e>=s<>}}"},
      // A key named like a keyword only when quoted.
      {"HKCR { 'val' 'NoRemove' }", "[0]{<val> <NoRemove>}"},
      // Refusals, each at the offset of its mistake.
      {"HKCR {", "refused at 6"},               // block never closed
      {"HKXX { }", "refused at 0"},             // unknown root
      {"'HKCR' { }", "refused at 0"},           // a quoted root is a name, not a hive
      {"HKCR }", "refused at 5"},               // no opening brace
      {"HKCR { a = b 'x' }", "refused at 11"},  // unknown value type
      {"HKCR { val a }", "refused at 13"},      // named value without data
      {"HKCR { a = d '12x' }", "refused at 13"},// not a number
      {"HKCR { a = d '4294967296' }", "refused at 13"},// past 32 bits
      {"HKCR { a = s 'open }", "refused at 13"},// unterminated quote
      {"HKCR { a = s '%NAME%' }", "refused at 13"},// no such replacement
      {"HKCR { a = s '100%' }", "refused at 13"},// lone percent sign
      {"HKCR { 'a\\b' }", "refused at 7"},      // a path where one key level belongs
      {"HKCR { ForceRemove }", "refused at 19"},// mark without a name
      {"HKCR { = s 'x' }", "refused at 7"},     // value without a name
  };
  for (const auto& c : cases) EXPECT_EQ(Outcome(c.text), c.outcome) << c.text;
}

}  // namespace
