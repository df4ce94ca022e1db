#include <Brindle/Platform/NSThread.h>

#include <unistd.h>

#include <mutex>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

struct Fields {
  std::mutex lock;  // of the name, which other threads may read
  Field<NSString> name;
  Field<NSMutableDictionary> dictionary;
};

Fields& fields(const NSThread& self) { return fieldsOf<Fields>(self); }

bool onMainThread() { return ::gettid() == ::getpid(); }

NSThread mainThread() {
  static const NSThread& thread = *new NSThread(NSThread::alloc()->init());
  return thread;
}

// The thread's object goes with the thread, and its dictionary with it.
NSThread currentThread() {
  if (onMainThread()) return mainThread();
  thread_local NSThread thread = NSThread::alloc()->init();
  // Asked again while the thread's own objects end: a fresh one, for this once.
  return thread ? thread : NSThread::alloc()->init();
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"currentThread">([](const Class&) { return currentThread(); }),
    classMethod<"mainThread">([](const Class&) { return mainThread(); }),
    classMethod<"isMainThread">([](const Class&) { return onMainThread(); }),
    method<"isMainThread">([](const NSThread& self) { return self == mainThread(); }),
    method<"threadDictionary">([](const NSThread& self) -> NSMutableDictionary {
      auto& dictionary = fields(self).dictionary;
      if (!dictionary) dictionary = NSMutableDictionary::dictionary();
      return dictionary;
    }),
    method<"name">([](const NSThread& self) -> NSString {
      const std::lock_guard guard(fields(self).lock);
      return fields(self).name;
    }),
    method<"setName:">([](const NSThread& self, const NSString& name) {
      NSString copy = name->copy();
      const std::lock_guard guard(fields(self).lock);
      fields(self).name = copy;
    }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSThread", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSThread> NSThread::classPair{kDefinition};

}  // namespace brindle
