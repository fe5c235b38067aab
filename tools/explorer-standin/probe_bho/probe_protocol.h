#pragma once
// What the stand-in's tests and the probe helper object agree on: the probe's classes, where it
// writes what it saw, and the frame messages it answers.
//
// Record file: UTF-8, one line per observation, fields separated by tabs:
//   <sequence> <thread id> <event> <key=value>...
// Events: created, setsite, cbt, invoke, navigate2, browseobject, unadvise, destroyed.
#include <windows.h>

namespace probe {

// Three classes of one helper object. Only the first does the full round of checks (hook, event
// sink, frame subclass); the other two only record their life, so tests can count who was loaded.
// {94d1c0af-be2f-4556-b6a4-85831593912c}
inline constexpr CLSID kClsidFull = {0x94d1c0af, 0xbe2f, 0x4556, {0xb6, 0xa4, 0x85, 0x83, 0x15, 0x93, 0x91, 0x2c}};
// {77448b97-b51b-4834-875f-02a0e527c676}
inline constexpr CLSID kClsidQuiet = {0x77448b97, 0xb51b, 0x4834, {0x87, 0x5f, 0x02, 0xa0, 0xe5, 0x27, 0xc6, 0x76}};
// {d18f458e-900d-431c-b308-998356ac24a1}
inline constexpr CLSID kClsidSpare = {0xd18f458e, 0x900d, 0x431c, {0xb3, 0x08, 0x99, 0x83, 0x56, 0xac, 0x24, 0xa1}};

// The record file's path, read from the environment the stand-in inherits from the test.
inline constexpr wchar_t kRecordVariable[] = L"CORVANE_PROBE_RECORD";

}  // namespace probe
