#pragma once
// Live objects of the project's own handle owners, by kind, as the owners count them. The counters
// belong to the module the owners were built into: a benchmark reads its own, and the add-in's are
// read through the bench build's export (live_objects_export.cpp).
#include <windows.h>

#include "platform/handles.h"

namespace bench {

struct LiveObjects {
  long bitmap = corvane::unique_hbitmap::Live();
  long dc = corvane::unique_hdc::Live();
  long font = corvane::unique_hfont::Live();
  long brush = corvane::unique_hbrush::Live();
  long pen = corvane::unique_hpen::Live();
  long region = corvane::unique_hrgn::Live();
  long icon = corvane::unique_hicon::Live();
  long menu = corvane::unique_hmenu::Live();
  long key = corvane::unique_hkey::Live();
  long kernel = corvane::unique_handle::Live();
  long file = corvane::unique_file::Live();
  long find = corvane::unique_find::Live();
  long hook = corvane::unique_hhook::Live();
  long pidl = corvane::unique_pidl::Live();
  long module = corvane::unique_hmodule::Live();
  long Total() const noexcept {
    return bitmap + dc + font + brush + pen + region + icon + menu + key + kernel + file + find + hook + pidl + module;
  }
};

}  // namespace bench
