// Small pictures in files, for the background.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace vordane::window::testing {

// A bitmap of one row of points, in a new file; its path.
inline std::u16string pictureOfPoints(const std::vector<COLORREF>& points) {
  std::vector<unsigned char> row;
  for (const COLORREF point : points)
    row.insert(row.end(), {GetBValue(point), GetGValue(point), GetRValue(point)});
  while (row.size() % 4 != 0) row.push_back(0);
  BITMAPFILEHEADER file{};
  BITMAPINFOHEADER info{};
  file.bfType = 0x4D42;
  file.bfOffBits = sizeof file + sizeof info;
  file.bfSize = file.bfOffBits + static_cast<DWORD>(row.size());
  info.biSize = sizeof info;
  info.biWidth = static_cast<LONG>(points.size());
  info.biHeight = 1;
  info.biPlanes = 1;
  info.biBitCount = 24;
  info.biSizeImage = static_cast<DWORD>(row.size());
  wchar_t folder[MAX_PATH], path[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  GetTempFileNameW(folder, L"pic", 0, path);
  DWORD written = 0;
  const HANDLE handle = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  WriteFile(handle, &file, sizeof file, &written, nullptr);
  WriteFile(handle, &info, sizeof info, &written, nullptr);
  WriteFile(handle, row.data(), static_cast<DWORD>(row.size()), &written, nullptr);
  CloseHandle(handle);
  return std::u16string(reinterpret_cast<const char16_t*>(path));
}

}  // namespace vordane::window::testing
