#pragma once
// The client's published state under HKCU, as Halvex writes it, for tests that load the add-in into a
// host and need it to see a signed-out, signed-in or sync-ready user.
#include <string>

namespace testsupport {

enum class ClientState { kSignedOut, kSignedInNoSync, kSyncReady };

// Replaces the whole Halvex key with one current user in the given state; syncPath is published in
// every state, as the client leaves it there when sync is switched off.
void PublishClientState(ClientState state, const std::wstring& syncPath);
void ClearClientState();

}  // namespace testsupport
