// Objects in front of those that cross the border, so that each call is told in a line. What others hand to
// the add-in is called through one of them, what the add-in hands to others is called through another; each
// side gets its own object back when it comes home. One thread.
#pragma once

#include <memory>
#include <unordered_map>

#include "platform/automation.h"
#include "platform/member_table.h"
#include "trace/recorder.h"

namespace vordane::trace {

class ObjectOfOthers;
class OwnObject;

class TracedObjects : public std::enable_shared_from_this<TracedObjects> {
 public:
  explicit TracedObjects(std::shared_ptr<Recorder> recorder) : recorder_(std::move(recorder)) {}

  Recorder& recorder() { return *recorder_; }

  // As the add-in is to see it, and as others are to see it. The same object gives the same one again as long
  // as anybody holds that. Null stays null; so do other values what they are.
  automation::ObjectRef inwards(const automation::ObjectRef& object);
  automation::ObjectRef outwards(const automation::ObjectRef& object);
  automation::Value inwards(const automation::Value& value);
  automation::Value outwards(const automation::Value& value);

  // What others hold of one of the add-in's own objects: the object itself where nobody holds anything.
  automation::Object& heldOf(automation::Object& object);

 private:
  friend class ObjectOfOthers;
  friend class OwnObject;

  std::shared_ptr<Recorder> recorder_;
  // By the object behind.
  std::unordered_map<const automation::Object*, std::weak_ptr<ObjectOfOthers>> others_;
  std::unordered_map<const automation::Object*, std::weak_ptr<OwnObject>> own_;
};

}  // namespace vordane::trace
