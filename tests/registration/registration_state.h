#pragma once
// What registration must leave in the registry, written out from the registration tables, and a
// scratch reset that removes every key and value registration may write.
#include <string>

namespace regtest {

// Where the class scripts' HKCR lands: HKCR itself, or the user's Software\Classes.
enum class Scope { Machine, User };

enum class FolderId { MyComputer, Desktop };

// Deletes everything of ours in both scopes; the shared parents stay.
void RemoveEverything();

void ExpectScriptsRegistered(Scope scope, const std::wstring& dll);
// Nothing of the scripts in either scope; the NoRemove parents are still there.
void ExpectScriptsAbsent();

// The folder's keys and values exactly as tabled (CLSID tree, NameSpace key, Approved and, for the
// desktop folder, NewStartPanel values).
void ExpectFolderRegistered(FolderId folder, const std::wstring& dll);
void ExpectFolderAbsent(FolderId folder);

void ExpectTypeLibrary(bool registered);

// Everything registered machine-wide or per user, or nothing at all.
void ExpectAllRegistered(Scope scope, const std::wstring& dll);
void ExpectNothingLeft();

}  // namespace regtest
