#include "board.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace vordane::hostile {
namespace {

constexpr const wchar_t* name = L"VordaneHostileBoard";

bool runs(DWORD id) {
  const com::Handle process(OpenProcess(SYNCHRONIZE, FALSE, id));
  return process && WaitForSingleObject(process.get(), 0) == WAIT_TIMEOUT;
}

}  // namespace

Board::Board()
    : mapping_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(Shared), name)) {
  if (mapping_)
    shared_ = static_cast<Shared*>(MapViewOfFile(mapping_.get(), FILE_MAP_ALL_ACCESS, 0, 0, sizeof(Shared)));
  if (shared_ == nullptr) throw std::runtime_error("no memory that programs share");
}

Board::~Board() {
  UnmapViewOfFile(shared_);
}

Seat& Board::sit(Role role) const {
  const std::uint32_t number = shared_->seats++;
  if (number >= Shared::mostSeats) throw std::runtime_error("too many hostile programs");
  Seat& seat = shared_->seat[number];
  seat.role = role;
  seat.heard = shared_->wishes.load();
  seat.process = GetCurrentProcessId();
  return seat;
}

std::uint64_t Board::calls(Role role) const {
  std::uint64_t all = 0;
  const std::size_t count = std::min<std::size_t>(shared_->seats, Shared::mostSeats);
  for (std::size_t i = 0; i < count; ++i)
    if (shared_->seat[i].role == role) all += std::atomic_ref(shared_->seat[i].calls).load();
  return all;
}

bool Board::anyRunning(const std::function<bool(Seat&)>& is) const {
  const std::size_t count = std::min<std::size_t>(shared_->seats, Shared::mostSeats);
  for (std::size_t i = 0; i < count; ++i) {
    Seat& seat = shared_->seat[i];
    const DWORD process = seat.process;
    if (process == 0 || !is(seat)) continue;
    if (runs(process)) return true;
    seat.process = 0;
  }
  return false;
}

bool Board::somebodyActs() const {
  return anyRunning([](Seat& seat) { return seat.acts > 0; });
}

bool Board::somebodyOwes() const {
  const std::int32_t last = shared_->wishes;
  return anyRunning([last](Seat& seat) { return seat.role == Role::exchange && seat.heard != last; });
}

void Board::utter(Wish wish) const {
  shared_->wish = wish;
  ++shared_->wishes;
}

std::vector<DWORD> Board::takeHanging() const {
  std::vector<DWORD> found;
  const std::size_t count = std::min<std::size_t>(shared_->seats, Shared::mostSeats);
  for (std::size_t i = 0; i < count; ++i)
    if (shared_->seat[i].hangs.exchange(false)) found.push_back(shared_->seat[i].process);
  return found;
}

void Board::setWrong(std::string_view what) const {
  if (shared_->isWrong) return;
  std::snprintf(shared_->wrong, sizeof shared_->wrong, "%.*s", static_cast<int>(what.size()), what.data());
  shared_->isWrong = true;
}

std::string Board::wrong() const {
  return shared_->isWrong ? shared_->wrong : "";
}

void Board::note(char who, std::string_view what) const {
  const std::uint32_t number = ++shared_->lines;
  Shared::Line& line = shared_->line[number % Shared::keptLines];
  line.number = 0;
  std::snprintf(line.text, sizeof line.text, "%10llu %c %5lu %.*s",
                static_cast<unsigned long long>(GetTickCount64()), who, GetCurrentProcessId(),
                static_cast<int>(std::min<std::size_t>(what.size(), 120)), what.data());
  line.number = number;
}

std::vector<std::string> Board::linesSince(std::uint32_t& from) const {
  std::vector<std::string> found;
  const std::uint32_t last = shared_->lines;
  if (last >= Shared::keptLines)
    from = std::max(from, last - static_cast<std::uint32_t>(Shared::keptLines) + 1);
  for (from = std::max<std::uint32_t>(from, 1); from <= last; ++from) {
    const Shared::Line& line = shared_->line[from % Shared::keptLines];
    if (line.number == from) found.emplace_back(line.text);
  }
  return found;
}

}  // namespace vordane::hostile
