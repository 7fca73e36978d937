#include "platform/windows/com/type_library.h"

#include <vector>

namespace vordane::com {
namespace {

constexpr std::size_t longestPath = 32768;

ComPtr<ITypeLib> load() {
  std::vector<wchar_t> path(longestPath);
  GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  ComPtr<ITypeLib> library;
  LoadTypeLibEx(path.data(), REGKIND_NONE, library.put());
  return library;
}

}  // namespace

ComPtr<ITypeInfo> typeInfoOf(const GUID& id) {
  // Kept to the end of the process: COM may be gone already when static objects are destroyed.
  static ITypeLib* const library = load().release();
  ComPtr<ITypeInfo> info;
  if (library != nullptr) library->GetTypeInfoOfGuid(id, info.put());
  return info;
}

}  // namespace vordane::com
