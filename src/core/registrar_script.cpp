#include "core/registrar_script.h"

#include <utility>

namespace corvane::core::rgs {

namespace {

struct Token {
  std::string text;
  bool quoted = false;
  std::size_t offset = 0;
};

bool IsSpace(char c) noexcept { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

char AsciiLower(char c) noexcept { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool EqualsNoCase(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (AsciiLower(a[i]) != AsciiLower(b[i])) return false;
  }
  return true;
}

class Parser {
 public:
  Parser(std::string_view text, const Replacements& replacements) : m_text(text), m_replacements(replacements) {
    // Editors like to start UTF-8 files with a byte-order mark; it is not part of the script.
    if (m_text.starts_with("\xEF\xBB\xBF")) m_pos = 3;
  }

  std::optional<Script> Run(ParseError* error) {
    Script script;
    for (;;) {
      std::optional<Token> token = Next();
      if (m_failed) break;
      if (!token) return Report(error) ? std::optional<Script>(std::move(script)) : std::nullopt;
      Root root;
      if (!HiveOf(*token, root.hive)) {
        Fail(token->offset, "unknown root key '" + token->text + "'");
        break;
      }
      if (!Expect("{") || !Items(root.children)) break;
      script.roots.push_back(std::move(root));
    }
    Report(error);
    return std::nullopt;
  }

 private:
  bool Report(ParseError* error) const {
    if (m_failed && error != nullptr) *error = m_error;
    return !m_failed;
  }

  void Fail(std::size_t offset, std::string message) {
    if (m_failed) return;
    m_failed = true;
    m_error = ParseError{offset, std::move(message)};
  }

  // The next token with its replacements made, or nothing at the end of the text (or on an error).
  std::optional<Token> Next() {
    while (m_pos < m_text.size() && IsSpace(m_text[m_pos])) ++m_pos;
    if (m_pos >= m_text.size()) return std::nullopt;
    Token token;
    token.offset = m_pos;
    std::string raw;
    if (m_text[m_pos] == '\'') {
      token.quoted = true;
      ++m_pos;
      for (;;) {
        if (m_pos >= m_text.size()) {
          Fail(token.offset, "unterminated quoted text");
          return std::nullopt;
        }
        const char c = m_text[m_pos++];
        if (c != '\'') {
          raw.push_back(c);
        } else if (m_pos < m_text.size() && m_text[m_pos] == '\'') {
          raw.push_back('\'');
          ++m_pos;
        } else {
          break;
        }
      }
    } else {
      while (m_pos < m_text.size() && !IsSpace(m_text[m_pos])) raw.push_back(m_text[m_pos++]);
    }
    if (!Replace(raw, token.offset, token.text)) return std::nullopt;
    return token;
  }

  bool Replace(const std::string& raw, std::size_t offset, std::string& out) {
    for (std::size_t i = 0; i < raw.size(); ++i) {
      if (raw[i] != '%') {
        out.push_back(raw[i]);
        continue;
      }
      const std::size_t end = raw.find('%', i + 1);
      if (end == std::string::npos) {
        Fail(offset, "unpaired '%'");
        return false;
      }
      const std::string_view name(raw.data() + i + 1, end - i - 1);
      if (name.empty()) {
        out.push_back('%');
      } else {
        const auto found = m_replacements.find(name);
        if (found == m_replacements.end()) {
          Fail(offset, "no replacement for '%" + std::string(name) + "%'");
          return false;
        }
        out += found->second;
      }
      i = end;
    }
    return true;
  }

  static bool Is(const std::optional<Token>& token, std::string_view word) {
    return token && !token->quoted && EqualsNoCase(token->text, word);
  }

  bool Expect(std::string_view word) {
    const std::size_t at = m_pos;
    std::optional<Token> token = Next();
    if (Is(token, word)) return true;
    Fail(token ? token->offset : at, "expected '" + std::string(word) + "'");
    return false;
  }

  static bool HiveOf(const Token& token, Hive& hive) {
    static constexpr std::pair<std::string_view, Hive> names[] = {
        {"HKCR", Hive::ClassesRoot},  {"HKEY_CLASSES_ROOT", Hive::ClassesRoot},
        {"HKCU", Hive::CurrentUser},  {"HKEY_CURRENT_USER", Hive::CurrentUser},
        {"HKLM", Hive::LocalMachine}, {"HKEY_LOCAL_MACHINE", Hive::LocalMachine},
        {"HKU", Hive::Users},         {"HKEY_USERS", Hive::Users},
        {"HKCC", Hive::CurrentConfig}, {"HKEY_CURRENT_CONFIG", Hive::CurrentConfig},
    };
    if (token.quoted) return false;
    for (const auto& [name, value] : names) {
      if (EqualsNoCase(token.text, name)) {
        hive = value;
        return true;
      }
    }
    return false;
  }

  // Items up to and including the closing brace of the block whose opening brace was just read.
  bool Items(std::vector<Node>& items) {
    for (;;) {
      const std::size_t at = m_pos;
      std::optional<Token> token = Next();
      if (m_failed) return false;
      if (!token) {
        Fail(at, "missing '}'");
        return false;
      }
      if (Is(token, "}")) return true;
      Node node;
      if (Is(token, "ForceRemove")) node.mark = Mark::ForceRemove;
      if (Is(token, "NoRemove")) node.mark = Mark::NoRemove;
      if (Is(token, "Delete")) node.mark = Mark::Delete;
      if (node.mark != Mark::None) token = Next();
      if (Is(token, "val")) {
        node.isNamedValue = true;
        token = Next();
      }
      if (!token || (!token->quoted && (token->text == "{" || token->text == "}" || token->text == "="))) {
        Fail(token ? token->offset : at, "expected a name");
        return false;
      }
      // A key is one level of the tree; a path here would escape the marks of the levels it skips.
      if (!node.isNamedValue && (token->text.empty() || token->text.find('\\') != std::string::npos)) {
        Fail(token->offset, "a key name must be one non-empty level");
        return false;
      }
      node.name = std::move(token->text);
      if (!Tail(node)) return false;
      items.push_back(std::move(node));
    }
  }

  // What may follow a name: "= value" (required for a named value), then a block (keys only).
  bool Tail(Node& node) {
    const std::size_t save = m_pos;
    std::optional<Token> token = Next();
    if (m_failed) return false;
    if (Is(token, "=")) {
      node.value.emplace();
      if (!ReadValue(*node.value)) return false;
    } else if (node.isNamedValue) {
      Fail(token ? token->offset : save, "a named value needs '='");
      return false;
    } else {
      m_pos = save;
    }
    if (node.isNamedValue) return true;
    const std::size_t beforeBlock = m_pos;
    token = Next();
    if (m_failed) return false;
    if (Is(token, "{")) return Items(node.children);
    m_pos = beforeBlock;
    return true;
  }

  bool ReadValue(Value& value) {
    const std::size_t at = m_pos;
    std::optional<Token> type = Next();
    std::optional<Token> data = type ? Next() : std::nullopt;
    if (m_failed) return false;
    if (!data || Is(data, "{") || Is(data, "}") || Is(data, "=")) {
      Fail(data ? data->offset : at, "expected a value type and its data");
      return false;
    }
    if (Is(type, "s")) {
      value.type = ValueType::String;
      value.text = std::move(data->text);
      return true;
    }
    if (Is(type, "d")) {
      value.type = ValueType::Dword;
      if (ParseNumber(data->text, value.number)) return true;
      Fail(data->offset, "not a 32-bit number: '" + data->text + "'");
      return false;
    }
    Fail(type->offset, "unsupported value type '" + type->text + "'");
    return false;
  }

  static bool ParseNumber(std::string_view text, std::uint32_t& number) {
    unsigned base = 10;
    if (text.size() > 2 && text[0] == '0' && AsciiLower(text[1]) == 'x') {
      base = 16;
      text.remove_prefix(2);
    }
    if (text.empty()) return false;
    std::uint64_t total = 0;
    for (const char c : text) {
      const char lower = AsciiLower(c);
      unsigned digit = 0;
      if (c >= '0' && c <= '9') {
        digit = static_cast<unsigned>(c - '0');
      } else if (base == 16 && lower >= 'a' && lower <= 'f') {
        digit = static_cast<unsigned>(lower - 'a' + 10);
      } else {
        return false;
      }
      total = total * base + digit;
      if (total > 0xFFFFFFFFull) return false;
    }
    number = static_cast<std::uint32_t>(total);
    return true;
  }

  std::string_view m_text;
  const Replacements& m_replacements;
  std::size_t m_pos = 0;
  bool m_failed = false;
  ParseError m_error;
};

}  // namespace

std::optional<Script> Parse(std::string_view text, const Replacements& replacements, ParseError* error) {
  return Parser(text, replacements).Run(error);
}

}  // namespace corvane::core::rgs
