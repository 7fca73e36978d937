#include "windows/window/fake_form.h"

#include <array>

namespace vordane::window::testing {
namespace {

using Triple = std::array<const char16_t*, 3>;  // English, Russian, Japanese

std::u16string pick(const Triple& texts, Language language) {
  return texts[static_cast<std::size_t>(language)];
}

// Japanese names a face that has its letters, as the language database does.
std::u16string face(Language language) {
  return language == Language::japanese ? u"Meiryo UI" : u"Segoe UI";
}

std::map<std::u16string, Value> properties(const std::u16string& captionText, Language language) {
  return {{u"Caption", captionText},
          {u"Enabled", true},
          {u"Visible", true},
          {u"ToolTipText", std::u16string()},
          {u"Font.Name", face(language)},
          {u"Font.Size", 9.0},
          {u"Font.Charset", std::int32_t{0}}};
}

struct Captioned {
  const char16_t *name, *type;
  Triple texts;
};

constexpr Captioned captioned[] = {
    {u"lblListups", u"Label", {u"E&xchange", u"&Станция", u"交換機(&X)"}},
    {u"lblTimetag", u"Label", {u"List received", u"Список получен", u"一覧受信時刻"}},
    {u"fraAlarmLamp", u"Frame", {u"Alarms", u"Аварии", u"警報"}},
    {u"lblMJ", u"Label", {u"MJ", u"MJ", u"MJ"}},
    {u"lblMN", u"Label", {u"MN", u"MN", u"MN"}},
    {u"cmdRequest", u"CommandButton", {u"&Request", u"&Запросить", u"要求(&R)"}},
    {u"cmdReset", u"CommandButton", {u"Reset &alarms", u"С&бросить аварии", u"警報リセット(&A)"}},
    {u"cmdPrint", u"CommandButton", {u"&Print...", u"&Печать...", u"印刷(&P)..."}},
    {u"cmdClear", u"CommandButton", {u"&Delete...", u"&Удалить...", u"削除(&D)..."}},
    {u"cmdLookUp", u"CommandButton", {u"&Look up...", u"&Найти...", u"検索(&L)..."}},
    {u"cmdClose", u"CommandButton", {u"&Close", u"За&крыть", u"閉じる(&C)"}},
    {u"itmWhatThis", u"Menu", {u"&What's this?", u"&Что это такое?", u"これは何?(&W)"}},
};

constexpr Triple headings[] = {
    {u"Kind", u"Вид", u"種別"},
    {u"Class", u"Класс", u"クラス"},
    {u"Date and time", u"Дата и время", u"日時"},
    {u"Processor", u"Процессор", u"プロセッサ"},
    {u"Fault", u"Неисправность", u"障害"},
    {u"No.", u"№", u"番号"},
};

struct Fault {
  const char16_t *kind, *alarm, *date, *cpu;
  Triple title, detail;
  const char16_t* data;
};

constexpr Fault faults[] = {
    {u"01",
     u"MJ",
     u"2026/11/20 20:58",
     u"MP   ",
     {u"Main processor restarted", u"Перезапуск главного процессора", u"主プロセッサが再起動しました"},
     {u"Cause: program fault", u"Причина: ошибка программы", u"原因: プログラム障害"},
     u"03 00 00 00 00 00 00 00"},
    {u"0A",
     u"MJ",
     u"2026/11/20 20:41",
     u"LP 2",
     {u"Line circuit fault", u"Неисправность линейного комплекта", u"回線回路の障害"},
     {u"No answer from line card [equipment C2D]", u"Нет ответа от платы [место C2D]",
      u"回線カードから応答がありません [装置 C2D]"},
     u"03 4C 2D 00 00 00 00 00"},
    {u"26",
     u"MN",
     u"2026/11/20 19:05",
     u"LP 2",
     {u"Station out of service", u"Абонент не обслуживается", u"内線が使用できません"},
     {u"Locked out by supervision [station 4102]", u"Заблокирован контролем [абонент 4102]",
      u"監視により閉塞 [内線 4102]"},
     u"41 02 00 00 00 00 00 00"},
    {u"40",
     u"MN",
     u"2026/11/20 12:00",
     u"MP   ",
     {u"Battery test is due", u"Пора проверить батарею", u"バッテリ試験の時期です"},
     {u"Date 12/31", u"Дата 12/31", u"日付 12/31"},
     u"12 31 00 00 00 00 00 00"},
    {u"2C",
     u"MJ",
     u"2026/11/19 23:17",
     u"LP 5",
     {u"Digital link lost", u"Потеряна цифровая линия", u"ディジタル回線断"},
     {u"Link type primary, number 10", u"Тип линии: первичная, номер 10", u"回線種別 一次群、番号 10"},
     u"0A 01 00 00 00 00 00 00"},
    {u"08",
     u"MN",
     u"2026/11/19 22:50",
     u"LP 5",
     {u"Module reset", u"Сброс модуля", u"モジュールリセット"},
     {u"[module 05]", u"[модуль 05]", u"[モジュール 05]"},
     u"05 00 00 00 00 00 00 00"},
    {u"77",
     u"MN",
     u"2026/11/19 22:49",
     u"LP 5",
     {u"Fault of a kind this program does not know", u"Неисправность неизвестного вида", u"未知の種別の障害"},
     {u"", u"", u""},
     u"FF 00 00 00 00 00 00 00"},
};

const Fault& faultAt(std::size_t position) {
  return faults[position % std::size(faults)];
}

}  // namespace

std::u16string caption(Language language) {
  return pick({u"Fault List (PBX-1)", u"Список неисправностей (PBX-1)", u"障害一覧 (PBX-1)"}, language);
}

Form makeForm(Language language) {
  Form form(u"dlgFaultDisplay", {{u"Caption", caption(language)},
                                 {u"Font.Name", face(language)},
                                 {u"Font.Size", 9.0},
                                 {u"Width", std::int32_t{0}},
                                 {u"Height", std::int32_t{0}},
                                 {u"Enabled", true}});
  form.add(u"drpPBXList", -1, u"ComboBox",
           {{u"Font.Name", face(language)},
            {u"Font.Size", 9.0},
            {u"Enabled", true},
            {u"Visible", true},
            {u"ToolTipText", std::u16string(u"The exchange whose faults are shown")}});
  auto text = properties(u"", language);
  text.erase(u"Caption");
  text[u"Text"] = std::u16string(u"2026/11/20 21:14:05");
  form.add(u"txtTimeTag", -1, u"TextBox", text);
  for (const Captioned& each : captioned)
    form.add(each.name, -1, each.type, properties(pick(each.texts, language), language));
  auto grid = properties(u"", language);
  for (std::size_t n = 0; n < std::size(headings); ++n)
    grid[u"Columns(" + std::u16string(1, static_cast<char16_t>(u'0' + n)) + u").Caption"] =
        pick(headings[n], language);
  form.add(u"grdDisplayFault", -1, u"SSDBGrid", grid);
  form.add(u"cboFK01", -1, u"ComboBox", {{u"Font.Name", face(language)}, {u"Font.Size", 9.0}});
  for (const char16_t* picture : {u"imgBackground", u"imgDetail"})
    form.add(picture, -1, u"PictureBox",
             {{u"Left", std::int32_t{0}},
              {u"Top", std::int32_t{0}},
              {u"Width", std::int32_t{0}},
              {u"Height", std::int32_t{0}},
              {u"Picture", std::u16string()},
              {u"Visible", true}});
  return form;
}

std::u16string FakeTexts::text(ViewText which) {
  switch (which) {
    case ViewText::majorLit:
      return pick({u"MAJOR: alarm", u"ГЛАВНАЯ: авария", u"重障害: 警報"}, language_);
    case ViewText::majorClear:
      return pick({u"MAJOR: clear", u"ГЛАВНАЯ: нет", u"重障害: なし"}, language_);
    case ViewText::minorLit:
      return pick({u"MINOR: alarm", u"МАЛАЯ: авария", u"軽障害: 警報"}, language_);
    case ViewText::minorClear:
      return pick({u"MINOR: clear", u"МАЛАЯ: нет", u"軽障害: なし"}, language_);
    case ViewText::lookUpLabel:
      return pick({u"&Find:", u"&Искать:", u"検索語(&F):"}, language_);
    case ViewText::lookUpNext:
      return pick({u"&Next", u"&Далее", u"次へ(&N)"}, language_);
    case ViewText::lookUpClose:
      return pick({u"Close", u"Закрыть", u"閉じる"}, language_);
    case ViewText::lookUpNotFound:
      return pick({u"No fault shown here holds this text.", u"Такого текста нет.", u"見つかりません。"},
                  language_);
    case ViewText::lookUpWrapped:
      return pick({u"Went on from the top.", u"Продолжено с начала.", u"先頭に戻りました。"}, language_);
    case ViewText::lookUpWrappedBack:
      return pick({u"Went on from the bottom.", u"Продолжено с конца.", u"末尾に戻りました。"}, language_);
    case ViewText::clipboardHeld:
      return pick({u"Another program holds the clipboard.", u"Буфер обмена занят.", u"コピーできません。"},
                  language_);
    case ViewText::openGuide:
      return pick({u"&Guide", u"&Руководство", u"ガイド(&G)"}, language_);
    case ViewText::copyFault:
      return pick({u"&Copy\tCtrl+C", u"&Копировать\tCtrl+C", u"コピー(&C)\tCtrl+C"}, language_);
    case ViewText::selectedFault:
      return pick({u"Selected fault", u"Выбранная неисправность", u"選択した障害"}, language_);
    case ViewText::noSelection:
      return pick(
          {u"Choose a fault to see all of it.", u"Выберите неисправность.", u"障害を選択してください。"},
          language_);
  }
  return {};
}

std::optional<std::u16string> FakeSettings::read(std::u16string_view application, std::u16string_view section,
                                                 std::u16string_view key) {
  const auto found =
      values.find(std::u16string(application) + u"|" + std::u16string(section) + u"|" + std::u16string(key));
  return found == values.end() ? std::nullopt : std::optional(found->second);
}

void FakeSettings::write(std::u16string_view application, std::u16string_view section,
                         std::u16string_view key, std::u16string_view value) {
  values[std::u16string(application) + u"|" + std::u16string(section) + u"|" + std::u16string(key)] = value;
}

std::optional<GridRow> FakeRows::row(std::size_t position) {
  ++fetched;
  if (position >= count_) return std::nullopt;
  const Fault& fault = faultAt(position);
  GridRow shown{fault.kind, fault.alarm, fault.date,
                fault.cpu,  {},          static_cast<std::int32_t>(count_ - position)};
  std::u16string detail = pick(fault.detail, language_);
  if (longTexts)
    for (int n = 0; n < 3; ++n) detail += u", " + pick(fault.title, language_) + u" " + detail;
  shown.description = pick(fault.title, language_) + u"\r\n" + detail + u"\r\n" +
                      pick({u"Data", u"Данные", u"データ"}, language_) + u" [" + fault.data + u"]";
  return shown;
}

std::vector<GridSource::Range> FakeRows::provenance(std::size_t position, std::size_t character) {
  const auto fault = row(position);
  if (!fault || fault->fault != u"0A") return {};
  const std::size_t value = fault->description.find(u"C2D");
  if (character < value || character >= value + 3) return {};
  return {{4, 5}, {6, 8}};
}

std::u16string accountOfList(Language language) {
  return pick(
      {u"PBX-1: last list 2026/11/20 21:14:05, complete: 8191 received, 12 new, 8179 already stored, 0 "
       u"refused",
       u"PBX-1: последний список 20.11.2026 21:14:05, полный: получено 8191, новых 12, уже было 8179, "
       u"отклонено 0",
       u"PBX-1: 最終受信 2026/11/20 21:14:05、完全: 受信 8191 件、新規 12 件、保存済み 8179 件、拒否 0 件"},
      language);
}

std::u16string failureAccount(Language language) {
  return pick({u"PBX-1: last attempt 2026/11/22 08:15:41 failed: the exchange server ended before the answer "
               u"was read.",
               u"PBX-1: последняя попытка 22.11.2026 08:15:41 не удалась: сервер станций завершился раньше, "
               u"чем ответ "
               u"был прочитан.",
               u"PBX-1: 2026/11/22 08:15:41 の要求は失敗しました: "
               u"応答を読み終える前に交換機サーバーが終了しました。"},
              language);
}

std::u16string hintNotice(Language language) {
  return pick({u"No faults are stored for this exchange. Press Request to fetch the list.",
               u"Для этой станции неисправностей нет. Нажмите «Запросить», чтобы получить список.",
               u"この交換機の障害は登録されていません。「要求」を押して一覧を取得してください。"},
              language);
}

std::u16string waitingNotice(Language language) {
  return pick(
      {u"Waiting for the exchange PBX-1 to send its fault list...",
       u"Ожидается список неисправностей станции PBX-1...", u"交換機 PBX-1 の障害一覧を待っています..."},
      language);
}

std::u16string failureNotice(Language language) {
  return pick(
      {u"The exchange did not send its list: the line is busy. The faults shown are those stored before. "
       u"Press Request to try again.",
       u"Станция не прислала список: линия занята. Показаны сохранённые неисправности. "
       u"Нажмите «Запросить», чтобы повторить.",
       u"一覧を受信できませんでした: 回線使用中。以前に登録された障害を表示しています。"
       u"もう一度「要求」を押してください。"},
      language);
}

}  // namespace vordane::window::testing
