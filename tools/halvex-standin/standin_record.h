#pragma once
// What the client stand-ins share: where they are, what they were told, and the start record.
//
// A start record is one UTF-8 line, appended to the record file and ended by "\n":
//   <process id> TAB <creation time, ms since 1970> TAB <show state> TAB <current directory> TAB
//   <raw command line>
// The show state is the one its starter asked for (STARTUPINFO's wShowWindow, "-" when none was).
// The command line is written exactly as GetCommandLineW returns it and comes last, so everything
// after the fourth tab belongs to it (only a line break inside it would split the record).
#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

// The folder of the running program, ending in a backslash.
std::wstring OwnFolder();

// The value of an environment variable, or nothing when it is not set.
std::optional<std::wstring> Environment(const wchar_t* name);

// The program's own arguments, split the way the C runtime splits them (argv[0] included).
std::vector<std::wstring> Arguments();

// The text after prefix of the last argument that starts with it ("--linger-ms=" -> "500").
std::optional<std::wstring> Option(const std::vector<std::wstring>& arguments, std::wstring_view prefix);

// Decimal digits as a number; anything else reads as 0.
unsigned long Number(const std::wstring& text);

// Appends this process's start record. Concurrent starts are serialised by a session-wide mutex
// and each record is a single append, so lines never interleave.
bool AppendStartRecord(const std::wstring& path);

}  // namespace standin
