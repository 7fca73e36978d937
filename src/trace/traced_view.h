// A view in front of another: tells of the timer and of what a person does. One thread.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/action.h"
#include "platform/view.h"
#include "trace/recorder.h"

namespace vordane::trace {

class TracedView final : public window::View, private window::ViewEvents {
 public:
  // `due` says what the next tick will do, nothing when it will do nothing.
  using Due = std::function<std::optional<Action>()>;
  TracedView(std::shared_ptr<Recorder> recorder, window::View& view)
      : recorder_(std::move(recorder)), view_(view) {}
  void setDue(Due due) { due_ = std::move(due); }

  void attach(window::Form& form, window::ViewEvents& events) override;
  void detach() override { view_.detach(); }
  void setVisible(bool visible) override;
  bool visible() override { return view_.visible(); }
  void refresh() override { view_.refresh(); }
  void setInputEnabled(bool enabled) override { view_.setInputEnabled(enabled); }
  void setHourglass(bool on) override { view_.setHourglass(on); }
  void startTimer(int milliseconds) override;
  void stopTimer() override { view_.stopTimer(); }
  void setWords(window::Form* form) override { view_.setWords(form); }
  void setRows(window::GridSource* rows) override { view_.setRows(rows); }
  void setSortMark(int column, bool descending) override { view_.setSortMark(column, descending); }
  void setLamp(bool major, bool lit) override { view_.setLamp(major, lit); }
  void setLampNote(std::u16string_view note) override { view_.setLampNote(note); }
  void setStatus(int part, std::u16string_view text) override { view_.setStatus(part, text); }
  void setNotice(std::u16string_view text) override { view_.setNotice(text); }
  void setNoticeKind(window::NoticeKind kind) override { view_.setNoticeKind(kind); }
  void paintNow() override { view_.paintNow(); }
  void popUpMenu(std::u16string_view menu) override { view_.popUpMenu(menu); }
  void showWhatsThis(window::Control& control, std::u16string_view help) override {
    view_.showWhatsThis(control, help);
  }
  Size screenSize() override { return view_.screenSize(); }
  Size windowSize() override { return view_.windowSize(); }
  void moveTo(std::int32_t left, std::int32_t top) override { view_.moveTo(left, top); }
  std::pair<std::int32_t, std::int32_t> position() override { return view_.position(); }

 private:
  void buttonPressed(int action) override;
  void headingClicked(int column) override;
  void exchangeChosen(int listIndex) override;
  void closeAsked() override;
  void keyPressed(int keyCode) override;
  void mousePressed(window::Control& control, int button) override { events_->mousePressed(control, button); }
  void whatsThisChosen() override { events_->whatsThisChosen(); }
  bool guideOffered() override { return events_->guideOffered(); }
  void guideAsked(std::u16string_view part) override { events_->guideAsked(part); }
  std::optional<std::size_t> lookUp(std::u16string_view text, std::ptrdiff_t from,
                                    window::LookUpWay way) override {
    return events_->lookUp(text, from, way);
  }
  window::ListUse listUse() override { return events_->listUse(); }
  window::Languages languages() override { return events_->languages(); }
  void languageChosen(std::size_t which) override;
  bool storedTextsOffered() override { return events_->storedTextsOffered(); }
  bool storedTextsShown() override { return events_->storedTextsShown(); }
  void storedTextsAsked() override { events_->storedTextsAsked(); }
  std::shared_ptr<database::Arrivals> arrivals() override { return events_->arrivals(); }
  std::chrono::milliseconds lookAtStore() override { return events_->lookAtStore(); }
  void tick() override;

  void person(std::string_view what, std::int64_t which);

  std::shared_ptr<Recorder> recorder_;
  window::View& view_;
  window::ViewEvents* events_ = nullptr;  // the window's; from `attach` on
  Due due_;
};

}  // namespace vordane::trace
