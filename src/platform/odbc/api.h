// The functions of an ODBC 3 driver manager that this engine calls, and the constants of their interface. The
// manager is looked up by name when it is first needed, so that a program starts where there is none.
#pragma once

#include <cstdint>
#include <functional>

// The calling convention of the system's libraries, where it is not the compiler's own (CMakeLists.txt).
#ifndef VORDANE_ODBC_CALL
#define VORDANE_ODBC_CALL
#endif

namespace vordane::odbc {

using Handle = void*;
using Return = std::int16_t;
using Length = std::intptr_t;

namespace sql {
inline constexpr Return success = 0, successWithInfo = 1, noData = 100, error = -1, invalidHandle = -2;
constexpr bool ok(Return result) {
  return result == success || result == successWithInfo;
}

inline constexpr std::int16_t handleEnvironment = 1, handleConnection = 2, handleStatement = 3;
inline constexpr std::int16_t commit = 0, rollback = 1;
inline constexpr std::int32_t attributeVersion = 200, versionOdbc3 = 3;                // environment
inline constexpr std::int32_t attributeAutocommit = 102, attributeDead = 1209;         // connection
inline constexpr std::int16_t typeLongText = -10, typeText = -9, typeBigInteger = -5;  // of columns
inline constexpr std::int16_t valueWide = -8, valueBigInteger = -25;                   // of values
inline constexpr std::int16_t input = 1;
inline constexpr std::uint16_t closeCursor = 0, noCompletion = 0;
inline constexpr Length nullData = -1, noTotal = -4;
inline constexpr std::int16_t nullTerminated = -3;
}  // namespace sql

// The functions, by what their names say behind "SQL".
struct Api {
  template <typename... Arguments>
  using Function = Return(VORDANE_ODBC_CALL*)(Arguments...);

  Function<std::int16_t, Handle, Handle*> allocHandle = nullptr;
  Function<std::int16_t, Handle> freeHandle = nullptr;
  Function<Handle, std::int32_t, void*, std::int32_t> setEnvAttr = nullptr;
  Function<Handle, std::int32_t, void*, std::int32_t> setConnectAttr = nullptr;
  Function<Handle, std::int32_t, void*, std::int32_t, std::int32_t*> getConnectAttr = nullptr;
  Function<Handle, void*, char16_t*, std::int16_t, char16_t*, std::int16_t, std::int16_t*, std::uint16_t>
      driverConnect = nullptr;
  Function<Handle> disconnect = nullptr;
  Function<std::int16_t, Handle, std::int16_t> endTran = nullptr;
  Function<Handle, char16_t*, std::int32_t> prepare = nullptr;
  Function<Handle, char16_t*, std::int32_t> execDirect = nullptr;
  Function<Handle> execute = nullptr;
  Function<Handle, std::uint16_t, std::int16_t, std::int16_t, std::int16_t, std::uintptr_t, std::int16_t,
           void*, Length, Length*>
      bindParameter = nullptr;
  Function<Handle> fetch = nullptr;
  Function<Handle, std::uint16_t, std::int16_t, void*, Length, Length*> getData = nullptr;
  Function<Handle, Length*> rowCount = nullptr;
  Function<Handle, std::int16_t*> numResultCols = nullptr;
  Function<Handle, std::uint16_t> freeStmt = nullptr;
  Function<std::int16_t, Handle, std::int16_t, char16_t*, std::int32_t*, char16_t*, std::int16_t,
           std::int16_t*>
      getDiagRec = nullptr;
};

// Gives the address of a function of the driver manager; null when there is no such function, or no manager.
using Lookup = std::function<void*(const char* name)>;

// Throws DatabaseError (connectionFailed) when the manager lacks one of them.
Api loadApi(const Lookup& lookup);

}  // namespace vordane::odbc
