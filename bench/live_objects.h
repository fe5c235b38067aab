#pragma once
// Live objects of the project's own handle owners, by kind, as the owners count them. The counters
// belong to the module the owners were built into: a benchmark reads its own, and the add-in's are
// read through the bench build's export (live_objects_export.cpp).
#include <windows.h>

#include "platform/handles.h"

namespace bench {

template <class Owner>
struct TraitsOf;
template <class Traits>
struct TraitsOf<corvane::unique_resource<Traits>> {
  using type = Traits;
};
template <class Owner>
long Live() {
  return corvane::LiveCount<typename TraitsOf<Owner>::type>::value().load();
}

struct LiveObjects {
  long bitmap = Live<corvane::unique_hbitmap>();
  long dc = Live<corvane::unique_hdc>();
  long font = Live<corvane::unique_hfont>();
  long brush = Live<corvane::unique_hbrush>();
  long pen = Live<corvane::unique_hpen>();
  long region = Live<corvane::unique_hrgn>();
  long icon = Live<corvane::unique_hicon>();
  long menu = Live<corvane::unique_hmenu>();
  long key = Live<corvane::unique_hkey>();
  long kernel = Live<corvane::unique_handle>();
  long file = Live<corvane::unique_file>();
  long find = Live<corvane::unique_find>();
  long hook = Live<corvane::unique_hhook>();
  long pidl = Live<corvane::unique_pidl>();
  long module = Live<corvane::unique_hmodule>();
  long Total() const noexcept {
    return bitmap + dc + font + brush + pen + region + icon + menu + key + kernel + file + find + hook + pidl + module;
  }
};

}  // namespace bench
