// The fault store of the window: takes fault lists in, shows the stored faults of one exchange, keeps the
// lamps, prints and deletes. The window owns one and calls it from its dispatcher and its events.
//
// Every public procedure traps its own errors and shows them (box 102 with the engine's text), so none of
// them throws but for an impossible column; each tests once whether FAULT.MDB is open and tells the host when
// it is not. Boxes and calls of the host let other work in: each procedure stops, touching nothing more, when
// StoreForm::alive() is false after one. One thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "pbx/received_list.h"
#include "store/comSSDataGrid.h"
#include "store/data_control.h"
#include "store/newer_list.h"
#include "store/sort_orders.h"
#include "store/store_form.h"

namespace vordane::store {

class FaultStore {
 public:
  enum class Report { box, quiet };  // whether a failing display is told in a box too

  FaultStore(StoreForm& form, const Surroundings& around);
  FaultStore(const FaultStore&) = delete;
  FaultStore& operator=(const FaultStore&) = delete;

  // --- the form's load and unload
  void setSortFlags();  // 0, 1, 3 and 4 ascending first, 2 descending; 5 is not touched
  // Refills drpPBXList, newest list first, and selects the form's exchange or the first. False when that
  // failed, which the display shows, and box 102 unless `report` is quiet.
  bool FillExchangeList(Report report = Report::box);
  void close();  // before the database is closed: lets go of the rows; the view is not told; never throws

  // --- the display
  // `PBXName` was set: the form's exchange becomes the one of that name, or none; then RefreshDisplay.
  void setExchangeName(std::u16string_view name, Report report = Report::box);
  void RefreshDisplay();
  void exchangeListClicked();       // a choice in drpPBXList; nothing while the list is being filled
  void headingClicked(int column);  // throws std::out_of_range outside 0-5
  void DisplayAlarm();              // paints the lamps of the exchange shown; reports no missing database
  // Print, clear, look up and reset follow the empty grid; the host's scheduler keeps them dead.
  void showButtonStates();
  // Whether somebody else has stored a newer list of the exchange shown; the status line says so. Answers
  // with when to look again. Calls neither the host nor a box.
  NewerList::Pause lookForNewerList();
  void reword();      // the texts that are shown have changed: count, notice, what is told beside the lamps
  void showNotice();  // what stands above the rows or in the place of an empty grid
  // The next row holding `text` after `after` (-1: from the first), round the end once.
  std::optional<std::size_t> lookUp(std::u16string_view text, std::ptrdiff_t from,
                                    window::LookUpWay way = window::LookUpWay::forwards);

  // --- actions
  // What the caller does behind a list: acknowledge it, end the action, or nothing since the form has gone.
  enum class After { acknowledge, endAction, nothing };
  After IngestFaultList(const pbx::ReceivedList& received);
  // The lamps' state, and the reset of the alarms; the caller then paints the lamps and ends the action.
  // False when the answer does not say what it should.
  bool UpDateAlarm(const pbx::ReceivedList& received);
  bool ClearAlarm(const pbx::ReceivedList& received);
  void PrintFaultReport();
  void DeleteExchange();

  std::int16_t exchangeId() const { return exchangeId_; }
  SortKey sortKey() const { return sortKey_; }
  const std::optional<status::ListAccount>& lastAccount() const { return account_; }
  window::GridSource& rows() { return grid_; }
  const ExchangeControl& datPBXList() const { return datPBXList_; }
  const FaultControl& datFaultDisplay() const { return datFaultDisplay_; }

 private:
  struct Chosen {
    std::u16string name;
    std::int16_t id;
  };
  // Null after telling the host that FAULT.MDB is not open.
  database::Database* openDatabase();
  // Runs steps of the display; an error empties it and, unless quiet, shows box 102. False when the form has
  // gone meanwhile.
  bool trapDisplay(Report report, const std::function<void()>& steps);
  void refresh(database::Database& database, Report report);
  void showNoDatabase();
  void emptyDisplay();
  // Box 102 and nothing else. False when the form has gone meanwhile.
  bool showError(std::u16string_view engineText);

  // The steps of the display; they throw.
  std::optional<Chosen> chosen() const;
  std::int16_t idOfName(database::Database& database, std::u16string_view name);
  void fillList(database::Database& database);
  void SelectExchange(database::Database& database);
  void SortFaultGrid(database::Database& database, int column);
  void refreshExchange(database::Database& database);
  void refreshFaults(database::Database& database);
  void paintLamps(database::Database& database);
  void showLamps(bool major, bool minor);
  void showRows();
  void showCount();
  std::optional<NewerList::Shown> shown() const;  // nothing while no exchange of the store is shown

  void storeLamps(std::u16string_view exchange, bool major, bool minor);
  void tellAccount(const status::ListAccount& account);
  After endFailedList(std::u16string_view engineText);
  bool showTakenList(bool somethingAdded, bool accessError);  // false when the form has gone meanwhile

  StoreForm& form_;
  Surroundings around_;
  ExchangeControl datPBXList_;
  FaultControl datFaultDisplay_;
  comSSDataGrid::FaultRows grid_;
  std::u16string registeredName_;
  std::int16_t exchangeId_ = 0;
  bool filling_ = false;
  std::array<bool, headingColumns> ascending_{};
  SortKey sortKey_ = 0;
  std::uint32_t displays_ = 0;  // how often rows were read to be shown
  std::optional<status::ListAccount> account_;
  NewerList newer_;
};

// True when no row of the exchange agrees in all compared columns. Throws DatabaseError.
bool FindSameFault(std::int16_t id, database::Database& database, std::u16string_view record,
                   std::u16string_view date, std::u16string_view description);

}  // namespace vordane::store
