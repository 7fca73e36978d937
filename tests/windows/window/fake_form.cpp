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
    {u"cmdFilter", u"CommandButton", {u"Fi&lter...", u"&Фильтр...", u"絞り込み(&L)..."}},
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
    case ViewText::newFault:
      return pick({u"new", u"новая", u"新着"}, language_);
    case ViewText::newFaults:
      return pick({u"{1} new", u"новых: {1}", u"新着 {1} 件"}, language_);
    case ViewText::noNewFault:
      return pick({u"No new fault in the list", u"Новых неисправностей нет", u"新着なし"}, language_);
    case ViewText::nextNew:
      return pick({u"&Next new fault", u"С&ледующая новая", u"次の新着(&N)"}, language_);
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
    case ViewText::newerFault:
      return pick({u"1 newer fault above", u"Выше: новая неисправность", u"上に新しい障害が 1 件あります"},
                  language_);
    case ViewText::newerFaults:
      return pick(
          {u"{1} newer faults above", u"Выше новых неисправностей: {1}", u"上に新しい障害が {1} 件あります"},
          language_);
    case ViewText::floodMinutes:
      return pick(
          {u"{1} faults in {2} minutes, {3} to {4}.", u"Неисправностей: {1} за {2} мин, с {3} по {4}.",
           u"{3} から {4} までの {2} 分間に障害が {1} 件発生しました。"},
          language_);
    case ViewText::floodMinute:
      return pick({u"{1} faults in one minute, {2}.", u"Неисправностей: {1} за одну минуту, {2}.",
                   u"{2} の 1 分間に障害が {1} 件発生しました。"},
                  language_);
    case ViewText::floodEnds:
      return pick({u"First: {1}. Last: {2}.", u"Первая: {1}. Последняя: {2}.", u"最初: {1}。最後: {2}。"},
                  language_);
    case ViewText::floodKind:
      return pick({u"{1} × {2}", u"{1} × {2}", u"{2} {1} 件"}, language_);
    case ViewText::floodOthers:
      return pick({u"{1} others", u"прочих: {1}", u"その他 {1} 件"}, language_);
    case ViewText::floodShow:
      return pick({u"Show only these", u"Показать только их", u"これらだけを表示"}, language_);
    case ViewText::actPress:
      return pick({u"Press", u"Нажать", u"押す"}, language_);
    case ViewText::actTick:
      return pick({u"Tick", u"Отметить", u"チェックを付ける"}, language_);
    case ViewText::actUntick:
      return pick({u"Untick", u"Снять отметку", u"チェックを外す"}, language_);
    case ViewText::actOpen:
      return pick({u"Open", u"Открыть", u"開く"}, language_);
    case ViewText::actSelect:
      return pick({u"Select", u"Выбрать", u"選択する"}, language_);
    case ViewText::actSort:
      return pick({u"Sort", u"Упорядочить", u"並べ替える"}, language_);
    case ViewText::sortedUpwards:
      return pick({u"ascending", u"по возрастанию", u"昇順"}, language_);
    case ViewText::sortedDownwards:
      return pick({u"descending", u"по убыванию", u"降順"}, language_);
    case ViewText::alarmSound:
      return pick({u"Sound on a new &alarm", u"Зв&ук при новой аварии", u"新しい警報で音を鳴らす(&A)"},
                  language_);
    case ViewText::noteText:
      return pick({u"Note", u"Заметка", u"メモ"}, language_);
    case ViewText::noteAuthor:
      return pick({u"Note by", u"Автор заметки", u"メモの記入者"}, language_);
    case ViewText::noteTime:
      return pick({u"Note written", u"Время заметки", u"メモの日時"}, language_);
    case ViewText::noteBegin:
      return pick({u"Note ({1}, {2}):", u"Заметка ({1}, {2}):", u"メモ ({1}、{2}):"}, language_);
    case ViewText::noteMenu:
      return pick({u"No&te...", u"За&метка...", u"メモ(&T)..."}, language_);
    case ViewText::noteEdit:
      return pick({u"Note to No. {1}:", u"Заметка к № {1}:", u"No. {1} のメモ:"}, language_);
    case ViewText::noteHow:
      return pick({u"Enter keeps the note, Esc leaves it as it was. An empty one is taken away.",
                   u"Enter сохраняет заметку, Esc оставляет прежнюю. Пустая убирается.",
                   u"Enter で保存し、Esc で元のままにします。空にするとメモは消えます。"},
                  language_);
    case ViewText::filterNoted:
      return pick({u"With a note", u"С заметкой", u"メモ付き"}, language_);
    case ViewText::noteTooLong:
      return pick({u"Not kept: the note has {1} characters, and {2} are the most. Shorten it.",
                   u"Не сохранено: в заметке {1} знаков, а допустимо {2}. Сократите её.",
                   u"保存していません: メモは {1} 文字です。{2} 文字以内にしてください。"},
                  language_);
    case ViewText::noteBlanks:
      return pick(
          {u"Line ends and control characters became blanks.",
           u"Концы строк и управляющие знаки заменены пробелами.", u"改行と制御文字は空白に置き換えました。"},
          language_);
    case ViewText::noteFaultGone:
      return pick({u"Not kept: this fault is no longer stored.",
                   u"Не сохранено: эта неисправность больше не хранится.",
                   u"保存していません: この障害はもう保存されていません。"},
                  language_);
    case ViewText::noteChanged:
      return pick({u"Not kept: meanwhile {1} has written: {2}. Enter puts yours in its place.",
                   u"Не сохранено: тем временем {1} пишет: {2}. Enter ставит вашу заметку на её место.",
                   u"保存していません: その間に {1} が次のメモを書きました: {2}。Enter で置き換えます。"},
                  language_);
    case ViewText::noteTakenAway:
      return pick({u"Not kept: somebody has taken the former note away meanwhile. Enter keeps yours.",
                   u"Не сохранено: прежнюю заметку тем временем убрали. Enter сохраняет вашу.",
                   u"保存していません: 元のメモはその間に消されました。Enter で保存します。"},
                  language_);
    case ViewText::noteFailed:
      return pick({u"Not kept. The database said: {1}", u"Не сохранено. Сообщение базы данных: {1}",
                   u"保存していません。データベースの応答: {1}"},
                  language_);
    case ViewText::notesNotInAccess:
      return pick({u"Notes are not kept in an Access file, which holds nothing but the fault tables.",
                   u"В файле Access заметки не хранятся: в нём есть только таблицы неисправностей.",
                   u"Access ファイルには障害の表だけがあるため、メモは保存できません。"},
                  language_);
    case ViewText::notesNotOnServer:
      return pick({u"Notes are not kept on a database server.", u"На сервере баз данных заметки не хранятся.",
                   u"データベースサーバーにはメモを保存できません。"},
                  language_);
    case ViewText::notesNotInFile:
      return pick({u"Notes cannot be kept in this file: another program has made its tables.",
                   u"В этом файле заметки хранить нельзя: его таблицы созданы другой программой.",
                   u"このファイルの表はほかのプログラムが作成したため、メモを保存できません。"},
                  language_);
    case ViewText::openGuide:
      return pick({u"&Guide", u"&Руководство", u"ガイド(&G)"}, language_);
    case ViewText::copyFault:
      return pick({u"&Copy", u"&Копировать", u"コピー(&C)"}, language_);
    case ViewText::selectedFault:
      return pick({u"Selected fault", u"Выбранная неисправность", u"選択した障害"}, language_);
    case ViewText::noSelection:
      return pick(
          {u"Choose a fault to see all of it.", u"Выберите неисправность.", u"障害を選択してください。"},
          language_);
    case ViewText::filterText:
      return pick({u"&Words:", u"С&лова:", u"語句(&W):"}, language_);
    case ViewText::filterMajor:
      return pick({u"&Major", u"С&рочные", u"重大(&M)"}, language_);
    case ViewText::filterMinor:
      return pick({u"M&inor", u"Н&есрочные", u"軽微(&I)"}, language_);
    case ViewText::filterKindsAll:
      return pick({u"&Kinds: all", u"&Виды: все", u"種別: すべて(&K)"}, language_);
    case ViewText::filterKindsSome:
      return pick({u"&Kinds: {1} of {2}", u"&Виды: {1} из {2}", u"種別: {1} / {2} (&K)"}, language_);
    case ViewText::filterKindsName:
      return pick({u"Kinds of faults", u"Виды неисправностей", u"障害の種別"}, language_);
    case ViewText::filterProcessor:
      return pick({u"Pr&ocessor:", u"Про&цессор:", u"プロセッサ(&O):"}, language_);
    case ViewText::filterAnyProcessor:
      return pick({u"all", u"все", u"すべて"}, language_);
    case ViewText::filterSince:
      return pick({u"&Since:", u"На&чиная с:", u"開始(&S):"}, language_);
    case ViewText::filterUntil:
      return pick({u"&Until:", u"Д&о:", u"終了(&U):"}, language_);
    case ViewText::filterDateStyle:
      return pick({u"YYYY/MM/DD HH:MM", u"ГГГГ/ММ/ДД ЧЧ:ММ", u"YYYY/MM/DD HH:MM"}, language_);
    case ViewText::filterClear:
      return pick({u"Cl&ear filter", u"Убр&ать фильтр", u"絞り込み解除(&E)"}, language_);
    case ViewText::filterClose:
      return pick({u"Close the filter bar", u"Закрыть строку фильтра", u"絞り込みバーを閉じる"}, language_);
    case ViewText::filterOtherDates:
      return pick({u"Also s&how {1} with another form of date", u"Показать и {1} с &иной записью даты",
                   u"日付の形式が異なる {1} 件も表示(&H)"},
                  language_);
    case ViewText::filterNote:
      return pick({u"Print, Delete and Reset alarms go by all {1} faults of the exchange, shown or not.",
                   u"Печать, удаление и сброс аварий касаются всех неисправностей станции ({1}), а не только "
                   u"показанных.",
                   u"印刷、削除、警報リセットは、表示中のものだけでなく交換機の全 {1} 件が対象です。"},
                  language_);
    case ViewText::filterBadDate:
      return pick({u"Write a date as 2026/11/20 or 2026/11/20 14:05.",
                   u"Дата пишется так: 2026/11/20 или 2026/11/20 14:05.",
                   u"日付は 2026/11/20 または 2026/11/20 14:05 の形で入力してください。"},
                  language_);
    case ViewText::filterBadOrder:
      return pick({u"The first date is later than the last one.", u"Начальная дата позже конечной.",
                   u"開始の日付が終了より後です。"},
                  language_);
    case ViewText::filterAtWork:
      return pick({u"Filtering: {1} of {2} ... Esc stops it.", u"Отбор: {1} из {2} ... Esc прекращает его.",
                   u"絞り込み中: {1} / {2} … Esc で中止します。"},
                  language_);
    case ViewText::filterFailed:
      return pick({u"The filter could not be worked out: {1}", u"Отобрать не удалось: {1}",
                   u"絞り込みができませんでした: {1}"},
                  language_);
    case ViewText::filterHidesAll:
      return pick({u"None of the {1} stored faults passes the filter.",
                   u"Ни одна из записанных неисправностей ({1}) не проходит фильтр.",
                   u"保存済みの {1} 件のうち、条件に合う障害はありません。"},
                  language_);
    case ViewText::shownCount:
      return pick({u"{1} of {2} shown", u"Показано {1} из {2}", u"{2} 件中 {1} 件を表示"}, language_);
    case ViewText::onlyKind:
      return pick({u"&Only this kind ({1})", u"&Только этот вид ({1})", u"この種別だけ表示(&O) ({1})"},
                  language_);
    case ViewText::withoutKind:
      return pick({u"&Without this kind ({1})", u"&Без этого вида ({1})", u"この種別を除く(&W) ({1})"},
                  language_);
    case ViewText::onlyProcessor:
      return pick({u"Only this &processor ({1})", u"Только этот &процессор ({1})",
                   u"このプロセッサだけ表示(&P) ({1})"},
                  language_);
    case ViewText::onlyDay:
      return pick({u"Only this &day ({1})", u"Только этот &день ({1})", u"この日だけ表示(&D) ({1})"},
                  language_);
    case ViewText::findPlace:
      return pick({u"{1} of {2}", u"{1} из {2}", u"{2} 件中 {1} 件目"}, language_);
    case ViewText::findCount:
      return pick({u"{1} found", u"Найдено: {1}", u"{1} 件見つかりました"}, language_);
    case ViewText::findAtWork:
      return pick({u"Counting: {1} of {2}", u"Подсчёт: {1} из {2}", u"集計中: {1} / {2}"}, language_);
    case ViewText::rowsSelected:
      return pick({u"{1}, {2} selected", u"{1}, выбрано {2}", u"{1}、{2} 件選択"}, language_);
    case ViewText::copyCsv:
      return pick({u"Copy as CS&V", u"Копировать как CS&V", u"CSV としてコピー(&V)"}, language_);
    case ViewText::copyMessage:
      return pick({u"Copy &message", u"Копировать &сообщение", u"メッセージをコピー(&M)"}, language_);
    case ViewText::storedTexts:
      return pick({u"Stored te&xt", u"Хранимый т&екст", u"保存された文(&X)"}, language_);
    case ViewText::copyData:
      return pick({u"Copy data &bytes", u"Копировать б&айты данных", u"データバイトをコピー(&B)"}, language_);
    case ViewText::copyAtWork:
      return pick(
          {u"Copying: {1} of {2} ... Esc stops it.", u"Копирование: {1} из {2} ... Esc прекращает его.",
           u"コピー中: {1} / {2} … Esc で中止します。"},
          language_);
    case ViewText::copyTooMany:
      return pick(
          {u"{1} faults are too many for the clipboard, which takes {2}. Save them instead (Ctrl+S).",
           u"Неисправностей слишком много для буфера обмена ({1}, помещается {2}). Сохраните их в файл "
           u"(Ctrl+S).",
           u"{1} 件はクリップボードに入りません (最大 {2} 件)。ファイルに保存してください (Ctrl+S)。"},
          language_);
    case ViewText::copyNoData:
      return pick({u"The selected faults hold no data.", u"В выбранных неисправностях нет данных.",
                   u"選択した障害にデータはありません。"},
                  language_);
    case ViewText::saveShown:
      return pick({u"&Save shown faults...", u"Со&хранить показанные...", u"表示中の障害を保存(&S)..."},
                  language_);
    case ViewText::saveTitle:
      return pick({u"Save shown faults", u"Сохранить показанные неисправности", u"表示中の障害を保存"},
                  language_);
    case ViewText::saveAsCsv:
      return pick({u"Table for spreadsheets (CSV)", u"Таблица (CSV)", u"表計算用の表 (CSV)"}, language_);
    case ViewText::saveAsPage:
      return pick({u"Page for browsers and printing (HTML)", u"Страница для просмотра и печати (HTML)",
                   u"表示・印刷用のページ (HTML)"},
                  language_);
    case ViewText::saveAsJson:
      return pick(
          {u"Data for programs (JSON)", u"Данные для программ (JSON)", u"プログラム用のデータ (JSON)"},
          language_);
    case ViewText::saveAtWork:
      return pick({u"Saving: {1} of {2} ... Esc stops it.", u"Сохранение: {1} из {2} ... Esc прекращает его.",
                   u"保存中: {1} / {2} … Esc で中止します。"},
                  language_);
    case ViewText::saved:
      return pick({u"{1} faults saved in {2}", u"Сохранено неисправностей: {1}, файл {2}",
                   u"{1} 件を {2} に保存しました"},
                  language_);
    case ViewText::savedButGone:
      return pick({u"{1} faults saved in {2}; {3} others had been removed meanwhile",
                   u"Сохранено неисправностей: {1}, файл {2}; удалено тем временем: {3}",
                   u"{1} 件を {2} に保存しました。その間に {3} 件が削除されていました"},
                  language_);
    case ViewText::saveNoFile:
      return pick({u"Nothing was saved: no file can be made as {1}. Choose another folder.",
                   u"Ничего не сохранено: файл {1} создать нельзя. Выберите другую папку.",
                   u"保存していません: {1} を作成できません。別のフォルダーを選んでください。"},
                  language_);
    case ViewText::saveNoRoom:
      return pick(
          {u"Nothing was saved: {1} could not be written to its end. Make room on the disk, or choose "
           u"another one.",
           u"Ничего не сохранено: файл {1} не удалось записать до конца. Освободите место на диске или "
           u"выберите другой диск.",
           u"保存していません: {1} "
           u"を最後まで書き込めませんでした。ディスクの空きを増やすか、別のディスクを選んでください。"},
          language_);
    case ViewText::saveHeld:
      return pick(
          {u"Nothing was saved: another program holds {1}. Close it there, or choose another name.",
           u"Ничего не сохранено: файл {1} занят другой программой. Закройте его там или выберите другое "
           u"имя.",
           u"保存していません: {1} はほかのプログラムが使用中です。閉じるか、別の名前を選んでください。"},
          language_);
    case ViewText::outputFailed:
      return pick(
          {u"Nothing was written. The database said: {1}", u"Ничего не записано. Сообщение базы данных: {1}",
           u"何も書き込んでいません。データベースの応答: {1}"},
          language_);
    case ViewText::outputStopped:
      return pick({u"Stopped. Nothing was written.", u"Прекращено. Ничего не записано.",
                   u"中止しました。何も書き込んでいません。"},
                  language_);
    case ViewText::outputGivenUp:
      return pick({u"The list was renewed meanwhile, and nothing was written. Do it again.",
                   u"Список тем временем обновился, ничего не записано. Повторите.",
                   u"その間に一覧が更新されたため、何も書き込んでいません。もう一度実行してください。"},
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
  if (held || position >= count_) return std::nullopt;
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

bool FakeRows::fetch(std::size_t position, std::vector<database::Value>& out) {
  const auto found = row(position);
  out.clear();
  if (found)
    out = {found->fault, found->alarm,       found->date,
           found->cpu,   found->description, static_cast<std::int32_t>(found->count)};
  return found.has_value();
}

void FakeRows::chooseNoted(std::span<const std::uint32_t> positions, std::vector<std::uint32_t>& chosen) {
  for (const std::uint32_t position : positions)
    if (kept.of(static_cast<std::int64_t>(count_ - position))) chosen.push_back(position);
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
