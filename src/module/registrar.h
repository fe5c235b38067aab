#pragma once
// The module's own registrar: runs a REGISTRY resource's script against the registry.
// Registering deletes each ForceRemove or Delete key's tree first, then creates keys and writes
// values; unregistering deletes ForceRemove trees and named values, keeps NoRemove keys, and
// removes any other key that is left without subkeys.
#include <windows.h>

#include "core/registrar_script.h"

namespace corvane::registrar {

// perUser maps the script's HKCR to the current user's Software\Classes.
HRESULT RunScript(const core::rgs::Script& script, bool registering, bool perUser);

// The REGISTRY resource `id` of `module`, with "%MODULE%" standing for the module's full path.
HRESULT RunScriptResource(HMODULE module, UINT id, bool registering, bool perUser);

}  // namespace corvane::registrar
