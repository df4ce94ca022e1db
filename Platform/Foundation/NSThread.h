// A thread, as an object with a dictionary of its own.
//
//   NSThread::currentThread()->threadDictionary()->setObject(parser, "parser"_ns);
//
// Every thread of the process has such an object, however the thread was started; the main thread
// is the process's first. The dictionary is for the thread itself and goes with it.
#pragma once

#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

class NSThread : public Interface<NSThread, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSThread> classPair;

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    NSThread currentThread() const { return send<"currentThread", NSThread>(*this); }
    NSThread mainThread() const { return send<"mainThread", NSThread>(*this); }
    /// Whether the caller runs on the main thread.
    bool isMainThread() const { return send<"isMainThread", bool>(*this); }
  };
  static NSThread currentThread() { return class_()->currentThread(); }
  static NSThread mainThread() { return class_()->mainThread(); }

  /// Whether this is the main thread.
  bool isMainThread() const { return send<"isMainThread", bool>(*this); }
  /// Of the current thread only, or before the thread runs.
  NSMutableDictionary threadDictionary() const {
    return send<"threadDictionary", NSMutableDictionary>(*this);
  }
  /// Nil until it is set.
  NSString name() const { return send<"name", NSString>(*this); }
  void setName(const NSString& name) const { send<"setName:">(*this, name); }
};

}  // namespace brindle
