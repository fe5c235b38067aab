#pragma once
// The layout step shared by the two view wrappers: a WINDOWPOS about to be applied to Explorer's
// view window becomes a layout pass of the controller; the rectangle itself is left as it was.
#include <windows.h>

class CExplorerWindow;

namespace explorer {

void LayoutFromWindowPos(const wchar_t* function, WINDOWPOS* wp, bool managing, CExplorerWindow* owner);

}  // namespace explorer
