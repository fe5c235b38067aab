#pragma once
// A default tool button whose caption is set by its owner.
#include <string>

#include "widgets/default_tool_button.h"

class CTextToolButton final : public CDefaultToolButtonT<CTextToolButton> {
 public:
  static constexpr const wchar_t* kClassName = L"CorvaneTextToolButton";

  // Stores the caption and repaints when the window exists.
  void SetText(const std::wstring& text) {
    m_strText = text;
    if (IsWindow()) Invalidate();
  }
};
