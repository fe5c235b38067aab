#pragma once
// The stand-in's own log file. It never writes to its standard streams: the tests and the demo
// start it with pipes that nobody reads.
#include <string>

namespace explorer_standin {

// Opens (appends to) the log; lines written before this, or when it failed, are dropped.
bool OpenLog(const std::wstring& path);
void CloseLog() noexcept;

// One line with the local time and the calling thread's id. Safe from any thread.
void Log(const std::wstring& text) noexcept;

std::wstring HexResult(long hr);
std::wstring HandleText(const void* handle);

}  // namespace explorer_standin
