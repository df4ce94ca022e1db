// A block that runs when an object ends: work tied to a life.
//
//   BDCleanup closing = BDCleanup::cleanupWithCall([file] { close(file); });
//   reader->onLine([closing](const NSString&) { closing->capture(); });
//   // The file is closed when the reader drops its block.
//
// The block runs once, on the thread that drops the last reference, inside that release. A cleanup
// that nobody keeps runs it at the end of the statement that made it; `autorelease` gives it the
// pool's life. What the block raises leaves the release: `closing = nullptr` passes it on, a
// closing brace ends the program.
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/NSObject.h>

namespace brindle {

/// Runs its block when it is deallocated. Any thread may read and set the block.
class BDCleanup : public Interface<BDCleanup, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_EXPORT static ClassPair<BDCleanup> classPair;

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    Self cleanup() const { return send<"cleanup", Self>(*this); }
    Self cleanupWithCall(const BlockArg<void()>& call) const {
      return send<"cleanupWithCall:", Self>(*this, call);
    }
  };

  /// A cleanup with nothing to do yet.
  static BDCleanup cleanup() { return class_()->cleanup(); }
  /// A cleanup that runs a copy of the block.
  static BDCleanup cleanupWithCall(const BlockArg<void()>& call) {
    return class_()->cleanupWithCall(call);
  }

  /// Does nothing. A block that sends it to a cleanup which it captured keeps the cleanup alive.
  void capture() const { send<"capture">(*this); }

  /// What will run; nil for nothing.
  Block<void()> call() const { return send<"call", Block<void()>>(*this); }
  /// Keeps a copy of the block. Nil disarms the cleanup.
  void setCall(const BlockArg<void()>& call) const { send<"setCall:">(*this, call); }
};

}  // namespace brindle
