#include "follow_mark.h"

#include <nlohmann/json.hpp>
#include <random>
#include <system_error>

#include "lasting_file.h"
#include "lines.h"
#include "text/utf8.h"
#include "whole_file.h"

namespace vordane::tools {
namespace {

using Object = nlohmann::ordered_json;

constexpr const char* format = "vordane follow mark";
constexpr int version = 1;

bool isSource(const std::string& text) {
  return text.size() == 16 && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

std::int64_t exchangeOf(const std::string& key) {
  std::size_t used = 0;
  const long long id = std::stoll(key, &used);
  if (used != key.size()) throw std::invalid_argument(key);
  return id;
}

FollowMark readMembers(const Object& all) {
  FollowMark mark;
  mark.source = all.at("source").get<std::string>();
  if (!isSource(mark.source)) throw std::invalid_argument("source");
  mark.reached = all.at("reached").get<std::int64_t>();
  if (const Object& told = all.at("told"); !told.is_null())
    mark.told = {told.at("number").get<std::int64_t>(), told.at("id").get<std::string>()};
  for (const auto& [key, seen] : all.at("lamps").items())
    mark.lamps[exchangeOf(key)] = {{seen.at("major").get<bool>(), seen.at("minor").get<bool>()},
                                   seen.at("sequence").get<std::int64_t>()};
  mark.length = all.at("length").get<std::uintmax_t>();
  return mark;
}

}  // namespace

FollowMark newMark() {
  std::random_device random;
  FollowMark mark;
  for (int digit = 0; digit < 16; ++digit) mark.source += "0123456789abcdef"[random() & 15U];
  return mark;
}

std::string textOf(const FollowMark& mark) {
  Object lamps = Object::object();
  for (const auto& [id, seen] : mark.lamps)
    lamps[std::to_string(id)] = {
        {"major", seen.lamps.major}, {"minor", seen.lamps.minor}, {"sequence", seen.sequence}};
  Object told;
  if (mark.told) told = {{"number", mark.told->number}, {"id", mark.told->id}};
  const Object all{{"format", format},        {"version", version}, {"source", mark.source},
                   {"reached", mark.reached}, {"told", told},       {"lamps", lamps},
                   {"length", mark.length}};
  return all.dump() + '\n';
}

FollowMark markFrom(std::string_view text, const std::string& name) {
  const Object all = Object::parse(text, nullptr, false);
  if (!all.is_object() || all.value("format", Object()) != format)
    throw ToolError(
        name +
        ": this is no mark of 'follow', or only a part of one. Name another file, or bring it back; "
        "without it everything stored is told again");
  if (all.value("version", Object()) != version)
    throw ToolError(name + ": this mark was made by a later version. Use that one, or name another mark");
  try {
    return readMembers(all);
  } catch (const std::exception&) {
    throw ToolError(name +
                    ": this mark is damaged. Bring it back, or name another one; with a new one "
                    "everything stored is told again");
  }
}

std::optional<FollowMark> readMark(const std::filesystem::path& path) {
  std::error_code failure;
  if (!std::filesystem::exists(path, failure)) return std::nullopt;
  if (!std::filesystem::is_regular_file(path, failure))
    throw ToolError(text::toUtf8(path.u16string()) +
                    ": this is no file. Name a file of its own for the mark");
  return markFrom(readFile(path), text::toUtf8(path.u16string()));
}

void keepMark(const std::filesystem::path& path, const FollowMark& mark) {
  if (!replaceLasting(path, textOf(mark)))
    throw UnwritableFile(text::toUtf8(path.u16string()) +
                         ": can't be written. Check the rights of its folder and the room on its disk");
}

}  // namespace vordane::tools
