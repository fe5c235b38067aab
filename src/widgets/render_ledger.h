#pragma once
// What each picture file the add-in writes was last made from, process-wide. Every window of
// Explorer renders the same captions into the same CorvaneSkin names; when a file still holds what
// identical inputs produced here (its size and last-write time are those we left it with), writing
// it again would only rewrite the same bytes, so the render, encode and write are skipped. Anything
// else renders and writes as always: a file someone else touched, new inputs, a failed write.
#include <windows.h>

#include <mutex>
#include <string>

#include "widgets/file_stamp.h"

namespace imageutil {

// Held from the check through the write and its record, so that the recorded stamp is that of the
// bytes these inputs produced even when two windows write the same name at once.
std::unique_lock<std::mutex> LockPictureWrites();

// True when outPath was last written here from exactly `inputs` and still carries that write's stamp.
bool IsCurrent(const std::wstring& outPath, const std::wstring& inputs) noexcept;
// After a write from `inputs`: records the file's stamp as it is now (a failed write forgets it).
void Record(const std::wstring& outPath, const std::wstring& inputs, bool written) noexcept;

// Off: every call renders and writes, and every picture is decoded from its file, as without these
// caches (the equivalence test and the benchmarks compare both ways). On by default; switching
// forgets everything recorded.
void SetReuse(bool reuse) noexcept;
bool IsReuseOn() noexcept;

}  // namespace imageutil
