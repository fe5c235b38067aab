// scalemend.exe for tests and demonstrations: a stand-in for the client's DPI tool that only
// records how it was started (same record line as the Halvex.exe stand-in) and ends.
//   SCALEMEND_STANDIN_RECORD  --record=<path>  record file; default <own folder>\scalemend-record.txt
#include <windows.h>

#include <string>

#include "standin_record.h"

namespace {

int Run() {
  const auto arguments = standin::Arguments();
  std::wstring record = standin::OwnFolder() + L"scalemend-record.txt";
  if (auto value = standin::Environment(L"SCALEMEND_STANDIN_RECORD")) record = *value;
  if (auto value = standin::Option(arguments, L"--record=")) record = *value;
  return standin::AppendStartRecord(record) ? 0 : 2;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  try {
    return Run();
  } catch (...) {
    return 1;
  }
}
