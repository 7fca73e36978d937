// The real window over fakes, for its tests: messages go in, events come out.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/windows/window/children.h"
#include "platform/windows/window/win32_view.h"
#include "windows/window/fake_form.h"

namespace vordane::window::win32 {

using namespace testing;

struct RecordedEvents : ViewEvents {
  std::vector<int> buttons, headings, exchanges, keys;
  std::vector<std::u16string> pressed;  // control and button
  std::vector<std::pair<std::u16string, std::ptrdiff_t>> lookUps;
  std::vector<LookUpWay> lookUpWays;
  std::optional<std::size_t> hit;
  std::vector<std::size_t> hits;  // one after the other, before `hit`
  int closes = 0, ticks = 0, whatsThis = 0;
  ListUse use = ListUse::now;
  std::function<void()> onButton, onHeading;
  Control* exchangeList = nullptr;
  bool takesExchanges = true;
  bool fails = false;  // each event

  void happened() const {
    if (fails) throw std::runtime_error("failed");
  }

  void buttonPressed(int action) override {
    buttons.push_back(action);
    if (onButton) onButton();
  }
  void headingClicked(int column) override {
    headings.push_back(column);
    if (onHeading) onHeading();
    happened();
  }
  void exchangeChosen(int listIndex) override {
    exchanges.push_back(listIndex);
    if (exchangeList != nullptr)
      exchangeList->setListIndex(takesExchanges ? listIndex : exchangeList->listIndex());
  }
  void closeAsked() override {
    ++closes;
    happened();
  }
  void keyPressed(int keyCode) override {
    keys.push_back(keyCode);
    happened();
  }
  void mousePressed(Control& control, int button) override {
    pressed.push_back(control.name() + u" " + static_cast<char16_t>(u'0' + button));
    happened();
  }
  void whatsThisChosen() override { ++whatsThis; }
  bool offersGuide = true;
  std::vector<std::u16string> guides;  // the parts it was asked for
  bool guideOffered() override { return offersGuide; }
  void guideAsked(std::u16string_view part) override {
    guides.emplace_back(part);
    happened();
  }
  std::optional<std::size_t> lookUp(std::u16string_view text, std::ptrdiff_t from, LookUpWay way) override {
    lookUps.emplace_back(text, from);
    lookUpWays.push_back(way);
    if (hits.empty()) return hit;
    const std::size_t next = hits.front();
    hits.erase(hits.begin());
    return next;
  }
  ListUse listUse() override { return use; }
  Languages offered;
  std::vector<std::size_t> chosenLanguages;
  int storedAsked = 0;
  Languages languages() override { return offered; }
  void languageChosen(std::size_t language) override { chosenLanguages.push_back(language); }
  void storedTextsAsked() override { ++storedAsked; }
  std::shared_ptr<database::Arrivals> store;  // null: it can't tell what came
  bool storeHeld = false;                     // by somebody, at this moment
  std::shared_ptr<database::Arrivals> arrivals() override {
    if (storeHeld) throw database::DatabaseError(3260, u"locked");
    return store;
  }
  int looks = 0;  // at the store
  std::chrono::milliseconds nextLook{60'000};
  std::function<void()> onLook;
  std::chrono::milliseconds lookAtStore() override {
    ++looks;
    if (onLook) onLook();
    return nextLook;
  }
  void tick() override {
    ++ticks;
    happened();
  }
};

class ViewTest : public ::testing::Test {
 protected:
  void SetUp() override {
    view->attach(form, events);
    for (const char16_t* name : {u"PBX-1", u"PBX-2", u"PBX-3"}) exchanges().addItem(name);
    exchanges().setListIndex(0);
    events.exchangeList = &exchanges();
    view->setRows(&rows);
    view->setVisible(true);
    pump();
  }
  void TearDown() override { view->detach(); }

  HWND item(int id) const { return GetDlgItem(view->window(), id); }
  HWND heading() const { return ListView_GetHeader(item(idGrid)); }
  Control& exchanges() { return form.control(u"drpPBXList"); }
  void press(int id) { SendMessageW(item(id), BM_CLICK, 0, 0); }

  // Serves what is waiting, as a message loop does, for at least `milliseconds`.
  void pump(DWORD milliseconds = 0) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    do {
      MSG message;
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (view->translate(message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
      }
      if (milliseconds > 0) Sleep(2);
    } while (GetTickCount64() < end);
  }
  // Serves messages until it holds; false when it does not within a minute.
  bool pumpUntil(const std::function<bool()>& holds) {
    const ULONGLONG end = GetTickCount64() + 60000;
    for (pump(); !holds(); pump()) {
      if (GetTickCount64() > end) return false;
      MsgWaitForMultipleObjects(0, nullptr, FALSE, 1000, QS_ALLINPUT);
    }
    return true;
  }
  void key(HWND window, WPARAM code) {
    PostMessageW(window, WM_KEYDOWN, code, 1);
    pump();
  }
  // As if `modifier` were held down.
  void keyWith(int modifier, HWND window, WPARAM code) {
    BYTE keys[256] = {};
    PostMessageW(window, WM_KEYDOWN, code, 1);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      keys[modifier] = message.message == WM_KEYDOWN && message.wParam == code ? 0x80 : 0;
      SetKeyboardState(keys);
      if (view->translate(message)) continue;
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    keys[modifier] = 0;
    SetKeyboardState(keys);
  }
  void select(int row) {
    ListView_SetItemState(item(idGrid), row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    pump();
  }
  void clickHeading(int column) {
    RECT place;
    Header_GetItemRect(heading(), column, &place);
    const LPARAM at = MAKELPARAM(place.left + 12, place.top + 6);
    SendMessageW(heading(), WM_LBUTTONDOWN, MK_LBUTTON, at);
    SendMessageW(heading(), WM_LBUTTONUP, 0, at);
    pump();
  }
  void choose(int entry, int code) {
    SendMessageW(item(idExchange), CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
    SendMessageW(view->window(), WM_COMMAND, MAKEWPARAM(idExchange, code),
                 reinterpret_cast<LPARAM>(item(idExchange)));
  }

  Form form = makeForm(Language::english);
  FakeTexts texts{Language::english};
  FakeSettings settings;
  FakeRows rows{Language::english, 100};
  RecordedEvents events;
  std::unique_ptr<Win32View> view = makeWin32View(texts, settings);
};

}  // namespace vordane::window::win32
